#include "apps/driverdesk/trends/thinned_points.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace
{

const int PointsPerColumn = 4;

// The samples of one column, of which the drawing shows no more than these.
class Column
{
public:
    void add(const QPointF &point)
    {
        if (m_count++ == 0) {
            m_first = m_low = m_high = point;
        } else {
            if (point.y() < m_low.y())
                m_low = point;
            if (point.y() > m_high.y())
                m_high = point;
        }
        m_last = point;
    }

    void moveTo(QVector<QPointF> &points)
    {
        if (m_count > 0)
            points.append(m_first);
        const bool isLowFirst = m_low.x() < m_high.x();
        append(points, isLowFirst ? m_low : m_high);
        append(points, isLowFirst ? m_high : m_low);
        append(points, m_last);
        m_count = 0;
    }

private:
    void append(QVector<QPointF> &points, const QPointF &point) const
    {
        if (m_count > 1 && points.constLast() != point)
            points.append(point);
    }

    int m_count = 0;
    QPointF m_first;
    QPointF m_low;
    QPointF m_high;
    QPointF m_last;
};

} // namespace

QVector<QPointF> thinnedPoints(const TrendRing &ring, double begin, double end, int columns)
{
    QVector<QPointF> points;
    const size_t inside = ring.firstAt(begin);
    const size_t from = inside > 0 ? inside - 1 : 0;
    const size_t to = std::min(ring.size(), ring.firstAt(end) + 1);
    if (to <= from || columns < 1 || end <= begin)
        return points;
    const bool isThin = to - from <= static_cast<size_t>(PointsPerColumn) * static_cast<size_t>(columns);
    const double width = (end - begin) / columns;
    points.reserve(isThin ? int(to - from) : (PointsPerColumn + 1) * columns);
    Column column;
    double number = -std::numeric_limits<double>::infinity();
    for (size_t i = from; i < to; ++i) {
        const QPointF &point = ring.at(i);
        const double ofPoint = isThin ? static_cast<double>(i) : std::floor((point.x() - begin) / width);
        if (ofPoint != number || std::isnan(point.y()))
            column.moveTo(points);
        number = ofPoint;
        if (!std::isnan(point.y()))
            column.add(point);
        else if (!points.isEmpty() && !std::isnan(points.constLast().y()))
            points.append(point);
    }
    column.moveTo(points);
    return points;
}
