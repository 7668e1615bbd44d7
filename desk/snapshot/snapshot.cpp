#include "desk/snapshot/snapshot.h"

#include "desk/items/target.h"

#include <algorithm>

std::optional<AreaRange> overlapping(const std::vector<AreaRange> &ranges, const AreaRange &range)
{
    const auto other = std::find_if(ranges.begin(), ranges.end(), [&](const AreaRange &one) {
        return one.station == range.station && one.area == range.area && one.first <= range.last &&
               range.first <= one.last;
    });
    return other == ranges.end() ? std::nullopt : std::optional<AreaRange>(*other);
}

int valuesIn(const Snapshot &snapshot)
{
    int values = 0;
    for (const KeptRange &kept : snapshot.ranges)
        values += static_cast<int>(kept.values.size());
    return values;
}

int missingIn(const Snapshot &snapshot)
{
    int missing = 0;
    for (const KeptRange &kept : snapshot.ranges)
        missing += static_cast<int>(std::count(kept.values.begin(), kept.values.end(), std::nullopt));
    return missing;
}

std::vector<AreaRange> rangesOf(const Snapshot &snapshot)
{
    std::vector<AreaRange> ranges;
    ranges.reserve(snapshot.ranges.size());
    for (const KeptRange &kept : snapshot.ranges)
        ranges.push_back(kept.range);
    return ranges;
}

Snapshot movedTo(Snapshot snapshot, int station)
{
    const int own = parseTarget(snapshot.target).valueOr({}).station;
    for (KeptRange &kept : snapshot.ranges) {
        if (kept.range.station == own)
            kept.range.station = station;
    }
    return snapshot;
}
