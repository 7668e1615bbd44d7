#pragma once

#include "desk/plan/area_plan.h"

/// The points of an area that a round has still to report. What is taken is told by the callers' numbers.
class OpenPoints
{
public:
    /// \a points must outlive it, in the order in which an AreaPlan has them.
    explicit OpenPoints(const std::vector<AreaPoint> &points);

    std::vector<int> takeWithin(const Span &span);
    std::vector<int> takeEqual(const Span &span);
    std::vector<int> takeAll();

    bool isEmpty() const { return m_count == 0; }
    bool isUntouched() const { return m_count == m_points.size(); }
    std::vector<AreaPoint> points() const;

private:
    template <typename Condition>
    std::vector<int> take(const Span &span, Condition condition);

    const std::vector<AreaPoint> &m_points;
    std::vector<bool> m_isTaken;
    size_t m_count;
};
