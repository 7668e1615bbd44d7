#pragma once

#include <QPointF>

#include <vector>

/// The last samples of one value, in the order of their times. It takes all its memory at once.
class TrendRing
{
public:
    explicit TrendRing(size_t capacity) : m_points(capacity) {}

    /// \a number may be not-a-number: a gap. A time that lies before the last one's is dropped.
    void add(double time, double number);
    void clear();

    size_t size() const { return m_size; }
    /// The oldest is 0.
    const QPointF &at(size_t index) const { return m_points[(m_first + index) % m_points.size()]; }
    /// The first sample at or after a time; size() when there is none.
    size_t firstAt(double time) const;
    /// The number that was current at a time: the last one before, unless that is a gap. Not-a-number when
    /// there is none.
    double numberAt(double time) const;

private:
    std::vector<QPointF> m_points;
    size_t m_first = 0;
    size_t m_size = 0;
};
