#include "tests/plants/plant.h"

#include "desk/slave/reply_shape.h"
#include "desk/wire/rtu_frame.h"

namespace
{

const qint64 Millisecond = 1000;
const qint64 RequestSilence = 200 * Millisecond;

QByteArray withStation(int station, const QByteArray &pdu)
{
    return withCrc(QByteArray(1, static_cast<char>(station)) + pdu);
}

} // namespace

Plant::Plant(VirtualTime &time, const PlantOptions &options)
    : m_time(time), m_options(options), m_random(options.seed)
{
    for (const int number : options.slave.stations)
        m_stations[number] = std::make_unique<ModbusStation>(number, options.slave);
}

int Plant::draw(int low, int high)
{
    return std::uniform_int_distribution<int>(low, high)(m_random);
}

bool Plant::accept(PlantWire &wire)
{
    if (m_options.port == PlantOptions::Port::Refuses)
        return false;
    if (m_firstConnectedAt < 0)
        m_firstConnectedAt = m_time.now();
    ++*m_connection;
    m_wire = &wire;
    m_deframer = RtuDeframer();
    m_received.clear();
    const bool isHeld = m_time.now() - m_firstConnectedAt < m_options.heldFor;
    if (m_options.port == PlantOptions::Port::ClosesAtOnce || isHeld) {
        after(draw(1, 40) * Millisecond, [](Plant &plant) { plant.end(plant.draw(0, 1) == 1); });
        return true;
    }
    const QByteArray first = m_options.registration + m_options.greeting;
    if (!first.isEmpty())
        after(draw(1, 100) * Millisecond, [first](Plant &plant) { plant.send(first); });
    if (m_options.heartbeatPeriod > 0)
        after(draw(1, int(m_options.heartbeatPeriod)), [](Plant &plant) { plant.beat(); });
    if (m_options.otherPeriod > 0)
        after(draw(1, int(m_options.otherPeriod)), [](Plant &plant) { plant.letOtherAsk(); });
    noteTraffic();
    return true;
}

void Plant::closed()
{
    ++*m_connection;
    m_wire = nullptr;
}

void Plant::after(qint64 delay, const std::function<void(Plant &)> &event)
{
    const std::weak_ptr<int> connection = m_connection;
    m_time.after(delay, [this, connection, number = *m_connection, event] {
        const std::shared_ptr<int> current = connection.lock();
        if (current && *current == number)
            event(*this);
    });
}

void Plant::send(const QByteArray &bytes)
{
    if (m_wire != nullptr && !bytes.isEmpty())
        m_wire->deliver(bytes);
}

void Plant::end(bool isReset)
{
    PlantWire *wire = m_wire;
    closed();
    if (wire != nullptr)
        wire->end(isReset);
}

void Plant::noteTraffic()
{
    if (m_options.idleTime == 0)
        return;
    const quint64 traffic = ++m_traffic;
    after(m_options.idleTime, [traffic](Plant &plant) {
        if (plant.m_traffic == traffic)
            plant.end(false);
    });
}

void Plant::beat()
{
    send(m_options.heartbeat);
    after(m_options.heartbeatPeriod, [](Plant &plant) { plant.beat(); });
}

// The master's request is on the line too where it has two wires.
void Plant::letOtherAsk()
{
    const QByteArray values = QByteArray::fromHex("0304") + QByteArray(4, static_cast<char>(draw(0, 255)));
    send(withStation(m_options.otherStation, values));
    after(m_options.otherPeriod * draw(80, 120) / 100, [](Plant &plant) { plant.letOtherAsk(); });
}

void Plant::receive(const QByteArray &bytes)
{
    noteTraffic();
    if (m_options.protocol == PlantOptions::Protocol::Rtu)
        receiveRtu(bytes);
    else
        serve(bytes);
}

