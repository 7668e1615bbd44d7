#pragma once

#include "apps/driverhost/watch/watch_options.h"

#include <memory>

/// How the readings of a watch are shown: a table in place, or lines, as fits the output.
std::unique_ptr<WatchListener> makeWatchView(const Session &session, const std::vector<Reading> &readings,
                                             const WatchRun &run);
