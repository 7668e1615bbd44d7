#include "desk/refresh/open_points.h"

#include <algorithm>

OpenPoints::OpenPoints(const std::vector<AreaPoint> &points)
    : m_points(points), m_isTaken(points.size()), m_count(points.size())
{
}

// Of those that begin within the span.
template <typename Condition>
std::vector<int> OpenPoints::take(const Span &span, Condition condition)
{
    std::vector<int> taken;
    const auto begin =
        std::lower_bound(m_points.begin(), m_points.end(), span.first,
                         [](const AreaPoint &point, int number) { return point.span.first < number; });
    for (auto point = begin; point != m_points.end() && point->span.first <= span.last; ++point) {
        const auto position = static_cast<size_t>(point - m_points.begin());
        if (m_isTaken[position] || !condition(point->span))
            continue;
        m_isTaken[position] = true;
        taken.push_back(point->index);
    }
    m_count -= taken.size();
    return taken;
}

std::vector<int> OpenPoints::takeWithin(const Span &span)
{
    return take(span, [&](const Span &point) { return span.contains(point); });
}

std::vector<int> OpenPoints::takeEqual(const Span &span)
{
    return take(span, [&](const Span &point) { return point == span; });
}

std::vector<int> OpenPoints::takeAll()
{
    return takeWithin({0, modbus::AddressSpace});
}

std::vector<AreaPoint> OpenPoints::points() const
{
    std::vector<AreaPoint> points;
    for (size_t i = 0; i < m_points.size() && points.size() < m_count; ++i) {
        if (!m_isTaken[i])
            points.push_back(m_points[i]);
    }
    return points;
}
