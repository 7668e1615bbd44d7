#pragma once

#include "desk/items/readings.h"
#include "desk/link/session.h"
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

    /// One reading is done, or has failed for the reason in \a error.
    virtual bool add(size_t reading, const std::vector<ValueRow> &rows) = 0;
    virtual bool addFailure(size_t reading, const QString &error) = 0;
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
class WatchLoop
{
public:
    WatchLoop(Session &session, const std::vector<Reading> &readings, const WatchSettings &settings,
              const WatchPauses &pauses);

    /// False when the listener wanted no more.
    bool run(WatchListener &listener);

    const Statistics &statistics() const { return m_statistics; }
    qint64 milliseconds() const { return m_clock.elapsed(); }
    /// Nothing when no reading has failed.
    const std::optional<Failure> &lastFailure() const { return m_failure; }

private:
    bool readRounds(WatchListener &listener);
    bool readRound(WatchListener &listener);
    bool readOne(WatchListener &listener, size_t index);
    bool failOthers(WatchListener &listener, size_t first);
    std::vector<ValueRow> timedRows(const Reading &reading, const QByteArray &data) const;
    QString failureText(const Reading &reading);
    bool isStopped() const;
    bool isOver(int rounds) const;
    qint64 timeToNextRound() const;

    Session &m_session;
    const std::vector<Reading> &m_readings;
    WatchSettings m_settings;
    WatchPauses m_pauses;
    Statistics m_statistics;
    QElapsedTimer m_clock;
    std::optional<Failure> m_failure;
    bool m_isUnconnected = false;
};