void Plant::receiveRtu(const QByteArray &bytes)
{
    if (m_options.damage == PlantOptions::Damage::Garbled) {
        after(30 * Millisecond, [](Plant &plant) {
            QByteArray garbled(plant.draw(5, 9), '\0');
            for (char &byte : garbled)
                byte = static_cast<char>(plant.draw(128, 255));
            plant.send(garbled);
        });
        return;
    }
    m_deframer.add(bytes);
    takeRequests();
    const quint64 requests = ++m_requests;
    after(RequestSilence, [requests](Plant &plant) {
        while (plant.m_requests == requests && plant.m_deframer.isPending()) {
            plant.m_deframer.giveUp();
            plant.takeRequests();
        }
    });
}

void Plant::takeRequests()
{
    for (QByteArray request = m_deframer.next(); !request.isEmpty(); request = m_deframer.next())
        answer(request);
}

QByteArray Plant::execute(int station, const QByteArray &pdu)
{
    QModbusRequest request;
    request.setFunctionCode(static_cast<QModbusPdu::FunctionCode>(byteAt(pdu, 0)));
    request.setData(pdu.mid(1));
    if (modbus::isWriteSingle(byteAt(pdu, 0)) || modbus::isWriteMultiple(byteAt(pdu, 0)))
        ++m_writes;
    const QModbusResponse response = m_stations.at(station)->answer(request);
    const int flag = response.isException() ? modbus::ExceptionFlag : 0;
    return QByteArray(1, static_cast<char>(response.functionCode() | flag)) + response.data();
}

void Plant::answer(const QByteArray &request)
{
    const int station = byteAt(request, 0);
    if (m_time.now() < m_ignoresUntil)
        return;
    if (m_stations.count(station) != 0) {
        const QByteArray pdu = request.mid(1, request.size() - 1 - modbus::CrcSize);
        sendReply(request, withStation(station, execute(station, pdu)));
    } else if (m_options.absentCode > 0) {
        after(m_options.absentAfter, [request, code = m_options.absentCode](Plant &plant) {
            plant.send(exceptionReply(request, code));
        });
    } else if (m_options.slave.faults.next().kind == Fault::Echo) {
        send(request);
    }
}

void Plant::sendReply(const QByteArray &request, const QByteArray &reply)
{
    const Fault fault = m_options.slave.faults.next();
    const QByteArray right = fault.kind == Fault::Exception ? exceptionReply(request, fault.value) : reply;
    const ReplyShape shape = shapeReply(fault, request, right, m_previousReply, m_options.slave.faults);
    m_previousReply = reply;
    qint64 delay = (m_options.slave.latencyMs + shape.delayMs) * Millisecond;
    if (m_options.jitter > 0)
        delay += draw(0, int(m_options.jitter));
    m_busyUntil = std::max(m_busyUntil, m_time.now()) + delay;
    qint64 at = m_busyUntil - m_time.now();
    if (shape.ending == ReplyShape::CloseConnection || shape.ending == ReplyShape::ResetConnection)
        after(at,
              [isReset = shape.ending == ReplyShape::ResetConnection](Plant &plant) { plant.end(isReset); });
    for (const QByteArray &segment : shape.segments) {
        after(at, [segment](Plant &plant) {
            plant.send(plant.damaged(segment));
            plant.m_ignoresUntil = plant.m_time.now() + plant.m_options.pauseNeeded;
        });
        at += shape.segmentGapMs * Millisecond;
    }
}

QByteArray Plant::damaged(QByteArray bytes)
{
    const int whole = 1000;
    const int size = int(bytes.size());
    if (m_options.damage == PlantOptions::Damage::None || draw(1, whole) > m_options.damagedShare * whole)
        return bytes;
    const bool isCut = draw(0, 1) == 1;
    int index = draw(0, size - 1);
    if (m_options.damage == PlantOptions::Damage::Beginning) {
        if (isCut)
            return bytes.mid(draw(1, 2));
        index = draw(0, 1);
    } else if (m_options.damage == PlantOptions::Damage::End) {
        if (isCut)
            return bytes.left(size - draw(1, 3));
        index = size - draw(1, 2);
    }
    bytes[index] = static_cast<char>(bytes.at(index) ^ (1 << draw(0, 7)));
    return bytes;
}
