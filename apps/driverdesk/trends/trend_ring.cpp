#include "apps/driverdesk/trends/trend_ring.h"

#include <limits>

void TrendRing::add(double time, double number)
{
    if (m_size > 0 && time < at(m_size - 1).x())
        return;
    m_points[(m_first + m_size) % m_points.size()] = {time, number};
    if (m_size < m_points.size())
        ++m_size;
    else
        m_first = (m_first + 1) % m_points.size();
}

void TrendRing::clear()
{
    m_first = 0;
    m_size = 0;
}

size_t TrendRing::firstAt(double time) const
{
    size_t low = 0;
    size_t high = m_size;
    while (low < high) {
        const size_t middle = (low + high) / 2;
        if (at(middle).x() < time)
            low = middle + 1;
        else
            high = middle;
    }
    return low;
}

double TrendRing::numberAt(double time) const
{
    const size_t next = firstAt(time);
    if (next < m_size && at(next).x() == time)
        return at(next).y();
    return next == 0 || next == m_size ? std::numeric_limits<double>::quiet_NaN() : at(next - 1).y();
}
