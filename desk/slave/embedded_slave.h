#pragma once

#include "desk/slave/slave_options.h"

#include <QElapsedTimer>
#include <QModbusPdu>
#include <QObject>
#include <QTcpServer>

#include <map>
#include <memory>

class ModbusStation;
class SlaveConnection;

/// A Modbus slave that speaks RTU framing over TCP. What a request means is QModbusServer's to say; this
/// class owns the stations and the connections and makes the faults that its options ask for.
class EmbeddedSlave : public QObject
{
    Q_OBJECT

public:
    explicit EmbeddedSlave(const SlaveOptions &slaveOptions, QObject *parent = nullptr);
    ~EmbeddedSlave() override;

    /// False when the address cannot be listened on; errorString() has the reason.
    bool listen();
    quint16 port() const { return m_server.serverPort(); }
    QString errorString() const { return m_server.errorString(); }

    quint16 value(int station, Area area, quint16 offset) const;
    void setValue(int station, Area area, quint16 offset, quint16 value);
    void inject(const Fault &fault, int replies) { m_options.faults.inject(fault, replies); }
    SlaveCounts counts() const;

    /// For the connections: whether \a request, a whole frame, is to be answered, and with what fault.
    bool isAddressed(const QByteArray &request) const;
    Fault nextFault();
    /// Executes \a request and returns the right reply; empty for a broadcast.
    QByteArray execute(const QByteArray &request);
    /// The reply of a device that cannot: exception 4.
    QByteArray refuse(const QByteArray &request);
    const SlaveOptions &settings() const { return m_options; }
    FaultPlan &faults() { return m_options.faults; }
    /// Sends \a reply on whichever connection is the newest in so many milliseconds, and answers nothing
    /// before that.
    void sendLate(const QByteArray &reply, int milliseconds);
    /// How long the line is busy with a late reply, in milliseconds.
    int busyMs() const;
    /// A connection has ended.
    void freeSlot() { m_sinceEnd.start(); }
    void countForeign() { ++m_count.foreign; }
    void countDropped(int bytes) { m_count.droppedBytes += static_cast<quint64>(bytes); }

private:
    void acceptConnections();
    bool hasFreeSlot() const;
    QList<SlaveConnection *> openConnections() const;

    SlaveOptions m_options;
    SlaveCounts m_count;
    QTcpServer m_server;
    QElapsedTimer m_clock;
    qint64 m_busyUntil = -1;
    QElapsedTimer m_sinceEnd;
    std::map<int, std::unique_ptr<ModbusStation>> m_stations;
};
