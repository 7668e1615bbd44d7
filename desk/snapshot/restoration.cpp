#include "desk/snapshot/restoration.h"

#include "desk/items/range_items.h"
#include "desk/items/value_place.h"
#include "desk/types/value_bits.h"

#include <algorithm>

namespace
{

// From the best to the worst.
const Restored States[] = {Restored::Verified,    Restored::Written, Restored::Different,
                           Restored::Unconfirmed, Restored::Refused, Restored::NotSent};

QString textOf(Restored state)
{
    switch (state) {
    case Restored::Verified: return QStringLiteral("written and verified: ");
    case Restored::Written: return QStringLiteral("written, not verified: ");
    case Restored::Different: return QStringLiteral("written, and read back as something else: ");
    case Restored::Unconfirmed: return QStringLiteral("sent but not confirmed, perhaps written: ");
    case Restored::Refused: return QStringLiteral("refused: ");
    case Restored::NotSent: break;
    }
    return QStringLiteral("not sent: ");
}

Restored restoredAs(WriteState state)
{
    switch (state) {
    case WriteState::Written: return Restored::Written;
    case WriteState::Unconfirmed: return Restored::Unconfirmed;
    case WriteState::Refused: return Restored::Refused;
    case WriteState::NotSent: break;
    }
    return Restored::NotSent;
}

AreaRange rangeOf(const Items &items)
{
    const Address &address = items.address;
    return {address.station, address.area, address.wireOffset(), address.wireOffset() + items.count - 1};
}

void extend(std::vector<AreaRange> &ranges, const AreaRange &run, int offset)
{
    const bool isNext = !ranges.empty() && ranges.back().station == run.station &&
                        ranges.back().area == run.area && ranges.back().last + 1 == offset;
    if (isNext)
        ranges.back().last = offset;
    else
        ranges.push_back({run.station, run.area, offset, offset});
}

} // namespace

Restoration::Restoration(const std::vector<WriteRun> &runs)
{
    for (const WriteRun &run : runs)
        m_runs.push_back({run,
                          typedItems(run.items, ValueForm::Unsigned),
                          rangeOf(run.items),
                          std::vector<Restored>(run.values.size(), Restored::NotSent),
                          {}});
}

QString Restoration::label(size_t run) const
{
    return rangeText(m_runs[run].range);
}

int Restoration::addresses() const
{
    size_t addresses = 0;
    for (const Run &run : m_runs)
        addresses += run.states.size();
    return static_cast<int>(addresses);
}

bool Restoration::write(Session &session, size_t run)
{
    Run &one = m_runs[run];
    std::vector<QByteArray> values;
    values.reserve(one.write.values.size());
    for (const quint16 value : one.write.values)
        values.push_back(valueOf(value, one.typed.type.bytes()));
    const bool isWritten = session.write(one.write.items, dataOf(values, one.typed));
    WriteReport report(one.typed);
    report.add(session.exchanges());
    for (size_t i = 0; i < one.states.size(); ++i)
        one.states[i] = restoredAs(report.stateOf(static_cast<int>(i)));
    return isWritten;
}

bool Restoration::verify(Session &session, size_t run)
{
    Run &one = m_runs[run];
    const std::optional<QByteArray> data = session.read(itemsOf(one.range));
    if (!data)
        return false;
    one.readBack = valuesIn(*data, one.typed);
    for (size_t i = 0; i < one.states.size(); ++i)
        one.states[i] =
            bitsOf(one.readBack[i]) == one.write.values[i] ? Restored::Verified : Restored::Different;
    return true;
}

std::optional<Restored> Restoration::stateOf(const Difference &difference) const
{
    for (const Run &run : m_runs) {
        if (run.range.station == difference.station && run.range.area == difference.area &&
            run.range.first <= difference.offset && difference.offset <= run.range.last)
            return run.states[static_cast<size_t>(difference.offset - run.range.first)];
    }
    return std::nullopt;
}

int Restoration::count(Restored state) const
{
    int count = 0;
    for (const Run &run : m_runs)
        count += static_cast<int>(std::count(run.states.begin(), run.states.end(), state));
    return count;
}

QStringList Restoration::mismatches() const
{
    QStringList texts;
    for (const Run &run : m_runs) {
        for (size_t i = 0; i < run.states.size(); ++i) {
            if (run.states[i] == Restored::Different)
                texts +=
                    QStringLiteral("%1-%2: wrote %3, read back %4")
                        .arg(QString::number(run.range.station),
                             areaName(run.range.area) + QString::number(run.range.first + int(i) + 1),
                             QString::number(run.write.values[i]), QString::number(bitsOf(run.readBack[i])));
        }
    }
    return texts;
}

QStringList Restoration::lines() const
{
    QStringList lines;
    for (const Restored state : States) {
        std::vector<AreaRange> ranges;
        for (const Run &run : m_runs) {
            for (size_t i = 0; i < run.states.size(); ++i) {
                if (run.states[i] == state)
                    extend(ranges, run.range, run.range.first + int(i));
            }
        }
        QStringList texts;
        for (const AreaRange &range : ranges)
            texts += rangeText(range);
        if (!texts.isEmpty())
            lines += textOf(state) + texts.join(QStringLiteral(" and "));
    }
    return lines;
}

QString nameOf(Restored state)
{
    switch (state) {
    case Restored::Verified: return QStringLiteral("verified");
    case Restored::Written: return QStringLiteral("written");
    case Restored::Different: return QStringLiteral("different");
    case Restored::Unconfirmed: return QStringLiteral("unconfirmed");
    case Restored::Refused: return QStringLiteral("refused");
    case Restored::NotSent: break;
    }
    return QStringLiteral("not-sent");
}
