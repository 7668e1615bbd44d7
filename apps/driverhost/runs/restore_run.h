#pragma once

#include "apps/driverhost/runs/snapshot_run.h"

/// How a snapshot is put back.
struct RestoreOptions {
    bool isDryRun = false;
    bool mayWrite = false; ///< without asking
    WriteStyle style = WriteStyle::Together;
    OutputFormat format = OutputFormat::Text;
};

/// Shows what would change, asks, writes what differs and reads it back; ends with the first failure and says
/// how far it came. The exit code.
int restore(Session &session, const SnapshotAndLink &given, const RestoreOptions &options);
