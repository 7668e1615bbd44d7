#pragma once

#include "apps/driverdesk/worker/snapshot.h"

/// How far what is shown of a row is true.
enum class PointState {
    Waiting, ///< nobody has tried to read it yet
    Live,    ///< of the last round
    Late,    ///< was read, but not of late
    Failed   ///< could not be read the last time
};

/// The last sample of a row as it is to be shown at a time.
class PointView
{
public:
    /// \a now is steadyNow().
    PointView(const PointSample &sample, const Snapshot &snapshot, qint64 now)
        : m_sample(sample), m_snapshot(snapshot), m_now(now)
    {
    }

    PointState state() const;
    /// Milliseconds since it was read; -1 when it never was.
    qint64 age() const;

    QString valueText() const;
    /// "live", "late, read 12 s ago", "failed: PLC no response ...".
    QString stateText() const;
    QString ageText() const;
    QString latencyText() const;

private:
    const PointSample &m_sample;
    const Snapshot &m_snapshot;
    qint64 m_now;
};

/// "12 ms", "3.4 s", "2 min 5 s", "3 h 12 min".
QString durationText(qint64 milliseconds);
/// "0.43 ms", "12 ms", of microseconds; empty for less than none.
QString latencyText(qint64 microseconds);
