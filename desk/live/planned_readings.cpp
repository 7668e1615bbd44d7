#include "desk/live/planned_readings.h"

#include "desk/items/range_items.h"
#include "desk/time_text.h"
#include "desk/wire/frame_text.h"

#include <algorithm>

namespace
{

// What nothing more can be read after.
bool isForAll(FailureKind kind)
{
    return kind == FailureKind::CannotConnect || kind == FailureKind::ProjectDatabase;
}

RangeReply::Outcome outcomeOf(const Failure &failure)
{
    if (isForAll(failure.kind))
        return RangeReply::Ended;
    if (failure.kind != FailureKind::Exception)
        return RangeReply::Lost;
    switch (failure.exception) {
    case modbus::IllegalFunction: return RangeReply::NoFunction;
    case modbus::IllegalDataValue: return RangeReply::TooMany;
    case modbus::GatewayPathUnavailable: return RangeReply::StationAway;
    case modbus::Acknowledge:
    case modbus::ServerDeviceBusy:
    case modbus::GatewayTargetFailed: return RangeReply::Lost;
    default: return RangeReply::Missing;
    }
}

// What a request takes, without what is no matter of it.
double timeOf(const CommandRecord &command)
{
    const bool isPlain = command.attempts() == 1 && command.openings() == 0;
    return isPlain ? static_cast<double>(command.duration()) : 0;
}

// The advice is that of the time when it was asked for.
Failure failureOf(const Refusals::Refusal &refusal)
{
    const QString reason = refusal.exception > 0
                               ? QStringLiteral("exception code:") + exceptionText(refusal.exception)
                               : QStringLiteral("PLC no response");
    Failure failure = failureOf(reason, CommandRecord());
    failure.text = QStringLiteral("%1 before; not asked again until %2")
                       .arg(reason, dateAndTimeText(QDateTime::fromMSecsSinceEpoch(refusal.askAgain)));
    return failure;
}

// Whether the station may not be there at all.
bool isSilence(const Failure &failure)
{
    return failure.kind == FailureKind::NoReply || failure.exception == modbus::GatewayTargetFailed;
}

} // namespace

PlannedPoints plannedPointsOf(const std::vector<Reading> &readings, int linkStation)
{
    PlannedPoints points;
    for (size_t i = 0; i < readings.size(); ++i) {
        const std::optional<AreaRange> range = rangeOf(readings[i], linkStation);
        if (range)
            points.points.push_back(*range);
        (range ? points.readings : points.others).push_back(i);
    }
    return points;
}

PlannedReadings::PlannedReadings(Session &session, const std::vector<Reading> &readings, Learnt &learnt)
    : m_session(session),
      m_readings(readings),
      m_points(plannedPointsOf(readings, session.settings().station)),
      m_refresh(m_points.points, learnt)
{
}

bool PlannedReadings::readRound(ReadingListener &listener)
{
    m_session.setRepeatsRefused(false);
    m_listener = &listener;
    m_isWanted = true;
    m_isHopeless = false;
    m_heldBack.clear();
    if (m_pacing != nullptr)
        m_pacing->beginRound(m_session.channel().now());
    m_refresh.readRound(*this, m_clock());
    readUnplanned();
    m_listener = nullptr;
    return m_isWanted;
}

void PlannedReadings::explore()
{
    if (!m_isHopeless && !isOver())
        m_refresh.explore(*this, m_clock());
}

RangeReply PlannedReadings::read(const AreaRange &range)
{
    RangeReply reply;
    if (isOver()) {
        reply.outcome = RangeReply::Ended;
        return reply;
    }
    if (isAway(range.station)) {
        reply.outcome = RangeReply::StationAway;
        return reply;
    }
    const std::optional<QByteArray> data = ask(itemsOf(range));
    m_data = data.value_or(QByteArray());
    if (m_listener != nullptr && !m_session.channel().isCancelled())
        m_listener->addCommand(data.has_value());
    if (data) {
        reply.microseconds = timeOf(m_session.lastCommand());
        return reply;
    }
    const Failure failure = m_session.failure();
    reply.outcome = isOver() ? RangeReply::Ended : outcomeOf(failure);
    reply.exception = failure.exception;
    m_isHopeless = isForAll(failure.kind);
    return reply;
}

void PlannedReadings::given(const AreaRange &range, const std::vector<int> &points)
{
    for (const int point : points) {
        const size_t reading = m_points.readings[static_cast<size_t>(point)];
        if (m_isWanted)
            m_isWanted =
                m_listener->add(reading, partOf(m_data, range, m_points.points[static_cast<size_t>(point)]));
    }
}

void PlannedReadings::failed(const AreaRange &range, const std::vector<int> &points)
{
    failAway(range.station, readingsOf(points));
}

