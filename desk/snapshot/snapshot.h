#pragma once

#include "desk/items/area_range.h"

#include <optional>
#include <vector>

/// Some addresses of one area of one station, and what they held; nothing where the slave has none.
struct KeptRange {
    AreaRange range; ///< of one station
    std::vector<std::optional<quint16>> values;
};

/// What a slave held at some time.
struct Snapshot {
    QString time;
    QString target; ///< "rtutcp://HOST:PORT/STATION"
    std::vector<KeptRange> ranges;
};

/// The first of the ranges that has an address of \a range.
std::optional<AreaRange> overlapping(const std::vector<AreaRange> &ranges, const AreaRange &range);

/// What the ranges hold, and how many of it a slave lacks.
int valuesIn(const Snapshot &snapshot);
int missingIn(const Snapshot &snapshot);

/// The ranges without their values.
std::vector<AreaRange> rangesOf(const Snapshot &snapshot);
/// The same snapshot for a slave of a station: what is of the target's own station is meant for that one,
/// what is of other stations for those.
Snapshot movedTo(Snapshot snapshot, int station);
