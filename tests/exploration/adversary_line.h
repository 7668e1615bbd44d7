#pragma once

#include "desk/channel/line.h"
#include "tests/exploration/chooser.h"
#include "tests/exploration/known_states.h"

#include <QList>

#include <deque>
#include <functional>
#include <string>
#include <vector>

/// What the slave behind the line does with function 8.
enum class ProbeHabit { Answers, Refuses, Ignores };

/// A gateway that forwards what its serial line says to whoever is connected when it says it, and a slave: a
/// queue in which any reply may be lost, and from which the next may come at any time, as the chooser says.
/// The slave's registers hold the number of the request that reads them.
class AdversaryLine : public Line
{
public:
    /// A reply comes no later than \a longestDelay microseconds after its request; -1 for no limit.
    AdversaryLine(Chooser &chooser, ProbeHabit habit, qint64 longestDelay)
        : m_chooser(chooser), m_habit(habit), m_longestDelay(longestDelay)
    {
    }

    bool open(qint64 deadline) override;
    void close() override;
    LineState state() override { return m_isOpen ? LineState::Open : LineState::Closed; }
    int send(const char *bytes, int size, qint64 deadline) override;
    QByteArray receive(qint64 deadline) override;
    void pause(qint64 until) override { passIdle(until - m_now); }
    QString errorString() const override { return QString(); }
    qint64 now() const override { return m_now; }

    /// Called whenever something may come, with the time until the deadline.
    void setWatcher(const std::function<void(qint64)> &watcher) { m_watcher = watcher; }
    /// Lets time pass in which nobody reads.
    void passIdle(qint64 microseconds);

    /// Requests of the driver, and probes, so far.
    Effort effort() const { return m_effort; }
    /// Of choices that are made now.
    int rank() const { return m_effort.requests * 256 + m_effort.probes; }
    /// Whether the reply to the last request of the driver has come.
    bool hasReplied() const { return m_hasReplied; }
    /// What is on its way, and what has come and nobody has read, in words that are the same for whatever
    /// goes on in the same way; \a probes are those whose echo would count.
    std::string flightText(const QList<quint16> &probes) const;
    /// The same of what belongs to the exchange that is going on.
    std::string exchangeText() const;

private:
    struct Flight {
        QByteArray bytes;
        qint64 sentAt;
        int request; // of the driver; 0 for others
    };

    std::string kindOf(const Flight &flight, const QList<quint16> &probes) const;
    QByteArray replyTo(const QByteArray &request) const;
    void letArrive(qint64 deadline);
    bool mustComeBefore(qint64 time) const;
    void arrive();

    Chooser &m_chooser;
    ProbeHabit m_habit;
    qint64 m_longestDelay;
    qint64 m_now = 0;
    bool m_isOpen = false;
    std::deque<Flight> m_flights;
    std::deque<Flight> m_arrived;
    std::vector<Flight> m_taken; // since something was sent
    bool m_areTogether = false;  // the last of them
    std::function<void(qint64)> m_watcher;
    Effort m_effort = {0, 0};
    bool m_hasReplied = false;
};
