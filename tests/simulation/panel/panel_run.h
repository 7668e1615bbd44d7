#pragma once

#include "desk/live/planned_readings.h"
#include "desk/live/watched_value.h"
#include "tests/simulation/panel/fault_calendar.h"
#include "tests/simulation/panel/simulated_panel.h"

#include <string>

/// What a run has come to.
struct RunReport {
    std::string problem; ///< empty for none; where there is one the run has ended
    quint64 rounds = 0;
    quint64 values = 0;
    quint64 failures = 0;
    quint64 notAsked = 0;
    qint64 longestRecovery = 0; ///< from the end of a fault to the next complete round, in microseconds
    std::size_t mostPending = 0;
    quint64 digest = 0; ///< of every byte on the line, and when it was there
};

/// A panel that reads five stations every second, through faults that come and go, all from one seed. No
/// value is wrong or old, every failure has a fault to explain it, and rounds are complete again some seconds
/// after each.
class PanelRun : private ReadingListener
{
public:
    PanelRun(const QString &plugin, quint32 seed, SettleMode mode = SettleMode::Auto);

    /// Until so many microseconds have passed, or there is a problem.
    void runUntil(qint64 time);
    /// Prints all that is on the line from then on.
    void traceFrom(qint64 time) { m_traceFrom = time; }

    const RunReport &report() const { return m_report; }
    qint64 now() const { return m_panel.time.now(); }
    int episodes() const { return m_calendar.episodes(); }
    quint64 requests() const { return m_panel.gateway.requests(); }
    std::string description() const;

private:
    struct Value {
        WatchedValue shown{3000}; // of which no more than the time of the last round counts
        int reports = 0;          // in this round
        bool isGiven = false;
    };

    bool add(size_t reading, const QByteArray &data) override;
    bool addFailure(const std::vector<size_t> &readings, const Failure &failure) override;
    bool addNotAsked(const std::vector<size_t> &readings, const Failure &failure) override;
    void addCommand(bool /*isRead*/) override {}

    void miss(const std::vector<size_t> &readings, const Failure &failure);
    void watch(char direction, const QByteArray &bytes);
    void checkRound(qint64 began);
    void noteProblem(const std::string &what);

    LinkSettings m_settings;
    SimulatedPanel m_panel;
    FaultCalendar m_calendar;
    std::vector<Reading> m_readings;
    Learnt m_learnt;
    PlannedReadings m_planned;
    StationPacing m_pacing;
    std::vector<Value> m_values;
    RunReport m_report;
    qint64 m_traceFrom = -1;
    bool m_isComplete = true; // since the last fault
};
