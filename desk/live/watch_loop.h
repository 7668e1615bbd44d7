#pragma once

#include "desk/live/planned_readings.h"
#include "desk/live/statistics.h"

#include <QElapsedTimer>

/// Reading the same values again and again.
struct WatchSettings {
    int interval = 1000; ///< milliseconds from the beginning of a round to the next
    int rounds = 0;      ///< 0: no limit
    qint64 duration = 0; ///< milliseconds; 0: no limit
};

/// What a watch reports. Where something is returned, false ends the watch: nobody wants to know more.
class WatchListener
{
public:
    virtual ~WatchListener() = default;

    /// One reading is done, or has failed for the reason in the rows; \a error is the same for people, in the
    /// same words for all that failed together.
    virtual bool add(size_t reading, const std::vector<ValueRow> &rows) = 0;
    virtual bool addFailure(size_t reading, const std::vector<ValueRow> &rows, const QString &error) = 0;
    /// It was not asked for, since it was refused before.
    virtual bool addNotAsked(size_t reading, const std::vector<ValueRow> &rows, const QString &error)
    {
        return addFailure(reading, rows, error);
    }
    /// A round is over.
    virtual bool endRound() = 0;
    /// Called now and then while a reply is waited for.
    virtual void tick() {}
};

/// How the program around a watch asks it to stop, and lets time pass until that or the end of the time.
struct WatchPauses {
    std::function<bool()> isStopped;
    std::function<void(qint64 milliseconds)> wait;
};

/// Reads until the rounds or the time are over, or until it is asked to stop.
class WatchLoop : private ReadingListener
{
public:
    /// What is learnt of the stations is kept in \a learnt.
    WatchLoop(Session &session, const std::vector<Reading> &readings, Learnt &learnt,
              const WatchSettings &settings, const WatchPauses &pauses);

    /// False when the listener wanted no more.
    bool run(WatchListener &listener);

    const Statistics &statistics() const { return m_statistics; }
    qint64 milliseconds() const { return m_clock.elapsed(); }
    /// Rounds that are over.
    int rounds() const { return m_rounds; }
    /// Nothing when no reading has failed.
    const std::optional<Failure> &lastFailure() const { return m_failure; }

private:
    bool add(size_t index, const QByteArray &data) override;
    bool addFailure(const std::vector<size_t> &readings, const Failure &failure) override;
    bool addNotAsked(const std::vector<size_t> &readings, const Failure &failure) override;
    void addCommand(bool isRead) override;

    bool readRounds(WatchListener &listener);
    std::vector<ValueRow> failedRows(size_t index, const Failure &failure) const;
    QString errorOf(const std::vector<size_t> &readings, const Failure &failure) const;
    void addTransaction(std::vector<ValueRow> &rows) const;
    bool isStopped() const;
    bool isOver() const;
    qint64 timeToNextRound() const;

    Session &m_session;
    const std::vector<Reading> &m_readings;
    StationPacing m_pacing;
    PlannedReadings m_planned;
    WatchSettings m_settings;
    WatchPauses m_pauses;
    WatchListener *m_listener = nullptr;
    Statistics m_statistics;
    QElapsedTimer m_clock;
    std::vector<std::vector<ValueRow>> m_lastRows; // of each reading; empty until it was read
    int m_rounds = 0;
    bool m_hasAsked = false; // anything, in this round
    std::optional<Failure> m_failure;
};
