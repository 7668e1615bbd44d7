#pragma once

#include "apps/driverhost/console/exit_code.h"
#include "apps/driverhost/console/stop_signal.h"
#include "desk/link/session.h"

#include <functional>

/// While it lives Ctrl-C and its like end what the session waits for, and long waits show on the terminal.
class InterruptibleRun
{
public:
    /// Shows waits on the status line, after \a label().
    explicit InterruptibleRun(Session &session);
    /// Shows waits as \a show does, which is called many times a second.
    InterruptibleRun(Session &session, const std::function<void(const QString &wait)> &show);
    ~InterruptibleRun();
    InterruptibleRun(const InterruptibleRun &) = delete;
    InterruptibleRun &operator=(const InterruptibleRun &) = delete;

    /// What the session is about to do, for people.
    void setLabel(const QString &label) { m_label = label; }

    /// Lets time pass, in milliseconds, until that or the end of the time.
    void pause(qint64 milliseconds) const { m_signal.wait(milliseconds); }
    bool isInterrupted() const { return StopSignal::raised(); }
    /// The exit code of a run that would have ended with \a code.
    int endOf(int code) const { return isInterrupted() ? Interrupted : code; }

private:
    StopSignal m_signal;
    Session &m_session;
    QString m_label;
};

/// What the session waits for, and how long still: "attempt 2 of 4, 7 s left". Empty in the first
/// moments, and when it waits for nothing.
QString waitText(const Session &session);
