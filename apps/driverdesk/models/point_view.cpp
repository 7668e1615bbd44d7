#include "apps/driverdesk/models/point_view.h"

#include <algorithm>

namespace
{

// How old a value may be that is called live: some rounds, and never less than what a person sees as now.
const int LiveRounds = 3;
const qint64 ShortestLife = 1500; // milliseconds

const qint64 Second = 1000;
const qint64 Minute = 60 * Second;
const qint64 Hour = 60 * Minute;

} // namespace

QString durationText(qint64 milliseconds)
{
    if (milliseconds < Second)
        return QStringLiteral("%1 ms").arg(milliseconds);
    if (milliseconds < 10 * Second)
        return QStringLiteral("%1 s").arg(static_cast<double>(milliseconds) / Second, 0, 'f', 1);
    if (milliseconds < Minute)
        return QStringLiteral("%1 s").arg(milliseconds / Second);
    if (milliseconds < Hour)
        return QStringLiteral("%1 min %2 s").arg(milliseconds / Minute).arg(milliseconds % Minute / Second);
    return QStringLiteral("%1 h %2 min").arg(milliseconds / Hour).arg(milliseconds % Hour / Minute);
}

QString latencyText(qint64 microseconds)
{
    if (microseconds < 0)
        return {};
    const double milliseconds = static_cast<double>(microseconds) / 1000;
    return QStringLiteral("%1 ms").arg(milliseconds, 0, 'f', milliseconds < 10 ? 2 : 0);
}

PointState PointView::state() const
{
    if (!m_sample.failure.isEmpty())
        return PointState::Failed;
    if (m_sample.readAt < 0)
        return PointState::Waiting;
    const qint64 life = std::max<qint64>(ShortestLife, qint64(LiveRounds) * m_snapshot.interval);
    const bool isOfLastRound = m_sample.round >= m_snapshot.rounds - 1;
    return isOfLastRound && age() <= life ? PointState::Live : PointState::Late;
}

qint64 PointView::age() const
{
    return m_sample.readAt < 0 ? -1 : std::max<qint64>(0, m_now - m_sample.readAt);
}

QString PointView::valueText() const
{
    switch (state()) {
    case PointState::Waiting: return QStringLiteral("…");
    case PointState::Live: return m_sample.text;
    case PointState::Late:
    case PointState::Failed: break;
    }
    return m_sample.readAt < 0 ? QStringLiteral("?") : QStringLiteral("was ") + m_sample.text;
}

QString PointView::stateText() const
{
    switch (state()) {
    case PointState::Waiting: return QStringLiteral("waiting");
    case PointState::Live:
        return m_sample.limit.isEmpty() ? QStringLiteral("live") : QStringLiteral("live, ") + m_sample.limit;
    case PointState::Late: return QStringLiteral("late, not of the last round");
    case PointState::Failed: break;
    }
    return QStringLiteral("failed: ") + m_sample.failure;
}

QString PointView::ageText() const
{
    return age() < 0 ? QString() : durationText(age());
}

QString PointView::latencyText() const
{
    return ::latencyText(m_sample.latency);
}
