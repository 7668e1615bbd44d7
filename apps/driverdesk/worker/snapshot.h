#pragma once

#include <QString>

#include <limits>
#include <memory>
#include <vector>

/// Milliseconds of a clock that never goes back, the same in all threads.
qint64 steadyNow();

/// What is known of one row.
struct PointSample {
    QString text; ///< the last value that was read, with its unit or as its state
    QString raw;  ///< the same before scaling
    double number = std::numeric_limits<double>::quiet_NaN();
    QString limit;       ///< "above 80"; empty within the point's limits
    qint64 readAt = -1;  ///< steadyNow() of that; -1 when it was never read
    int round = -1;      ///< in which it was read
    QString failure;     ///< the driver's text of the last attempt to read it; empty when it was read
    qint64 latency = -1; ///< of the last reply, in microseconds; -1 when none came
    int attempts = 0;    ///< of the last command
    quint32 errors = 0;  ///< how often it could not be read
};

/// What has been read, row by row. Nobody changes it once it is handed on.
struct Snapshot {
    int ground = 0;        ///< which one is read, counted
    int rounds = 0;        ///< that are over
    int interval = 0;      ///< of the rounds, in milliseconds
    qint64 roundTime = -1; ///< how long the last one took, in milliseconds
    std::vector<PointSample> samples;
};
using SnapshotPointer = std::shared_ptr<const Snapshot>;

/// A value of a row at a time, or that there was none.
struct TrendSample {
    int row = 0;
    qint64 time = 0;                                          ///< milliseconds since 1970
    double number = std::numeric_limits<double>::quiet_NaN(); ///< not-a-number is a gap
};
