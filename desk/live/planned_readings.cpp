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
    m_refresh.readRound(*this, QDateTime::currentMSecsSinceEpoch());
    readUnplanned();
    m_listener = nullptr;
    return m_isWanted;
}

void PlannedReadings::explore()
{
    if (!m_isHopeless && !isOver())
        m_refresh.explore(*this, QDateTime::currentMSecsSinceEpoch());
}

RangeReply PlannedReadings::read(const AreaRange &range)
{
    RangeReply reply;
    if (isOver()) {
        reply.outcome = RangeReply::Ended;
        return reply;
    }
    const std::optional<QByteArray> data = m_session.read(itemsOf(range));
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
        if (m_isWanted && m_listener != nullptr)
            m_isWanted =
                m_listener->add(reading, partOf(m_data, range, m_points.points[static_cast<size_t>(point)]));
    }
}

void PlannedReadings::failed(const AreaRange & /*range*/, const std::vector<int> &points)
{
    fail(readingsOf(points));
}

void PlannedReadings::notAsked(const Refusals::Refusal &refusal, const std::vector<int> &points)
{
    if (m_isWanted && m_listener != nullptr)
        m_isWanted = m_listener->addNotAsked(readingsOf(points), failureOf(refusal));
}

// What was given up because the run is over is no failure of the slave.
void PlannedReadings::fail(const std::vector<size_t> &readings)
{
    if (!isOver() && m_listener != nullptr)
        m_isWanted = m_listener->addFailure(readings, m_session.failure());
}

std::vector<size_t> PlannedReadings::readingsOf(const std::vector<int> &points) const
{
    std::vector<size_t> readings(points.size());
    std::transform(points.begin(), points.end(), readings.begin(),
                   [&](int point) { return m_points.readings[static_cast<size_t>(point)]; });
    return readings;
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
    const std::optional<QByteArray> data = m_session.read(m_readings[reading].items);
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
