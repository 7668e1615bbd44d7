#include "desk/link/write_report.h"

#include "desk/items/value_place.h"
#include "desk/wire/rtu_frame.h"

#include <algorithm>

namespace
{

bool isConfirmed(const Exchange &exchange)
{
    return hasGoodCrc(exchange.reply) && exchange.reply.left(2) == exchange.request.left(2);
}

int quantityOf(const QByteArray &request)
{
    return modbus::isWriteSingle(functionOf(request)) ? 1 : wordAt(request, 4);
}

Area areaOf(const QByteArray &request)
{
    const int function = functionOf(request);
    const bool isCoils = function == modbus::WriteSingleCoil || function == modbus::WriteMultipleCoils;
    return isCoils ? Area::Coils : Area::HoldingRegisters;
}

WriteState stateAfter(const Exchange &exchange)
{
    if (isConfirmed(exchange))
        return WriteState::Written;
    return outcomeOf(exchange) == Outcome::Exception ? WriteState::Refused : WriteState::Unconfirmed;
}

QString areaText(const Items &items, Area area)
{
    const int station = items.address.station;
    return (station < 0 ? QString() : QString::number(station) + QLatin1Char('-')) + areaName(area);
}

const char *textOf(WriteState state)
{
    switch (state) {
    case WriteState::Written: return "already written: ";
    case WriteState::Unconfirmed: return "sent but not confirmed, perhaps written: ";
    case WriteState::Refused: return "refused: ";
    case WriteState::NotSent: break;
    }
    return "not sent: ";
}

// "HR1", "HR1..5 and HR9".
QString rangesText(const QString &area, const std::vector<int> &offsets)
{
    QStringList ranges;
    for (auto offset = offsets.begin(); offset != offsets.end();) {
        const int first = *offset;
        int last = first;
        while (++offset != offsets.end() && *offset == last + 1)
            ++last;
        ranges += area + QString::number(first + 1) +
                  (last > first ? QStringLiteral("..") + QString::number(last + 1) : QString());
    }
    return ranges.join(QStringLiteral(" and "));
}

} // namespace

WriteReport::WriteReport(const TypedItems &typed)
    : m_typed(typed), m_area(areaText(typed.items, typed.items.address.area))
{
    const int first = typed.items.address.wireOffset();
    for (int i = 0; !typed.items.isRaw() && i < extentOf(typed.items); ++i)
        m_states[first + i] = WriteState::NotSent;
}

void WriteReport::add(const std::vector<Exchange> &exchanges)
{
    for (const Exchange &exchange : exchanges) {
        if (!modbus::isRead(functionOf(exchange.request)))
            add(exchange);
    }
}

// A refusal says nothing of an earlier attempt that was not confirmed.
void WriteReport::add(const Exchange &exchange)
{
    m_area = areaText(m_typed.items, areaOf(exchange.request));
    const WriteState after = stateAfter(exchange);
    const int first = wordAt(exchange.request, 2);
    for (int i = 0; i < quantityOf(exchange.request); ++i)
        m_states[first + i] = std::max(m_states[first + i], after);
}

WriteState WriteReport::stateOf(int value) const
{
    if (m_typed.items.isRaw())
        return m_states.empty() ? WriteState::NotSent : m_states.begin()->second;
    const AreaRange range = rangeOf(m_typed, value);
    WriteState least = WriteState::Written;
    bool isTouched = false;
    for (int offset = range.first; offset <= range.last; ++offset) {
        const WriteState state = m_states.at(offset);
        least = std::min(least, state);
        isTouched = isTouched || state >= WriteState::Unconfirmed;
    }
    // Half a value is written, the other half is not: nobody knows it.
    return isTouched ? std::max(least, WriteState::Unconfirmed) : least;
}

bool WriteReport::hasTouched() const
{
    return std::any_of(m_states.begin(), m_states.end(),
                       [](const auto &entry) { return entry.second >= WriteState::Unconfirmed; });
}

QStringList WriteReport::lines() const
{
    QStringList lines;
    for (const WriteState state :
         {WriteState::Written, WriteState::Unconfirmed, WriteState::Refused, WriteState::NotSent}) {
        std::vector<int> offsets;
        for (const auto &[offset, offsetState] : m_states) {
            if (offsetState == state)
                offsets.push_back(offset);
        }
        if (!offsets.empty())
            lines += QLatin1String(textOf(state)) + rangesText(m_area, offsets);
    }
    return lines;
}
