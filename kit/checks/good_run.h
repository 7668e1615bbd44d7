#pragma once

#include "kit/link/driver_link.h"
#include "kit/suite/trial.h"

#include <functional>

namespace kit
{

/// A sample as it goes when all is well.
struct GoodRun {
    Sample sample;
    std::vector<Exchange> exchanges;
};
using GoodRuns = std::vector<GoodRun>;

/// Runs every sample. Those that fail are left out; without any the check is skipped.
GoodRuns goodRuns(Trial &trial, DriverLink &link);

/// Whether the data of \a outcome are those that the slave gives at present, which a write may have changed
/// since the good run.
bool hasRightData(DriverLink &link, const GoodRun &run, const Outcome &outcome);

/// Calls \a look with every exchange of every sample that succeeds, and its place in the run.
void forEachExchange(
    Trial &trial,
    const std::function<void(DriverLink &link, const GoodRun &run, const Exchange &exchange, int at)> &look);

/// Everything that breaks off a transmission of this run: no reply, a cut one, a short send. Each in every
/// exchange.
Troubles brokenTransmissions(const GoodRun &run);

} // namespace kit
