#pragma once

#include "desk/result.h"

#include <QByteArray>

#include <csignal>
#include <functional>
#include <utility>
#include <vector>

/// How a child ended: of a signal, or with an exit code.
struct ChildEnd {
    int signal = 0;
    int code = 0;
};

/// While this lives, signals that ask the process to end wait for the child instead.
class SignalForwarding
{
public:
    using Environment = std::vector<std::pair<QByteArray, QByteArray>>;

    SignalForwarding();
    ~SignalForwarding();
    SignalForwarding(const SignalForwarding &) = delete;
    SignalForwarding &operator=(const SignalForwarding &) = delete;

    /// Runs \a program with the arguments of this process and waits for its end. The child gets every signal
    /// that this process gets, and dies with it.
    Result<ChildEnd> run(const QString &program, const Environment &environment) const;

private:
    int pendingSignal() const;

    sigset_t m_waited;
    sigset_t m_before;
};

/// Runs \a task in a child and waits for its end, so that nothing that happens there ends this process.
Result<ChildEnd> runInChild(const std::function<int()> &task);

/// Whether a process that ended by \a signal was at fault itself: it used memory that it does not have, or
/// the like.
bool isCrash(int signal);

/// Ends this process by \a signal, as a shell expects of a program that was interrupted.
int dieOf(int signal);
