#include "apps/driverdesk/worker/feed.h"

#include <chrono>

qint64 steadyNow()
{
    using namespace std::chrono;
    return duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
}

void Feed::put(SnapshotPointer snapshot)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_waiting.snapshot = std::move(snapshot);
}

void Feed::put(const TrendSample &sample)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    // Nobody has asked for so long that what is there is not worth keeping.
    if (m_waiting.trends.size() >= MaxTrends)
        m_waiting.trends.clear();
    m_waiting.trends.push_back(sample);
}

void Feed::putTrace(const QString &line)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_waiting.trace.size() >= MaxTrace) {
        m_waiting.lostTrace += static_cast<quint64>(m_waiting.trace.size());
        m_waiting.trace.clear();
    }
    m_waiting.trace += line;
}

void Feed::put(const WriteOutcome &outcome)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_waiting.writes.push_back(outcome);
}

void Feed::put(const LineReport &report)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_waiting.line = report;
}

void Feed::put(const LinkStatus &status)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_waiting.status = status;
}

Delivery Feed::take()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return std::exchange(m_waiting, Delivery());
}
