#pragma once

#include "desk/link/line_counts.h"
#include "desk/live/statistics.h"

#include <array>
#include <deque>

/// How long replies took, counted in classes.
class LatencyClasses
{
public:
    /// Upper ends of the classes in milliseconds; what takes longer belongs to one more class.
    static const std::array<double, 11> &ends();
    static QString nameOf(size_t index);

    void add(qint64 microseconds);
    quint64 count(size_t index) const { return m_counts[index]; }
    static size_t size() { return ends().size() + 1; }

private:
    std::array<quint64, 12> m_counts{};
};

/// How much of the time something was at work, in all and of late.
class BusyTime
{
public:
    /// Times are in microseconds of one clock; intervals come one after the other.
    void begin(qint64 now);
    void add(qint64 from, qint64 to);
    /// Shares from 0 to 1.
    double share(qint64 now) const;
    double recentShare(qint64 now) const;

private:
    struct Interval {
        qint64 from;
        qint64 to;
    };
    qint64 m_beganAt = 0;
    qint64 m_busy = 0;
    std::deque<Interval> m_recent;
};

/// What has happened on the line since it was opened.
struct LineReport {
    LinkCounts counts;
    LatencyClasses latencies;
    qint64 median = -1; ///< of the latencies, in microseconds; -1 when there was none
    qint64 ninetyFifth = -1;
    qint64 ninetyNinth = -1;
    double busyShare = 0;
    double recentBusyShare = 0;
};
