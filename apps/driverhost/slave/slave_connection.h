#pragma once

#include "slave/reply_shape.h"
#include "slave/rtu_deframer.h"
#include "trace.h"

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

private:
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

    EmbeddedSlave *owner;
    QTcpSocket *socket;
    quint64 number;
    RtuDeframer deframer;
    QTimer silence;
    QTimer pause;
    QQueue<QByteArray> requests;
    /// Nothing more happens on this connection.
    bool isDead = false;
    /// Once so many bytes waited that the master's TCP had to stop.
    bool wasStopped = false;

    /// The reply that is on its way.
    bool isAnswering = false;
    QByteArray request;
    Fault fault;
    ReplyShape shape;
    int nextSegment = 0;

    QByteArray previousReply;
    QByteArray heldBack;
};
