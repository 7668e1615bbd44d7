#include "desk/live/station_pacing.h"

namespace
{

const qint64 Second = 1000000;
// Twice as long each time. A station that is back is asked within the last of them.
const qint64 FirstDistance = 2 * Second;
const qint64 LongestDistance = 4 * Second;

} // namespace

StationPacing::Failures::Failures() : backoff(FirstDistance, LongestDistance) {}

void StationPacing::beginRound(qint64 now)
{
    m_roundTime = m_round == 0 ? 0 : now - m_roundBegan;
    m_roundBegan = now;
    ++m_round;
}

bool StationPacing::isDue(int station, qint64 now) const
{
    if (failures(station) <= MaxFailures)
        return true;
    return m_failures.at(station).round != m_round && dueAt(station) <= now + m_roundTime;
}

qint64 StationPacing::dueAt(int station) const
{
    const auto failing = m_failures.find(station);
    return failing == m_failures.end() ? 0 : failing->second.backoff.until();
}

int StationPacing::failures(int station) const
{
    const auto failing = m_failures.find(station);
    return failing == m_failures.end() ? 0 : failing->second.count;
}

void StationPacing::noteAnswer(int station)
{
    m_failures.erase(station);
}

void StationPacing::noteFailure(int station, qint64 askedAt)
{
    Failures &failures = m_failures[station];
    failures.round = m_round;
    if (++failures.count > MaxFailures)
        failures.backoff.fail(askedAt);
}
