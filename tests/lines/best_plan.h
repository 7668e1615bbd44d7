#pragma once

#include "tests/lines/layouts.h"

/// What a refresh takes on the line by plans that are made elsewhere than in the desk's own planning.
struct PlanTime {
    int requests = 0;
    double microseconds = 0;
};

/// The least that any set of requests takes, by who knows the device and the line.
PlanTime bestPlan(const Layout &layout);
/// The same for a few points, over all sets of ranges whatever they look like.
double bestByBruteForce(const Layout &layout);
/// Each point by a request of its own.
PlanTime oneByOnePlan(const Layout &layout);
/// Neighbours together, without a gap; double words each on their own; and all of them one by one where such
/// a request is refused.
PlanTime gapFreePlan(const Layout &layout);
/// Every gap filled that the protocol's limits allow, over holes as well; refused ones one by one.
PlanTime filledPlan(const Layout &layout);
