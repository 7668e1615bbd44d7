#pragma once

#include "desk/slave/reply_shape.h"
#include "desk/slave/rtu_deframer.h"
#include "desk/wire/trace.h"

#include <QObject>
#include <QQueue>
#include <QTcpSocket>
#include <QTimer>

class EmbeddedSlave;

/// One master's connection: takes requests out of the stream and answers them one after the other.
class SlaveConnection : public QObject
{
    Q_OBJECT

public:
    /// Takes the ownership of \a connectedSocket, and ends its own life with the connection.
    SlaveConnection(QTcpSocket *connectedSocket, quint64 connectionNumber, EmbeddedSlave *slave);

    bool isOpen() const { return m_socket->state() == QAbstractSocket::ConnectedState; }
    /// Sends what belongs to no request of this connection; \a meaning is for the trace.
    void sendUnasked(const QByteArray &bytes, const QString &meaning);

private:
    void followHabits();
    void takeBytes();
    void takeRequests();
    void giveUpRequest();
    void collectRequests();
    void reportDropped();
    void answerNext();
    void answer(const QByteArray &frame);
    void goOn();
    void catchUp();
    void startReply();
    void sendSegments();
    void finishReply();
    void endConnection();

    bool isBusy() const;
    bool isTracing() const;
    void traceReply() const;
    void traceFrame(FrameDirection direction, const QByteArray &bytes, const QString &meaning) const;
    void traceEventOf(const QString &text) const;
    QString tag() const;

    EmbeddedSlave *m_owner;
    QTcpSocket *m_socket;
    quint64 m_number;
    RtuDeframer m_deframer;
    QTimer m_silence;
    QTimer m_pause;
    QTimer m_heartbeat;
    QTimer m_idle;
    QQueue<QByteArray> m_requests;
    /// Nothing more happens on this connection.
    bool m_isDead = false;
    /// Once so many bytes waited that the master's TCP had to stop.
    bool m_wasStopped = false;

    /// The reply that is on its way.
    bool m_isAnswering = false;
    QByteArray m_request;
    Fault m_fault;
    ReplyShape m_shape;
    int m_nextSegment = 0;

    QByteArray m_previousReply;
    QByteArray m_heldBack;
};
