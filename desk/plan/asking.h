#pragma once

#include "desk/plan/range_reader.h"
#include "desk/plan/table.h"

/// Asks for a range of the table's area, and learns what the answer tells of the station: that it is there,
/// how much it gives at once, what a request costs, what can be read together. What a refusal means is left
/// to the caller.
RangeReply askAndLearn(const Table &table, StationFacts &facts, RefreshClient &client, const Span &span);
