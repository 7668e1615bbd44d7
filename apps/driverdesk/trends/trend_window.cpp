#include "apps/driverdesk/trends/trend_window.h"

#include <algorithm>

void TrendWindow::setSpan(double span)
{
    m_span = std::clamp(span, ShortestSpan, LongestSpan);
}

void TrendWindow::follow(double now)
{
    if (m_isFollowing)
        m_end = now;
}

void TrendWindow::show(double begin, double end)
{
    m_isFollowing = false;
    m_end = end;
    setSpan(end - begin);
}

void TrendWindow::showValues(int axis, const Range &range)
{
    m_values[axis != 0 ? 1 : 0] = range;
}

// While it follows, the newest stays at the edge.
void TrendWindow::zoom(double factor, double about)
{
    const double part = m_isFollowing ? 1 : (about - begin()) / m_span;
    const double fixed = m_isFollowing ? m_end : about;
    setSpan(m_span * factor);
    m_end = fixed + (1 - part) * m_span;
}

void TrendWindow::pan(double part)
{
    m_isFollowing = false;
    m_end += part * m_span;
}

void TrendWindow::reset()
{
    m_isFollowing = true;
    m_values[0].reset();
    m_values[1].reset();
}
