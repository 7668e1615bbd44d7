#pragma once

#include "slave/slave_options.h"

#include <QModbusPdu>
#include <QObject>
#include <QTcpServer>

#include <map>
#include <memory>

class ModbusStation;

/// A Modbus slave that speaks RTU framing over TCP. What a request means is QModbusServer's to say; this
/// class owns the stations and the connections and does wrong what it was told to do wrong.
class EmbeddedSlave : public QObject
{
    Q_OBJECT

public:
    explicit EmbeddedSlave(const SlaveOptions &slaveOptions, QObject *parent = nullptr);
    ~EmbeddedSlave() override;

    /// False when the address cannot be listened on; errorString() has the reason.
    bool listen();
    quint16 port() const { return server.serverPort(); }
    QString errorString() const { return server.errorString(); }

    quint16 value(int station, SlaveArea area, quint16 offset) const;
    void setValue(int station, SlaveArea area, quint16 offset, quint16 value);
    void inject(const Fault &fault, int replies) { options.faults.inject(fault, replies); }
    SlaveCounts counts() const;

    /// For the connections: whether \a request, a whole frame, is to be answered, and with what fault.
    bool isAddressed(const QByteArray &request) const;
    Fault nextFault();
    /// Executes \a request and returns the right reply; empty for a broadcast.
    QByteArray execute(const QByteArray &request);
    /// The reply of a device that cannot: exception 4.
    QByteArray refuse(const QByteArray &request);
    const SlaveOptions &settings() const { return options; }
    FaultPlan &faults() { return options.faults; }
    void countForeign() { ++count.foreign; }
    void countDropped(int bytes) { count.droppedBytes += static_cast<quint64>(bytes); }

private:
    void acceptConnections();

    SlaveOptions options;
    SlaveCounts count;
    QTcpServer server;
    std::map<int, std::unique_ptr<ModbusStation>> stations;
};
