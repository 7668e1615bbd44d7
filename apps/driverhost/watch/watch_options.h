#pragma once

#include "apps/driverhost/console/command_line.h"
#include "desk/live/watch_loop.h"
#include "desk/output/fields.h"

/// What the subcommands have in common that read the same values again and again: `watch`, `tags --watch`.
struct WatchRun {
    WatchSettings settings;
    OutputFormat format = OutputFormat::Text;
    bool isTraced = false; ///< frames go to standard error, and would tear a table apart
    QString title;         ///< above the table on a terminal
};

QList<QCommandLineOption> watchOptions();
/// What is wrong is noted in \a line.
WatchRun watchRunOf(CommandLine &line);

/// Adds what is shown of the link.
WatchRun watchRunOn(const LinkSettings &link, WatchRun run);

/// Reads until the rounds or the time are over or a signal asks to stop, as a table in place on a terminal
/// and as lines elsewhere; then reports the statistics. Success when anything could be read, otherwise the
/// exit code of the last failure.
int watchReadings(Session &session, const std::vector<Reading> &readings, const WatchRun &run);
