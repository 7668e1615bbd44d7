#include "slave/embedded_slave.h"

#include "slave/modbus_station.h"
#include "slave/slave_connection.h"
#include "trace_frame.h"

#include <QTcpSocket>

namespace
{

QModbusRequest pduOf(const QByteArray &frame)
{
    QModbusRequest pdu;
    pdu.setFunctionCode(static_cast<QModbusPdu::FunctionCode>(byteAt(frame, 1)));
    pdu.setData(frame.mid(2, frame.size() - 2 - CrcSize));
    return pdu;
}

QByteArray frameOf(char station, const QModbusResponse &response)
{
    int function = response.functionCode();
    if (response.isException())
        function |= QModbusPdu::ExceptionByte;
    return withCrc(QByteArray(1, station) + static_cast<char>(function) + response.data());
}

} // namespace

EmbeddedSlave::EmbeddedSlave(const SlaveOptions &slaveOptions, QObject *parent)
    : QObject(parent), options(slaveOptions)
{
    for (const int station : options.stations)
        stations[station] = std::make_unique<ModbusStation>(station, options);
    connect(&server, &QTcpServer::newConnection, this, &EmbeddedSlave::acceptConnections);
}

EmbeddedSlave::~EmbeddedSlave()
{
    server.close();
    qDeleteAll(findChildren<SlaveConnection *>());
}

bool EmbeddedSlave::listen()
{
    return server.listen(options.address, options.port);
}

void EmbeddedSlave::acceptConnections()
{
    while (QTcpSocket *socket = server.nextPendingConnection())
        new SlaveConnection(socket, ++count.connections, this);
}

SlaveCounts EmbeddedSlave::counts() const
{
    SlaveCounts counts = count;
    counts.openConnections = findChildren<SlaveConnection *>().size();
    return counts;
}

bool EmbeddedSlave::isAddressed(const QByteArray &request) const
{
    const int station = byteAt(request, 0);
    return station == 0 || stations.count(station) != 0;
}

Fault EmbeddedSlave::nextFault()
{
    const Fault fault = options.faults.next();
    if (fault.kind != Fault::None)
        ++count.faults[fault.kind];
    return fault;
}

QByteArray EmbeddedSlave::execute(const QByteArray &request)
{
    ++count.requests;
    const QModbusRequest pdu = pduOf(request);
    if (byteAt(request, 0) == 0) {
        ++count.broadcasts;
        for (const auto &entry : stations)
            entry.second->answer(pdu);
        return QByteArray();
    }
    const QModbusResponse response = stations.at(byteAt(request, 0))->answer(pdu);
    if (response.isException())
        ++count.exceptions;
    return frameOf(request.at(0), response);
}

QByteArray EmbeddedSlave::refuse(const QByteArray &request)
{
    ++count.requests;
    ++count.exceptions;
    return exceptionReply(request, QModbusPdu::ServerDeviceFailure);
}

quint16 EmbeddedSlave::value(int station, SlaveArea area, quint16 offset) const
{
    return stations.at(station)->valueAt(area, offset);
}

void EmbeddedSlave::setValue(int station, SlaveArea area, quint16 offset, quint16 value)
{
    stations.at(station)->setValueAt(area, offset, value);
}
