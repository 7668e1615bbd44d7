#pragma once

#include "desk/snapshot/snapshot.h"

/// The file of a snapshot: text that people can read, compare and comment.
///
///     driverhost snapshot
///     format 1
///     time 2026-11-21T10:15:00.123+01:00
///     target rtutcp://192.168.0.10:502/1
///     range 1-HR1..4
///     HR1 4660
///     HR2 0
///     HR3..4 missing
///     end
QString snapshotText(const Snapshot &snapshot);
/// Reads it; the error names the line and what was expected. What a later version may have added is an error:
/// what is put back must be understood.
Result<Snapshot> parseSnapshot(const QString &text);

/// The same from and to a file. It is written whole or not at all.
Result<Snapshot> readSnapshotFile(const QString &path);
Result<> writeSnapshotFile(const QString &path, const Snapshot &snapshot);
/// Whether nothing else is lost by writing it: nothing is there, or an earlier snapshot.
Result<> checkReplaceable(const QString &path);
