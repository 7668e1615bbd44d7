#pragma once

#include "command_line.h"
#include "readings.h"
#include "session.h"

/// Reading the same values again and again: `watch` and `tags --watch`.
struct WatchSettings {
    int interval = 1000; ///< milliseconds from the begin of a round to the next
    int rounds = 0;      ///< 0: no limit
    qint64 duration = 0; ///< milliseconds; 0: no limit
    OutputFormat format = OutputFormat::Text;
    bool isTraced = false; ///< frames go to standard error, and would tear a table apart
    QString title;         ///< above the table on a terminal
};

QList<QCommandLineOption> watchOptions();
WatchSettings watchSettings(CommandLine &line, const LinkSettings &link);

/// The line above the table.
QString watchTitle(const LinkSettings &link, const WatchSettings &settings);

/// Reads until the rounds or the time are over or a signal asks to stop, as a table in place on a terminal
/// and as lines elsewhere; then tells the statistics. Success when anything could be read, otherwise the exit
/// code of the last failure.
int watchReadings(Session &session, const std::vector<Reading> &readings, const WatchSettings &settings);
