#pragma once

#include "readings.h"
#include "terminal.h"
#include "watched_value.h"
#include "watching.h"

#include <memory>

/// How the readings of a watch are shown.
class WatchView
{
public:
    virtual ~WatchView() = default;

    /// One reading is done, or has failed for the reason in \a error. False when nobody reads the output.
    virtual bool add(size_t reading, const std::vector<ValueRow> &rows) = 0;
    virtual bool addFailure(size_t reading, const QString &error) = 0;
    /// A round is over.
    virtual bool endRound() = 0;
    /// Called now and then while a reply is waited for.
    virtual void tick() {}
};

/// A table in place, or lines, as fits the output.
std::unique_ptr<WatchView> makeWatchView(const std::vector<Reading> &readings, const WatchSettings &settings);
