#pragma once

#include "desk/refresh/refresh_client.h"
#include "tests/lines/serial_timing.h"

#include <map>
#include <random>
#include <set>

/// A device that answers requests for ranges without any frames: what it has, and how it refuses what it has
/// not.
struct PlanDevice {
    enum Refusing { AsMissing, AsTooMany, BySilence, AsUnknown };

    using Place = std::pair<int, Area>; ///< station and area
    std::map<Place, std::set<int>> holes;
    /// Addresses that are given only when a range begins there or does not hold them.
    std::map<Place, std::set<int>> boundaries;
    std::set<Place> unknownFunctions;
    int maxRegisters = 125;
    int maxBits = 2000;
    Refusing holesAre = AsMissing;
    Refusing longRangesAre = AsTooMany;
    SerialTiming timing;

    int maxCount(Area area) const { return isBitArea(area) ? maxBits : maxRegisters; }
    bool isThere(const AreaRange &range) const;
    /// Without a time.
    RangeReply answer(const AreaRange &range) const;
    double time(const AreaRange &range, const RangeReply &reply) const;

private:
    RangeReply refusal(Refusing how) const;
};

/// Reads from such a device on a clock of its own, and keeps what was reported of every point.
class PlanClient : public RefreshClient
{
public:
    enum State { Unreported, Given, Failed, NotAsked };

    PlanClient(const PlanDevice &device, const std::vector<AreaRange> &points);

    RangeReply read(const AreaRange &range) override;
    void given(const AreaRange &range, const std::vector<int> &points) override;
    void failed(const AreaRange &range, const std::vector<int> &points) override;
    void notAsked(const Refusals::Refusal &refusal, const std::vector<int> &points) override;

    void beginRound();
    /// Whether every point was reported once, and given if the device gives it on its own.
    QString problem() const;

    /// Of this round.
    int requests() const { return m_requests; }
    int refusals() const { return m_refusals; }
    double microseconds() const { return m_microseconds; }
    /// Of all, in milliseconds.
    qint64 now() const { return static_cast<qint64>(m_clock / 1000); }
    void wait(double microseconds) { m_clock += microseconds; }

    /// Lets the times that are reported vary by up to such a part, and a share of them be ten times as long.
    void setNoise(double part, double outliers);

private:
    double distortion();
    void report(const std::vector<int> &points, State state);

    const PlanDevice &m_device;
    const std::vector<AreaRange> &m_points;
    std::vector<State> m_states;
    AreaRange m_last;
    QString m_problem;
    int m_requests = 0;
    int m_refusals = 0;
    double m_microseconds = 0;
    double m_clock = 0;
    double m_noise = 0;
    double m_outliers = 0;
    std::mt19937 m_random{1};
};
