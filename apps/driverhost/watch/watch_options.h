#pragma once

#include "apps/driverhost/console/command_line.h"
#include "desk/live/watch_loop.h"
#include "desk/log/log_file.h"
#include "desk/log/row_series.h"

/// The file in which a watch keeps what it reads.
struct WatchLog {
    QString path;
    RowSeriesForm form;
    LogRotation rotation;
};

/// What the subcommands have in common that read the same values again and again: `watch`, `tags --watch`.
struct WatchRun {
    WatchSettings settings;
    RowSeriesForm form; ///< of the lines, where there is no table
    std::optional<WatchLog> log;
    bool isTraced = false; ///< frames go to standard error, and would tear a table apart
    QString title;         ///< above the table on a terminal
};

void addWatchOptions(CommandLine &line);
/// What is wrong is noted in \a line.
WatchRun watchRunOf(CommandLine &line);

/// Adds what is shown of the link.
WatchRun watchRunOn(const LinkSettings &link, WatchRun run);

/// Reads until the rounds or the time are over or a signal asks to stop, as a table in place on a terminal
/// and as lines elsewhere; then reports the statistics. Success when anything could be read, otherwise the
/// exit code of the last failure. What is learnt of the stations is kept in \a learnt.
int watchReadings(Session &session, const std::vector<Reading> &readings, Learnt &learnt,
                  const WatchRun &run);
