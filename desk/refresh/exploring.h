#pragma once

#include "desk/plan/area_plan.h"
#include "desk/refresh/refresh_client.h"

/// Asks for something beyond the plan, where the time that it takes would tell how to plan better; for
/// nothing once that is known. Says whether to go on.
RangeReply::Outcome explore(AreaPlan &areaPlan, StationFacts &facts, RefreshClient &client, qint64 now);
