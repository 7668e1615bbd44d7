#pragma once

#include "apps/driverhost/console/command_line.h"
#include "desk/link/session.h"
#include "desk/output/fields.h"
#include "desk/snapshot/comparison.h"

/// What `snapshot`, `compare` and `restore` have in common: reading ranges, also such as a slave lacks some
/// of.

/// FILE [TARGET]: a snapshot, and the slave that it is held against. Unless the command line has a target it
/// is the one that the snapshot was taken of; with another target what is of the station that it was taken of
/// is meant for the new target's. What is wrong is noted in \a line.
struct SnapshotAndLink {
    QString path;
    Snapshot kept;
    LinkSettings link;
};
SnapshotAndLink snapshotAndLink(CommandLine &line);

struct RangesRead {
    std::vector<KeptRange> ranges;
    RunLimits limits; ///< for writing to the same slave
    int code = 0;     ///< the exit code where something failed, which is reported
};
RangesRead readRanges(Session &session, const std::vector<AreaRange> &ranges);

/// What a slave holds at the addresses of a snapshot.
struct Compared {
    std::vector<Difference> differences;
    RunLimits limits;
    int code = 0; ///< as of RangesRead
};
Compared compareWith(Session &session, const Snapshot &kept);

/// "3 of 120 values differ from plc.snapshot, of 2026-11-21T10:15:00.123+01:00".
QString countText(const std::vector<Difference> &differences, const SnapshotAndLink &given);
