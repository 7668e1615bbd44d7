#include "desk/snapshot/snapshot_reading.h"

#include "desk/items/range_items.h"
#include "desk/items/value_place.h"
#include "desk/types/value_bits.h"

#include <algorithm>

std::optional<KeptRange> SnapshotReading::read(const AreaRange &range,
                                               const std::function<bool(int number)> &mayGoOn)
{
    KeptRange kept{range, {}};
    kept.values.resize(static_cast<size_t>(range.last - range.first + 1));
    RangeScan scan(itemsOf(range), [&](const Items &items) { return keep(items, kept); });
    const bool isComplete = scan.run(range.first + 1, range.last + 1, mayGoOn);
    return isComplete ? std::optional<KeptRange>(kept) : std::nullopt;
}

RunLimits SnapshotReading::limits() const
{
    RunLimits limits;
    if (m_registers.isLimited)
        limits.registers = m_registers.most;
    if (m_bits.isLimited)
        limits.coils = m_bits.most;
    return limits;
}

void SnapshotReading::note(RangeAnswer answer, int count, AtOnce &atOnce)
{
    atOnce.isLimited = atOnce.isLimited || answer == RangeAnswer::TooMany;
    if (answer == RangeAnswer::There)
        atOnce.most = std::max(atOnce.most, count);
}

RangeAnswer SnapshotReading::keep(const Items &items, KeptRange &kept)
{
    m_last = items;
    QByteArray data;
    const RangeAnswer answer = m_reader(items, data);
    note(answer, items.count, isBitArea(kept.range.area) ? m_bits : m_registers);
    if (answer != RangeAnswer::There)
        return answer;
    auto place = kept.values.begin() + (items.address.wireOffset() - kept.range.first);
    for (const QByteArray &value : valuesIn(data, typedItems(items, ValueForm::Unsigned)))
        *place++ = static_cast<quint16>(bitsOf(value));
    return answer;
}
