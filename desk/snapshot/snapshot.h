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

/// "1-HR5", where one address is meant.
QString addressText(const AreaRange &range, int index);

/// The file of a snapshot: text that people can read and compare.
///
///     driverhost snapshot
///     format 1
///     time 2026-11-21T10:15:00.123+01:00
///     target rtutcp://192.168.0.10:502/1
///     range 1-HR1..4
///     HR1 4660
///     HR2 0
///     HR3..4 missing
QString snapshotText(const Snapshot &snapshot);
/// Reads it; the error names the line and what was expected. What a later version may have added is an error:
/// what is put back must be understood.
Result<Snapshot> parseSnapshot(const QString &text);

/// The same from and to a file. It is written whole or not at all.
Result<Snapshot> readSnapshotFile(const QString &path);
Result<> writeSnapshotFile(const QString &path, const Snapshot &snapshot);
