#pragma once

#include "apps/driverhost/watch/watch_options.h"

#include <memory>

/// A table on the terminal that is drawn again after every round, and now and then while a reply is waited
/// for.
std::unique_ptr<WatchListener> makeScreenView(const Session &session, const std::vector<Reading> &readings,
                                              const WatchRun &run);
