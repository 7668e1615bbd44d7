#include "tests/lines/plan_device.h"

namespace
{

const double Silence = 300000; // how long no answer is waited for

bool hasOneIn(const std::map<PlanDevice::Place, std::set<int>> &addresses, const AreaRange &range, int first)
{
    const auto place = addresses.find({range.station, range.area});
    if (place == addresses.end())
        return false;
    const auto address = place->second.lower_bound(first);
    return address != place->second.end() && *address <= range.last;
}

} // namespace

bool PlanDevice::isThere(const AreaRange &range) const
{
    return !hasOneIn(holes, range, range.first) && !hasOneIn(boundaries, range, range.first + 1);
}

RangeReply PlanDevice::answer(const AreaRange &range) const
{
    if (unknownFunctions.count({range.station, range.area}) > 0)
        return {RangeReply::NoFunction, modbus::IllegalFunction, 0};
    if (range.last - range.first + 1 > maxCount(range.area))
        return refusal(longRangesAre);
    return isThere(range) ? RangeReply{} : refusal(holesAre);
}

RangeReply PlanDevice::refusal(Refusing how) const
{
    switch (how) {
    case AsMissing: return {RangeReply::Missing, modbus::IllegalDataAddress, 0};
    case AsTooMany: return {RangeReply::TooMany, modbus::IllegalDataValue, 0};
    case AsUnknown: return {RangeReply::NoFunction, modbus::IllegalFunction, 0};
    case BySilence: break;
    }
    return {RangeReply::Lost, 0, 0};
}

double PlanDevice::time(const AreaRange &range, const RangeReply &reply) const
{
    if (reply.outcome == RangeReply::Given)
        return timing.read(range.area, range.last - range.first + 1);
    return reply.isRefusal() ? timing.refusal() : Silence;
}

PlanClient::PlanClient(const PlanDevice &device, const std::vector<AreaRange> &points)
    : m_device(device), m_points(points)
{
    beginRound();
}

void PlanClient::beginRound()
{
    m_states.assign(m_points.size(), Unreported);
    m_requests = m_refusals = 0;
    m_microseconds = 0;
}

RangeReply PlanClient::read(const AreaRange &range)
{
    RangeReply reply = m_device.answer(range);
    const double time = m_device.time(range, reply);
    reply.microseconds = time * distortion();
    m_microseconds += time;
    m_clock += time;
    ++m_requests;
    m_refusals += reply.outcome == RangeReply::Given ? 0 : 1;
    m_last = range;
    return reply;
}

void PlanClient::setNoise(double part, double outliers)
{
    m_noise = part;
    m_outliers = outliers;
}

double PlanClient::distortion()
{
    if (m_noise == 0)
        return 1;
    const double factor = std::uniform_real_distribution<>(1, 1 + m_noise)(m_random);
    return std::uniform_real_distribution<>(0, 1)(m_random) < m_outliers ? 10 * factor : factor;
}

void PlanClient::given(const AreaRange &range, const std::vector<int> &points)
{
    report(points, Given);
    for (const int index : points) {
        const AreaRange &point = m_points[static_cast<size_t>(index)];
        const bool isWithin = point.station == range.station && point.area == range.area &&
                              point.first >= range.first && point.last <= range.last;
        if (!isWithin || range.first != m_last.first || range.last != m_last.last)
            m_problem = QStringLiteral("given without being read");
    }
}

void PlanClient::failed(const AreaRange & /*range*/, const std::vector<int> &points)
{
    report(points, Failed);
}

void PlanClient::notAsked(const Refusals::Refusal & /*refusal*/, const std::vector<int> &points)
{
    report(points, NotAsked);
}

void PlanClient::report(const std::vector<int> &points, State state)
{
    for (const int index : points) {
        if (m_states[static_cast<size_t>(index)] != Unreported)
            m_problem = QStringLiteral("reported twice");
        m_states[static_cast<size_t>(index)] = state;
    }
}

QString PlanClient::problem() const
{
    if (!m_problem.isEmpty())
        return m_problem;
    for (size_t i = 0; i < m_points.size(); ++i) {
        const bool isGivenAlone = m_device.answer(m_points[i]).outcome == RangeReply::Given;
        if (m_states[i] == Unreported || (m_states[i] == Given) != isGivenAlone)
            return QStringLiteral("point %1 (%2 %3..%4): state %5, given alone %6")
                .arg(i)
                .arg(areaName(m_points[i].area))
                .arg(m_points[i].first)
                .arg(m_points[i].last)
                .arg(m_states[i])
                .arg(isGivenAlone);
    }
    return {};
}
