#include "tests/lines/serial_line.h"

#include "desk/wire/rtu_frame.h"
#include "drivers/qt/qt_lines.h"

#include <cmath>

namespace
{

Area areaOf(int function)
{
    switch (function) {
    case modbus::ReadCoils: return Area::Coils;
    case modbus::ReadDiscreteInputs: return Area::DiscreteInputs;
    case modbus::ReadInputRegisters: return Area::InputRegisters;
    default: return Area::HoldingRegisters;
    }
}

QByteArray dataOf(const AreaRange &range)
{
    QByteArray data;
    for (int offset = range.first; offset <= range.last; ++offset) {
        const quint16 value = SerialLine::valueAt(range.station, range.area, offset);
        if (!isBitArea(range.area)) {
            data.append(static_cast<char>(value >> modbus::ByteBits));
            data.append(static_cast<char>(value & 0xFF));
            continue;
        }
        const int bit = (offset - range.first) % modbus::ByteBits;
        if (bit == 0)
            data.append('\0');
        data[data.size() - 1] = static_cast<char>(data.back() | (value & 1) << bit);
    }
    return data;
}

} // namespace

quint16 SerialLine::valueAt(int station, Area area, int offset)
{
    quint32 value = static_cast<quint32>(offset) * 2654435761u + static_cast<quint32>(station) * 40503u +
                    static_cast<quint32>(area) * 97u;
    value ^= value >> 15;
    return static_cast<quint16>(value ^ value >> 7);
}

bool SerialLine::open(qint64 /*deadline*/)
{
    m_isOpen = true;
    m_reply.clear();
    return true;
}

void SerialLine::close()
{
    m_isOpen = false;
    m_reply.clear();
}

int SerialLine::send(const char *bytes, int size, qint64 /*deadline*/)
{
    const QByteArray request(bytes, size);
    m_reply = replyTo(request);
    if (m_reply.isEmpty())
        return size;
    const double time = m_device.timing.exchange(size, sizeOf(m_reply));
    m_busy += time;
    m_replyAt = m_now + std::llround(time);
    return size;
}

QByteArray SerialLine::receive(qint64 deadline)
{
    if (!m_isOpen || m_reply.isEmpty() || m_replyAt > deadline) {
        pause(deadline);
        return {};
    }
    pause(m_replyAt);
    QByteArray reply;
    reply.swap(m_reply);
    return reply;
}

QByteArray SerialLine::replyTo(const QByteArray &request)
{
    if (!hasGoodCrc(request))
        return {};
    const int function = functionOf(request);
    if (function == modbus::Diagnostics)
        return request;
    ++m_requests;
    if (!modbus::isRead(function))
        return exceptionReply(request, modbus::IllegalFunction);
    const int first = wordAt(request, 2);
    const AreaRange range{byteAt(request, 0), areaOf(function), first, first + wordAt(request, 4) - 1};
    const RangeReply answer = m_device.answer(range);
    m_refusals += answer.outcome == RangeReply::Given ? 0 : 1;
    if (answer.outcome == RangeReply::Lost)
        return {};
    if (answer.outcome != RangeReply::Given)
        return exceptionReply(request, answer.exception);
    const QByteArray data = dataOf(range);
    return withCrc(request.left(2) + static_cast<char>(data.size()) + data);
}
