#include "desk/refresh/exploring.h"

#include "desk/refresh/asking.h"

namespace
{

// How much a request may cost, in units of its reply, on any line with any device.
const double LeastRequest = 3;
const double GreatestRequest = 1e6;
// After one round.
const int MaxTries = 4;

int requestsOf(const SpanPlan &plan, const CheapestRanges &ranges)
{
    int requests = 0;
    for (int span = 0; span < plan.size(); span = ranges.lastSpan[static_cast<size_t>(span)] + 1)
        ++requests;
    return requests;
}

// Whether it matters for the plan what a request costs.
bool mattersCost(const SpanPlan &plan, const Refusals &refusals, RangeRules rules)
{
    if (!rules.fillsGaps || rules.isOneByOne)
        return false;
    rules.cost = {LeastRequest, 1};
    const int most = requestsOf(plan, cheapestRanges(plan.spans, refusals, rules));
    rules.cost = {GreatestRequest, 1};
    return requestsOf(plan, cheapestRanges(plan.spans, refusals, rules)) < most;
}

struct Exploration {
    Span span;
    /// What is new about it; the same as the span where all of it has been read together.
    Span step;
};

// The shortest range of a wanted length: part of one that is planned, or two of them and the gap between.
std::optional<Exploration> explorationFor(const SpanPlan &plan, const Refusals &refusals,
                                          const RangeRules &rules, const CostLearner::Lengths &wanted)
{
    std::optional<Exploration> best;
    const auto consider = [&](const Exploration &exploration) {
        const int units = (exploration.span.count() + rules.itemsPerUnit - 1) / rules.itemsPerUnit;
        if (units >= wanted.shortest && units <= wanted.longest &&
            exploration.span.count() <= rules.maxCount && !refusals.isBarred(exploration.span) &&
            (!best || exploration.span.count() < best->span.count()))
            best = exploration;
    };
    for (int span = 0; span < plan.size();) {
        const int last = plan.lastSpan(span);
        const Span first = plan.range(span, span);
        consider({first, first});
        if (last + 1 < plan.size()) {
            const int next = plan.lastSpan(last + 1);
            consider({plan.range(span, next),
                      {plan.range(last, last).last, plan.range(last + 1, last + 1).first}});
        }
        span = last + 1;
    }
    return best;
}

// A planned range that is longer than any that was answered.
std::optional<Span> untriedLength(const SpanPlan &plan, const CountLimit &limit)
{
    for (int span = 0; span < plan.size(); span = plan.lastSpan(span) + 1) {
        const Span range = plan.range(span, plan.lastSpan(span));
        if (range.count() > limit.given())
            return range;
    }
    return std::nullopt;
}

// Tries what the next round would, as long as it is about nothing but the length: no round shall have to find
// it out.
RangeReply::Outcome exploreLimit(AreaPlan &areaPlan, StationFacts &facts, RefreshClient &client)
{
    CountLimit &limit = facts.requests(areaPlan.area()).limit;
    for (int tries = 0; tries < MaxTries && !limit.isExact(); ++tries) {
        const std::optional<Span> range = untriedLength(areaPlan.plan(facts), limit);
        if (!range)
            break;
        const RangeReply reply = askAndLearn(areaPlan, facts, client, *range);
        if (reply.outcome == RangeReply::TooMany)
            limit.addRefused(areaPlan.rangeOf(*range));
        else if (reply.outcome != RangeReply::Given)
            return reply.outcome;
    }
    return RangeReply::Given;
}

RangeReply::Outcome exploreCost(AreaPlan &areaPlan, StationFacts &facts, RefreshClient &client, qint64 now)
{
    RequestFacts &requests = facts.requests(areaPlan.area());
    const std::optional<CostLearner::Lengths> wanted = requests.cost.wantedLengths();
    if (!wanted)
        return RangeReply::Given;
    SpanPlan &plan = areaPlan.plan(facts);
    if (plan.unexplorable && *plan.unexplorable == *wanted)
        return RangeReply::Given;
    Refusals &refusals = facts.refusals(areaPlan.area());
    const RangeRules rules = areaPlan.rules(facts);
    std::optional<Exploration> exploration;
    if (mattersCost(plan, refusals, rules))
        exploration = explorationFor(plan, refusals, rules, *wanted);
    if (!exploration) {
        plan.unexplorable = wanted;
        return RangeReply::Given;
    }

    const RangeReply reply = askAndLearn(areaPlan, facts, client, exploration->span);
    const bool isTooLong = reply.outcome == RangeReply::TooMany &&
                           requests.limit.addRefused(areaPlan.rangeOf(exploration->span));
    // Where no answer comes each try would cost a time-out.
    if (reply.outcome == RangeReply::Lost)
        plan.unexplorable = wanted;
    if (reply.isRefusal() && !isTooLong)
        refusals.addStep(exploration->step, reply.exception, now);
    return reply.outcome;
}

} // namespace

RangeReply::Outcome explore(AreaPlan &areaPlan, StationFacts &facts, RefreshClient &client, qint64 now)
{
    const RangeReply::Outcome outcome = exploreCost(areaPlan, facts, client, now);
    return outcome == RangeReply::Given ? exploreLimit(areaPlan, facts, client) : outcome;
}
