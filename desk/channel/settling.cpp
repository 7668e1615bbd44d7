#include "desk/channel/settling.h"

#include "desk/wire/rtu_frame.h"

#include <algorithm>
#include <limits>

namespace
{

const qint64 Millisecond = 1000;
const qint64 Never = std::numeric_limits<qint64>::max();
const int QuietTimeouts = 3;
// A station that answered so often in a row without answering the probes before ignores them.
const int IgnoredTimes = 2;
// Echoes of older ones are not waited for: a station that is dead for years is asked again and again.
const int MaxProbes = 64;

QByteArray probeFrame(int station, quint16 number)
{
    QByteArray frame(6, '\0');
    frame[0] = static_cast<char>(station);
    frame[1] = static_cast<char>(modbus::Diagnostics);
    frame[4] = static_cast<char>(number >> 8);
    frame[5] = static_cast<char>(number & 0xFF);
    return withCrc(frame);
}

bool isProbeReply(const QByteArray &frame)
{
    return (functionOf(frame) & ~modbus::ExceptionFlag) == modbus::Diagnostics;
}

// Exceptions that a station answers to every function that it does not have; others say nothing of that.
bool isRefusal(const QByteArray &frame)
{
    return frame.size() == modbus::ExceptionReplySize &&
           (byteAt(frame, 2) == modbus::IllegalFunction || byteAt(frame, 2) == modbus::IllegalDataValue);
}

} // namespace

Settling::Settling(const ExchangeSettings &settings, quint16 lastNumber)
    : m_rule(settings.settle),
      m_stationRules(settings.stationSettle),
      m_timeout(Millisecond * settings.timeout),
      m_lastNumber(lastNumber),
      m_isEchoing(false)
{
}

void Settling::setTimeout(int milliseconds)
{
    m_timeout = Millisecond * milliseconds;
}

SettleRule Settling::ruleFor(int station) const
{
    return m_stationRules.value(station, m_rule);
}

qint64 Settling::quietTime(int station) const
{
    const int given = ruleFor(station).quietTime;
    return given > 0 ? Millisecond * given : QuietTimeouts * m_timeout;
}

void Settling::noteRequest(int station)
{
    const QMap<int, Station>::iterator known = m_stations.find(station);
    if (known != m_stations.end())
        known->probes.clear();
}

void Settling::noteReply(int station)
{
    Station &known = m_stations[station];
    known.hasAnswered = true;
    if (!known.isIgnoring)
        return;
    known.isIgnoring = false;
    if (known.habit == Unknown && ++known.ignored >= IgnoredTimes)
        known.habit = Ignores;
}

void Settling::noteLoss(int station, qint64 now)
{
    if (ruleFor(station).mode == SettleMode::Off)
        return;
    Station &lost = m_stations[station];
    if (lost.isSettled)
        lost.lostAt = now;
    lost.isSettled = false;
    lost.quietSince = now;
}

bool Settling::noteFrame(const QByteArray &frame, qint64 now)
{
    const QMap<int, Station>::iterator known = m_stations.find(byteAt(frame, 0));
    if (known == m_stations.end())
        return false;
    known->heardAt = now;
    if (isProbeReply(frame))
        return !m_isEchoing && noteProbeReply(*known, frame, now);
    known->quietSince = now;
    return false;
}

// An exception is no proof that everything before it has come: several late ones look alike. An echo that
// comes late shows at least that the station sends them.
bool Settling::noteProbeReply(Station &station, const QByteArray &frame, qint64 now)
{
    if (isRefusal(frame) && station.habit == Unknown)
        station.habit = Refuses;
    if (frame.size() != modbus::ShortFrameSize)
        return false;
    station.habit = Answers;
    station.ignored = 0;
    station.isIgnoring = false;
    if (station.isSettled || !station.probes.contains(wordAt(frame, 4)))
        return false;
    ++m_counts.byEcho;
    settle(station, now);
    return true;
}

bool Settling::isSettled(int station, qint64 now)
{
    const QMap<int, Station>::iterator known = m_stations.find(station);
    if (known == m_stations.end() || known->isSettled)
        return true;
    if (now < quietEnd(station))
        return false;
    known->isIgnoring = known->isIgnoring || !known->probes.isEmpty();
    ++m_counts.byQuiet;
    settle(*known, now);
    return true;
}

void Settling::settle(Station &station, qint64 now)
{
    station.isSettled = true;
    const qint64 time = now - station.lostAt;
    m_counts.totalTime += time;
    m_counts.longestTime = std::max(m_counts.longestTime, time);
}

bool Settling::wantsProbe(int station) const
{
    const SettleMode mode = ruleFor(station).mode;
    const Habit habit = m_stations.value(station).habit;
    return !m_isEchoing &&
           (mode == SettleMode::Echo || (mode == SettleMode::Auto && (habit == Unknown || habit == Answers)));
}

QByteArray Settling::probe(int station, qint64 now)
{
    Station &asked = m_stations[station];
    if (asked.probes.isEmpty())
        asked.probedAt = now;
    if (asked.probes.size() == MaxProbes)
        asked.probes.removeFirst();
    asked.probes.append(m_numbers ? m_numbers() : ++m_lastNumber);
    ++m_counts.probes;
    return probeFrame(station, asked.probes.last());
}

// A station that has ever answered a probe is believed nothing else; one that has answered other requests has
// to leave a probe without an answer first.
qint64 Settling::quietEnd(int station) const
{
    const Station known = m_stations.value(station);
    const qint64 end = known.quietSince + quietTime(station);
    if (!wantsProbe(station))
        return end;
    if (ruleFor(station).mode == SettleMode::Echo || known.habit == Answers)
        return Never;
    if (!known.hasAnswered || known.isIgnoring)
        return end;
    const qint64 moreThanTimeout = m_timeout + 1;
    return known.probes.isEmpty() ? Never : std::max(end, known.probedAt + moreThanTimeout);
}

qint64 Settling::worthAskingAt(int station, qint64 now)
{
    const qint64 end = isSettled(station, now) ? now : quietEnd(station);
    return end == Never ? now : end;
}
