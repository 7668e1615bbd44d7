#pragma once

#include "apps/driverhost/watch/log_view.h"

#include <memory>

/// A table on the terminal that is drawn again after every round, and now and then while a reply is waited
/// for. Below it stands what troubles the \a log, if there is one.
std::unique_ptr<WatchListener> makeScreenView(const Session &session, const std::vector<Reading> &readings,
                                              const WatchRun &run, const LogView *log);
