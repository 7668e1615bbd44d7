#pragma once

#include "desk/learning/station_facts.h"
#include "desk/plan/cheapest_ranges.h"

/// What is wanted of one area of one station.
struct AreaPoint {
    Span span;
    int index; ///< the caller's
};

/// Requests that bring some spans.
struct SpanPlan {
    /// Those that are read for themselves; what else is wanted lies within them.
    std::vector<Span> spans;
    /// Known from this span on.
    CheapestRanges ranges;
    int from = 0;
    /// Lengths for which nothing beyond the plan is worth asking for.
    std::optional<CostLearner::Lengths> unexplorable;
    /// What it was made for.
    RequestCost cost;
    int maxCount = 0;
    int refusedCount = 0;
    quint64 refusals = 0;

    int lastSpan(int span) const { return ranges.lastSpan[static_cast<size_t>(span)]; }
    int size() const { return static_cast<int>(spans.size()); }
    /// What has to be asked for to read from one span to another.
    Span range(int first, int last) const
    {
        return {spans[static_cast<size_t>(first)].first, spans[static_cast<size_t>(last)].last};
    }
};

/// Spans that have to be read so that all of the points are, as far as they are not known to be refused.
/// \a points rise by their first and fall by their last numbers.
std::vector<Span> spansOf(const std::vector<AreaPoint> &points, const Refusals &refusals);

/// All that is wanted of one area of one station, and how it is asked for.
class AreaPlan
{
public:
    AreaPlan(int station, Area area, std::vector<AreaPoint> points);

    int station() const { return m_station; }
    Area area() const { return m_area; }
    const std::vector<AreaPoint> &points() const { return m_points; }
    AreaRange rangeOf(const Span &span) const { return {m_station, m_area, span.first, span.last}; }

    /// The cheapest plan for what has been learnt. Made anew only when that has changed it.
    SpanPlan &plan(StationFacts &facts);
    /// How often that was done.
    quint64 plansMade() const { return m_plansMade; }

    /// Plans spans of this area from one of them on.
    void replan(SpanPlan &plan, StationFacts &facts, int from = 0);
    /// Whether what has been learnt since asks for another plan of the same spans.
    bool isOutdated(const SpanPlan &plan, StationFacts &facts) const;
    RangeRules rules(StationFacts &facts) const;

private:
    CheapestRanges rangesToTry(const std::vector<Span> &spans, StationFacts &facts, int from) const;

    int m_station;
    Area m_area;
    std::vector<AreaPoint> m_points;
    SpanPlan m_plan;
    bool m_isPlanned = false;
    quint64 m_plansMade = 0;
};

/// A plan for each area that has points; they are numbered by their places.
std::vector<AreaPlan> areaPlansOf(const std::vector<AreaRange> &points);
