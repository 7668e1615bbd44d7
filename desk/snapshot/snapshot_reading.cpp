#include "desk/snapshot/snapshot_reading.h"

#include "desk/items/range_items.h"
#include "desk/items/value_place.h"
#include "desk/refresh/refresh.h"
#include "desk/types/value_bits.h"

#include <algorithm>

namespace
{

int lengthOf(const AreaRange &range)
{
    return range.last - range.first + 1;
}

std::vector<AreaRange> addressesOf(const std::vector<AreaRange> &ranges)
{
    std::vector<AreaRange> addresses;
    for (const AreaRange &range : ranges) {
        for (int offset = range.first; offset <= range.last; ++offset)
            addresses.push_back({range.station, range.area, offset, offset});
    }
    return addresses;
}

// What nobody has asked for may have effects when it is read.
Learnt withoutFilling(const std::vector<AreaRange> &ranges)
{
    Learnt learnt;
    for (const AreaRange &range : ranges)
        learnt[range.station].options.fillsGaps = false;
    return learnt;
}

// Slaves with small buffers may not even refuse a longer request.
bool isLong(const AreaRange &range)
{
    const RunLimits limits;
    return lengthOf(range) > (isBitArea(range.area) ? limits.coils : limits.registers);
}

} // namespace

std::optional<std::vector<KeptRange>> SnapshotReading::read(const std::vector<AreaRange> &ranges,
                                                            const Watcher &mayGoOn)
{
    m_mayGoOn = mayGoOn;
    m_addresses = addressesOf(ranges);
    m_values.assign(m_addresses.size(), std::nullopt);
    m_done = 0;
    Learnt learnt = withoutFilling(ranges);
    m_isWhole = doAllAnswer(ranges, learnt);
    if (m_isWhole)
        Refresh(m_addresses, learnt).readRound(*this, 0);
    if (!m_isWhole)
        return std::nullopt;
    std::vector<KeptRange> kept;
    auto value = m_values.begin();
    for (const AreaRange &range : ranges) {
        kept.push_back({range, {value, value + lengthOf(range)}});
        value += lengthOf(range);
    }
    return kept;
}

// A station that does not answer to one address need not be asked for many.
bool SnapshotReading::doAllAnswer(const std::vector<AreaRange> &ranges, Learnt &learnt)
{
    for (const AreaRange &range : ranges) {
        bool &hasAnswered = learnt[range.station].hasAnswered;
        if (!isLong(range) || hasAnswered)
            continue;
        hasAnswered =
            read({range.station, range.area, range.first, range.first}).outcome != RangeReply::Ended;
        if (!hasAnswered)
            return false;
    }
    return true;
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

RangeReply SnapshotReading::read(const AreaRange &range)
{
    m_reply = {};
    if (!m_mayGoOn(m_done)) {
        m_reply.outcome = RangeReply::Ended;
        return m_reply;
    }
    m_last = itemsOf(range);
    const RangeAnswer answer = m_reader(m_last, m_data);
    m_reply.outcome = outcomeOf(answer, range);
    AtOnce &atOnce = this->atOnce(range.area);
    if (answer == RangeAnswer::There)
        atOnce.most = std::max(atOnce.most, lengthOf(range));
    else
        atOnce.isLimited = atOnce.isLimited || answer != RangeAnswer::Missing;
    return m_reply;
}

RangeReply::Outcome SnapshotReading::outcomeOf(RangeAnswer answer, const AreaRange &range) const
{
    switch (answer) {
    case RangeAnswer::There: return RangeReply::Given;
    case RangeAnswer::Missing: return RangeReply::Missing;
    case RangeAnswer::TooMany: return RangeReply::TooMany;
    case RangeAnswer::None: break;
    }
    return isLong(range) ? RangeReply::Lost : RangeReply::Ended;
}

void SnapshotReading::given(const AreaRange &range, const std::vector<int> &points)
{
    const std::vector<QByteArray> values = valuesIn(m_data, typedItems(itemsOf(range), ValueForm::Unsigned));
    for (const int point : points) {
        const auto index = static_cast<size_t>(point);
        const int place = m_addresses[index].first - range.first;
        m_values[index] = static_cast<quint16>(bitsOf(values[static_cast<size_t>(place)]));
    }
    m_done += static_cast<int>(points.size());
}

// Only what the slave has refused is known to be missing.
void SnapshotReading::failed(const AreaRange & /*range*/, const std::vector<int> &points)
{
    m_isWhole = m_isWhole && m_reply.isRefusal();
    m_done += static_cast<int>(points.size());
}

void SnapshotReading::notAsked(const Refusals::Refusal & /*refusal*/, const std::vector<int> &points)
{
    m_done += static_cast<int>(points.size());
}
