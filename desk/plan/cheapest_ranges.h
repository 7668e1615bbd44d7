#pragma once

#include "desk/learning/refusals.h"
#include "desk/learning/request_cost.h"

#include <vector>

/// What ranges may look like.
struct RangeRules {
    RequestCost cost;
    int itemsPerUnit = 1;
    int maxCount = 1;
    bool fillsGaps = true;
    bool isOneByOne = false;
};

/// The ranges that read some spans at the least cost, told from any of the spans on.
struct CheapestRanges {
    /// By span: the last span of the range that begins with it.
    std::vector<int> lastSpan;
    /// By span: what it costs to read it and all after it.
    std::vector<double> cost;
};

/// Finds them for \a spans, which rise by their first and by their last numbers, from number \a from on. No
/// range holds more than the rules allow or holds something refused, unless it is a span of its own. The
/// effort is proportional to the number of spans.
CheapestRanges cheapestRanges(const std::vector<Span> &spans, const Refusals &refusals,
                              const RangeRules &rules, int from = 0);
