#include "desk/plan/area_plan.h"

#include <algorithm>
#include <map>
#include <utility>

namespace
{

bool isBefore(const AreaPoint &left, const AreaPoint &right)
{
    return left.span.first != right.span.first ? left.span.first < right.span.first
                                               : left.span.last > right.span.last;
}

// What a longer request has to save of the whole to be worth a try that may be refused.
const double WorthTrying = 0.02;

} // namespace

std::vector<Span> spansOf(const std::vector<AreaPoint> &points, const Refusals &refusals)
{
    std::vector<Span> spans;
    for (const AreaPoint &point : points) {
        const bool isWithinOther = !spans.empty() && point.span.last <= spans.back().last;
        if (!isWithinOther && refusals.wanted(point.span) == nullptr)
            spans.push_back(point.span);
    }
    return spans;
}

AreaPlan::AreaPlan(int station, Area area, std::vector<AreaPoint> points)
    : m_station(station), m_area(area), m_points(std::move(points))
{
    std::sort(m_points.begin(), m_points.end(), isBefore);
}

SpanPlan &AreaPlan::plan(StationFacts &facts)
{
    const Refusals &refusals = facts.refusals(m_area);
    if (!m_isPlanned || m_plan.refusals != refusals.version()) {
        m_plan.spans = spansOf(m_points, refusals);
        m_plan.refusals = refusals.version();
        replan(m_plan, facts);
    } else if (m_plan.from > 0 || isOutdated(m_plan, facts)) {
        replan(m_plan, facts);
    }
    m_isPlanned = true;
    return m_plan;
}

void AreaPlan::replan(SpanPlan &plan, StationFacts &facts, int from)
{
    const CountLimit &limit = facts.requests(m_area).limit;
    const RangeRules rules = this->rules(facts);
    plan.cost = rules.cost;
    plan.maxCount = rules.maxCount;
    plan.refusedCount = limit.refused();
    plan.from = from;
    plan.unexplorable.reset();
    plan.ranges = limit.isExact() ? cheapestRanges(plan.spans, facts.refusals(m_area), rules, from)
                                  : rangesToTry(plan.spans, facts, from);
    ++m_plansMade;
}

// As long as the limit lies somewhere between what was given and what was refused, longer requests are tried
// where they would save something.
CheapestRanges AreaPlan::rangesToTry(const std::vector<Span> &spans, StationFacts &facts, int from) const
{
    const CountLimit &limit = facts.requests(m_area).limit;
    RangeRules rules = this->rules(facts);
    const auto rangesFor = [&](int maxCount) {
        rules.maxCount = maxCount;
        return cheapestRanges(spans, facts.refusals(m_area), rules, from);
    };
    CheapestRanges ranges = rangesFor(std::max(1, limit.given()));
    const double enough = (1 - WorthTrying) * ranges.cost[static_cast<size_t>(from)];
    const auto isWorthTrying = [&](const CheapestRanges &others) {
        return others.cost[static_cast<size_t>(from)] < enough;
    };
    if (!isWorthTrying(rangesFor(limit.refused() - 1)))
        return ranges;
    int maxCount = limit.attempt();
    do {
        ranges = rangesFor(maxCount);
        maxCount += (limit.refused() - maxCount) / 2;
    } while (!isWorthTrying(ranges)); // as those with one less than was refused are
    return ranges;
}

bool AreaPlan::isOutdated(const SpanPlan &plan, StationFacts &facts) const
{
    RequestFacts &requests = facts.requests(m_area);
    return plan.maxCount != requests.limit.attempt() || plan.refusedCount != requests.limit.refused() ||
           !isNear(plan.cost, requests.cost.cost());
}

RangeRules AreaPlan::rules(StationFacts &facts) const
{
    RequestFacts &requests = facts.requests(m_area);
    return {requests.cost.cost(), itemsPerUnit(m_area), requests.limit.attempt(), facts.options.fillsGaps,
            facts.options.isOneByOne};
}

std::vector<AreaPlan> areaPlansOf(const std::vector<AreaRange> &points)
{
    std::map<std::pair<int, Area>, std::vector<AreaPoint>> byArea;
    for (size_t i = 0; i < points.size(); ++i)
        byArea[{points[i].station, points[i].area}].push_back(
            {{points[i].first, points[i].last}, static_cast<int>(i)});
    std::vector<AreaPlan> areas;
    areas.reserve(byArea.size());
    for (auto &[key, areaPoints] : byArea)
        areas.emplace_back(key.first, key.second, std::move(areaPoints));
    return areas;
}
