#include "desk/startup/child_process.h"

#include <QFile>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <initializer_list>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

const int CannotRun = 126;
const int SignalExit = 128;

// As this process got them, also what is no text in its encoding.
QList<QByteArray> ownArguments()
{
    QFile file(QStringLiteral("/proc/self/cmdline"));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QList<QByteArray> arguments = file.readAll().split('\0');
    arguments.removeLast(); // after the last zero
    return arguments;
}

[[noreturn]] void becomeProgram(const QByteArray &program, QList<QByteArray> &arguments,
                                const SignalForwarding::Environment &environment, pid_t parent)
{
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    if (getppid() != parent)
        _exit(CannotRun);
    for (const auto &[name, value] : environment)
        setenv(name.constData(), value.constData(), 1);
    std::vector<char *> argv;
    for (QByteArray &argument : arguments)
        argv.push_back(argument.data());
    argv.push_back(nullptr);
    execv(program.constData(), argv.data());
    _exit(CannotRun);
}

ChildEnd endOf(int status)
{
    if (WIFSIGNALED(status))
        return {WTERMSIG(status), 0};
    return {0, WEXITSTATUS(status)};
}

bool hasEnded(pid_t child, ChildEnd &end)
{
    int status = 0;
    if (waitpid(child, &status, WNOHANG) != child)
        return false;
    end = endOf(status);
    return true;
}

} // namespace

SignalForwarding::SignalForwarding() : m_waited(), m_before()
{
    sigemptyset(&m_waited);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGCHLD})
        sigaddset(&m_waited, signal);
    pthread_sigmask(SIG_BLOCK, &m_waited, &m_before);
}

SignalForwarding::~SignalForwarding()
{
    pthread_sigmask(SIG_SETMASK, &m_before, nullptr);
}

// One that came before there was a child; 0 for none.
int SignalForwarding::pendingSignal() const
{
    const timespec atOnce = {};
    const int signal = sigtimedwait(&m_waited, nullptr, &atOnce);
    return signal > 0 && signal != SIGCHLD ? signal : 0;
}

Result<ChildEnd> SignalForwarding::run(const QString &program, const Environment &environment) const
{
    ChildEnd end;
    end.signal = pendingSignal();
    if (end.signal != 0)
        return end;
    const QByteArray path = QFile::encodeName(program);
    QList<QByteArray> arguments = ownArguments();
    const pid_t parent = getpid();
    const pid_t child = fork();
    if (child == 0) {
        pthread_sigmask(SIG_SETMASK, &m_before, nullptr);
        becomeProgram(path, arguments, environment, parent);
    }
    if (child < 0)
        return Error{QStringLiteral("cannot start %1: %2").arg(program, qt_error_string())};
    while (!hasEnded(child, end)) {
        siginfo_t info = {};
        const int signal = sigwaitinfo(&m_waited, &info);
        // What a terminal sends, the child has got as well; twice would end it in the middle of its last
        // words.
        if (signal > 0 && signal != SIGCHLD && info.si_code != SI_KERNEL)
            kill(child, signal);
    }
    return end;
}

Result<ChildEnd> runInChild(const std::function<int()> &task)
{
    std::fflush(stdout);
    const pid_t child = fork();
    if (child == 0) {
        const int code = task();
        std::fflush(stdout);
        _exit(code);
    }
    int status = 0;
    if (child < 0 || waitpid(child, &status, 0) != child)
        return Error{QStringLiteral("cannot start a child: %1").arg(qt_error_string())};
    return endOf(status);
}

bool isCrash(int signal)
{
    const std::initializer_list<int> crashes{SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGABRT, SIGTRAP, SIGSYS};
    return std::find(crashes.begin(), crashes.end(), signal) != crashes.end();
}

int dieOf(int signal)
{
    std::signal(signal, SIG_DFL);
    raise(signal);
    return SignalExit + signal;
}