void PlannedReadings::failAway(int station, const std::vector<size_t> &readings)
{
    if (m_heldBack.count(station) == 0)
        fail(readings);
    else if (m_isWanted)
        m_isWanted = m_listener->addNotAsked(readings, paceOf(station));
}

void PlannedReadings::notAsked(const Refusals::Refusal &refusal, const std::vector<int> &points)
{
    if (m_isWanted)
        m_isWanted = m_listener->addNotAsked(readingsOf(points), failureOf(refusal));
}

// What was given up because the run is over is no failure of the slave.
void PlannedReadings::fail(const std::vector<size_t> &readings)
{
    if (!isOver())
        m_isWanted = m_listener->addFailure(readings, m_session.failure());
}

std::vector<size_t> PlannedReadings::readingsOf(const std::vector<int> &points) const
{
    std::vector<size_t> readings(points.size());
    std::transform(points.begin(), points.end(), readings.begin(),
                   [&](int point) { return m_points.readings[static_cast<size_t>(point)]; });
    return readings;
}

// A station that fails has to answer to a trial before anything else is asked of it.
bool PlannedReadings::isAway(int station)
{
    if (m_pacing == nullptr || !m_pacing->isFailing(station))
        return false;
    if (isHeldBack(station)) {
        m_heldBack.insert(station);
        return true;
    }
    const std::optional<QByteArray> data = ask(trialOf(station));
    if (m_listener != nullptr && !m_session.channel().isCancelled())
        m_listener->addCommand(data.has_value());
    return !data;
}

// Also before its line can have settled, since nothing would be sent.
bool PlannedReadings::isHeldBack(int station)
{
    const qint64 now = m_session.channel().now();
    return !m_pacing->isDue(station, now) || m_session.channel().settling().worthAskingAt(station, now) > now;
}

// What it has given before; one after the other where it has never given anything.
Items PlannedReadings::trialOf(int station) const
{
    const auto given = m_lastGiven.find(station);
    if (given != m_lastGiven.end())
        return given->second;
    std::vector<const Reading *> readings;
    for (const Reading &reading : m_readings) {
        if (m_session.stationFor(reading.items) == station)
            readings.push_back(&reading);
    }
    return readings[static_cast<size_t>(m_pacing->failures(station)) % readings.size()]->items;
}

std::optional<QByteArray> PlannedReadings::ask(const Items &items)
{
    if (m_pacing == nullptr)
        return m_session.read(items);
    if (m_pacing->isFailing(m_session.stationFor(items)))
        m_session.channel().setRetries(0);
    std::optional<QByteArray> data = m_session.read(items);
    m_session.channel().setRetries(m_session.settings().retries);
    if (!isOver())
        notePace(items, data.has_value());
    return data;
}

void PlannedReadings::notePace(const Items &items, bool isAnswered)
{
    const int station = m_session.stationFor(items);
    if (isAnswered)
        m_lastGiven[station] = items;
    const Failure failure = isAnswered ? Failure() : m_session.failure();
    const qint64 began = m_session.lastCommand().beganAt();
    const bool isHeard = m_session.channel().settling().stations().value(station).heardAt >= began;
    if (!isAnswered && !isHeard && isSilence(failure))
        m_pacing->noteFailure(station, began);
    else if (isAnswered || isHeard || !isForAll(failure.kind))
        m_pacing->noteAnswer(station);
}

// What is told of a station that is not asked in every round.
Failure PlannedReadings::paceOf(int station)
{
    const qint64 second = 1000000;
    LineChannel &channel = m_session.channel();
    const qint64 now = channel.now();
    const qint64 due = std::max(m_pacing->dueAt(station), channel.settling().worthAskingAt(station, now));
    Failure failure;
    failure.kind = FailureKind::NoReply;
    failure.text = QStringLiteral("PLC no response before; asked again in %1 s")
                       .arg(std::max<qint64>(1, (due - now + second - 1) / second));
    return failure;
}

void PlannedReadings::readUnplanned()
{
    for (size_t i = 0; i < m_points.others.size() && !isOver(); ++i) {
        if (m_isHopeless)
            return fail({m_points.others.begin() + static_cast<std::ptrdiff_t>(i), m_points.others.end()});
        readOne(m_points.others[i]);
    }
}

void PlannedReadings::readOne(size_t reading)
{
    const int station = m_session.stationFor(m_readings[reading].items);
    if (isAway(station))
        return failAway(station, {reading});
    const std::optional<QByteArray> data = ask(m_readings[reading].items);
    if (isOver())
        return;
    m_listener->addCommand(data.has_value());
    if (data) {
        m_isWanted = m_listener->add(reading, *data);
        return;
    }
    m_isHopeless = isForAll(m_session.failure().kind);
    fail({reading});
}
