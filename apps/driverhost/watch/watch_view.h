#pragma once

#include "apps/driverhost/watch/log_view.h"

#include <memory>

/// How the readings of a watch are shown: a table in place, or lines, as fits the output. A table
/// says what troubles the \a log, if there is one.
std::unique_ptr<WatchListener> makeWatchView(const Session &session, const std::vector<Reading> &readings,
                                             const WatchRun &run, const LogView *log);
