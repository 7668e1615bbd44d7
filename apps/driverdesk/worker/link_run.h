#pragma once

#include "apps/driverdesk/worker/feed.h"
#include "apps/driverdesk/worker/ground.h"
#include "apps/driverdesk/worker/write_order.h"
#include "desk/live/planned_readings.h"

#include <functional>
#include <optional>
#include <set>

/// The part of a worker that owns the session and its driver. All of it runs in the worker's thread.
class LinkRun : private ReadingListener
{
public:
    /// What the thread around it asks for.
    struct Wishes {
        std::function<bool()> isStopped; ///< nothing is waited for any more
        std::function<bool()> isUrgent;  ///< something else is to be done than reading
    };
    LinkRun(Feed &feed, Wishes wishes);
    ~LinkRun() override;
    LinkRun(const LinkRun &) = delete;
    LinkRun &operator=(const LinkRun &) = delete;

    /// Ends what was open, lays the project's database anew, and gets a new driver for it.
    void open(const Ground &ground, int number);
    void close();
    bool isOpen() const { return m_session != nullptr; }

    /// Asks again for what was refused.
    void forgetRefusals();
    void setInterval(int milliseconds);
    void setTrended(const std::set<int> &rows) { m_trended = rows; }
    void write(const WriteOrder &order);

    /// Reads all once, or until something is urgent.
    void readRound();
    /// When the next round is due, in milliseconds of steadyNow().
    qint64 nextRoundAt() const { return m_nextRoundAt; }
    /// Hands on what is new when it is time for that. When the next time is; nothing when there is nothing
    /// new.
    std::optional<qint64> publish();

private:
    bool add(size_t reading, const QByteArray &data) override;
    bool addFailure(const std::vector<size_t> &readings, const Failure &failure) override;
    bool addNotAsked(const std::vector<size_t> &readings, const Failure &failure) override;
    void addCommand(bool isRead) override;

    void addSample(int row, const PointValue &value, const QString &unit);
    void addGaps(const std::vector<size_t> &readings, const Failure &failure);
    void addGap(int row, const Failure &failure);
    void countCommand();
    Result<> beginRecording();
    void noteTrouble(const Result<> &result);
    void noteTrend(int row, double number);
    bool tick();
    bool isToBeGivenUp() const;
    LineReport report() const;
    void tellStatus(LinkStatus::State state, const QString &text);

    Feed &m_feed;
    Wishes m_wishes;
    bool m_isReading = false;
    Ground m_ground;
    std::vector<int> m_firstRows; // by reading
    Learnt m_learnt;
    std::unique_ptr<Recorder> m_recorder;
    std::unique_ptr<Session> m_session;
    std::unique_ptr<PlannedReadings> m_planned;
    Snapshot m_snapshot;
    std::set<int> m_trended;
    LatencyClasses m_latencies;
    Durations m_durations;
    BusyTime m_busy;
    LinkStatus m_status;
    qint64 m_nextRoundAt = 0;
    qint64 m_publishedAt = 0;
    qint64 m_statusAt = 0;
    bool m_isNew = false;
};
