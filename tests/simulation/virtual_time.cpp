#include "tests/simulation/virtual_time.h"

#include <algorithm>
#include <utility>

void VirtualTime::at(qint64 time, std::function<void()> event)
{
    m_events.emplace(std::max(time, m_now), std::move(event));
}

bool VirtualTime::step(qint64 until)
{
    const auto next = m_events.begin();
    if (next == m_events.end() || next->first > until) {
        m_now = std::max(m_now, until);
        return false;
    }
    m_now = next->first;
    const std::function<void()> event = std::move(next->second);
    m_events.erase(next);
    event();
    return true;
}

void VirtualTime::runUntil(qint64 until)
{
    while (step(until)) {
    }
}
