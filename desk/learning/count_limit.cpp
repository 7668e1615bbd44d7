#include "desk/learning/count_limit.h"

#include <algorithm>

namespace
{

int countOf(const AreaRange &range)
{
    return range.last - range.first + 1;
}

} // namespace

void CountLimit::addGiven(int count)
{
    if (count <= m_given)
        return;
    m_given = count;
    if (m_restoredRefused <= count)
        m_restoredRefused = 0;
    m_refused.erase(std::remove_if(m_refused.begin(), m_refused.end(),
                                   [&](const AreaRange &range) { return countOf(range) <= count; }),
                    m_refused.end());
}

bool CountLimit::addRefused(const AreaRange &range)
{
    if (countOf(range) <= m_given)
        return false;
    m_refused.push_back(range);
    return true;
}

void CountLimit::addHole(const AreaRange &hole)
{
    const auto holds = [&](const AreaRange &range) {
        return range.station == hole.station && range.area == hole.area && range.first <= hole.first &&
               hole.last <= range.last;
    };
    m_refused.erase(std::remove_if(m_refused.begin(), m_refused.end(), holds), m_refused.end());
}

int CountLimit::refused() const
{
    int smallest = m_restoredRefused > 0 ? m_restoredRefused : m_maximum + 1;
    for (const AreaRange &range : m_refused)
        smallest = std::min(smallest, countOf(range));
    return smallest;
}

int CountLimit::attempt() const
{
    const int smallest = refused();
    return smallest > m_maximum ? m_maximum : std::max(1, m_given + (smallest - m_given) / 2);
}

void CountLimit::restore(int given, int refused)
{
    m_given = given;
    m_restoredRefused = refused <= m_maximum ? refused : 0;
}
