#include "desk/slave/embedded_slave.h"

#include "desk/slave/modbus_station.h"
#include "desk/slave/slave_connection.h"
#include "desk/wire/rtu_frame.h"
#include "drivers/qt/qt_lines.h"

#include <QTcpSocket>
#include <QTimer>

#include <algorithm>

namespace
{

QModbusRequest pduOf(const QByteArray &frame)
{
    QModbusRequest pdu;
    pdu.setFunctionCode(static_cast<QModbusPdu::FunctionCode>(byteAt(frame, 1)));
    pdu.setData(frame.mid(2, frame.size() - 2 - modbus::CrcSize));
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
    : QObject(parent), m_options(slaveOptions)
{
    for (const int station : m_options.stations)
        m_stations[station] = std::make_unique<ModbusStation>(station, m_options);
    m_clock.start();
    connect(&m_server, &QTcpServer::newConnection, this, &EmbeddedSlave::acceptConnections);
}

EmbeddedSlave::~EmbeddedSlave()
{
    m_server.close();
    qDeleteAll(findChildren<SlaveConnection *>());
}

bool EmbeddedSlave::listen()
{
    return m_server.listen(m_options.address, m_options.port);
}

void EmbeddedSlave::acceptConnections()
{
    while (QTcpSocket *socket = m_server.nextPendingConnection()) {
        if (hasFreeSlot()) {
            new SlaveConnection(socket, ++m_count.connections, this);
        } else {
            ++m_count.rejected;
            socket->abort();
            socket->deleteLater();
        }
    }
}

bool EmbeddedSlave::hasFreeSlot() const
{
    const int held = m_options.gateway.slotHeldMs;
    return held < 0 ||
           (openConnections().isEmpty() && (!m_sinceEnd.isValid() || m_sinceEnd.hasExpired(held)));
}

QList<SlaveConnection *> EmbeddedSlave::openConnections() const
{
    QList<SlaveConnection *> open;
    for (SlaveConnection *connection : findChildren<SlaveConnection *>()) {
        if (connection->isOpen())
            open.append(connection);
    }
    return open;
}

void EmbeddedSlave::sendLate(const QByteArray &reply, int milliseconds)
{
    m_busyUntil = m_clock.elapsed() + milliseconds;
    QTimer::singleShot(milliseconds, Qt::PreciseTimer, this, [=] {
        const QList<SlaveConnection *> open = openConnections();
        if (!open.isEmpty())
            open.last()->sendUnasked(reply, QStringLiteral("[late] "));
    });
}

int EmbeddedSlave::busyMs() const
{
    const qint64 left = m_busyUntil - m_clock.elapsed();
    // A millisecond that has begun counts whole, so that nothing overtakes the late reply.
    return left < 0 ? 0 : static_cast<int>(left) + 1;
}

SlaveCounts EmbeddedSlave::counts() const
{
    SlaveCounts counts = m_count;
    counts.openConnections = sizeOf(findChildren<SlaveConnection *>());
    return counts;
}

bool EmbeddedSlave::isAddressed(const QByteArray &request) const
{
    const int station = byteAt(request, 0);
    return station == 0 || m_stations.count(station) != 0;
}

Fault EmbeddedSlave::nextFault()
{
    const Fault fault = m_options.faults.next();
    if (fault.kind != Fault::None)
        ++m_count.faults[fault.kind];
    return fault;
}

QByteArray EmbeddedSlave::execute(const QByteArray &request)
{
    ++m_count.requests;
    const QModbusRequest pdu = pduOf(request);
    if (byteAt(request, 0) == 0) {
        ++m_count.broadcasts;
        for (const auto &entry : m_stations)
            entry.second->answer(pdu);
        return QByteArray();
    }
    const QModbusResponse response = m_stations.at(byteAt(request, 0))->answer(pdu);
    if (response.isException())
        ++m_count.exceptions;
    return frameOf(request.at(0), response);
}

QByteArray EmbeddedSlave::refuse(const QByteArray &request)
{
    ++m_count.requests;
    ++m_count.exceptions;
    return exceptionReply(request, QModbusPdu::ServerDeviceFailure);
}

quint16 EmbeddedSlave::value(int station, Area area, quint16 offset) const
{
    return m_stations.at(station)->valueAt(area, offset);
}

void EmbeddedSlave::setValue(int station, Area area, quint16 offset, quint16 value)
{
    m_stations.at(station)->setValueAt(area, offset, value);
}
