#pragma once

#include "apps/driverdesk/worker/line_report.h"
#include "apps/driverdesk/worker/snapshot.h"
#include "apps/driverdesk/worker/write_order.h"

#include <QStringList>

#include <mutex>
#include <optional>

/// How it stands with the link.
struct LinkStatus {
    enum State { Closed, Opening, Good, Failing, Unusable };
    State state = Closed;
    QString text; ///< for people: what is waited for, or why nothing is read
};

/// What a worker has to tell since it was asked the last time.
struct Delivery {
    SnapshotPointer snapshot; ///< the newest; none when there is no newer one
    std::vector<TrendSample> trends;
    QStringList trace;     ///< lines, in their order
    quint64 lostTrace = 0; ///< lines that were too many to wait
    std::vector<WriteOutcome> writes;
    std::optional<LineReport> line;
    std::optional<LinkStatus> status;
};

/// Hands over from a worker's thread to the one that draws. What waits is bounded: of what is replaced only
/// the newest is kept, and of lines and samples the last.
class Feed
{
public:
    void put(SnapshotPointer snapshot);
    void put(const TrendSample &sample);
    void putTrace(const QString &line);
    void put(const WriteOutcome &outcome);
    void put(const LineReport &report);
    void put(const LinkStatus &status);

    /// Everything that waits, which then waits no longer.
    Delivery take();

    static constexpr int MaxTrace = 5000;
    static constexpr size_t MaxTrends = 200000;

private:
    std::mutex m_mutex;
    Delivery m_waiting;
};
