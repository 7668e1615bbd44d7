#pragma once

#include "desk/plan/area_plan.h"
#include "desk/refresh/refresh_client.h"

/// Asks for a range of the plan's area, and learns what the answer tells of the station: that it is there,
/// how much it gives at once, what a request costs, what can be read together. What a refusal means is left
/// to the caller.
RangeReply askAndLearn(const AreaPlan &areaPlan, StationFacts &facts, RefreshClient &client,
                       const Span &span);
