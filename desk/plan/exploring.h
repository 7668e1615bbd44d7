#pragma once

#include "desk/plan/range_reader.h"
#include "desk/plan/table.h"

/// Asks for something beyond the plan, where the time that it takes would tell how to plan better; for
/// nothing once that is known. Says whether to go on.
RangeReply::Outcome explore(Table &table, StationFacts &facts, RefreshClient &client, qint64 now);
