#include "apps/driverdesk/worker/line_report.h"

#include <algorithm>

namespace
{

const qint64 Recent = 10000000; // microseconds
const size_t MaxIntervals = 4096;

} // namespace

const std::array<double, 11> &LatencyClasses::ends()
{
    static const std::array<double, 11> ends = {0.5, 1, 2, 5, 10, 20, 50, 100, 200, 500, 1000};
    return ends;
}

QString LatencyClasses::nameOf(size_t index)
{
    if (index >= ends().size())
        return QStringLiteral("more");
    const double end = ends().at(index);
    return end < 1000 ? QString::number(end) : QStringLiteral("%1 s").arg(end / 1000);
}

void LatencyClasses::add(qint64 microseconds)
{
    const auto *const end =
        std::lower_bound(ends().begin(), ends().end(), static_cast<double>(microseconds) / 1000.0);
    ++m_counts[static_cast<size_t>(end - ends().begin())];
}

void BusyTime::begin(qint64 now)
{
    m_beganAt = now;
    m_busy = 0;
    m_recent.clear();
}

void BusyTime::add(qint64 from, qint64 to)
{
    m_busy += to - from;
    m_recent.push_back({from, to});
    while (m_recent.size() > MaxIntervals || m_recent.front().to < to - Recent)
        m_recent.pop_front();
}

double BusyTime::share(qint64 now) const
{
    return now > m_beganAt ? static_cast<double>(m_busy) / static_cast<double>(now - m_beganAt) : 0;
}

double BusyTime::recentShare(qint64 now) const
{
    // Where there were more intervals than are kept, the time counts from the first of them.
    const qint64 whole = std::max(now - Recent, m_beganAt);
    const qint64 begin = m_recent.size() < MaxIntervals ? whole : std::max(whole, m_recent.front().from);
    qint64 busy = 0;
    for (const Interval &interval : m_recent)
        busy += std::max<qint64>(0, interval.to - std::max(interval.from, begin));
    return now > begin ? static_cast<double>(busy) / static_cast<double>(now - begin) : 0;
}
