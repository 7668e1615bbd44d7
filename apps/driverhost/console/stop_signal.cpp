#include "apps/driverhost/console/stop_signal.h"

#include <QEventLoop>
#include <QSocketNotifier>
#include <QTimer>

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace
{

const std::array<int, 3> stopSignals{SIGINT, SIGTERM, SIGHUP};

volatile std::sig_atomic_t isRaised = 0;
// What a handler may not do itself is done where the pipe is read.
std::array<int, 2> wakePipe{-1, -1};
std::array<struct sigaction, stopSignals.size()> formerActions;

void noteSignal(int /*signal*/)
{
    const int formerError = errno;
    isRaised = 1;
    const char byte = 0;
    // A full pipe wakes as well.
    [[maybe_unused]] const ssize_t written = ::write(wakePipe[1], &byte, 1);
    errno = formerError;
}

} // namespace

StopSignal::StopSignal(QObject *parent) : QObject(parent)
{
    isRaised = 0;
    if (::pipe2(wakePipe.data(), O_CLOEXEC | O_NONBLOCK) != 0)
        qFatal("no pipe for signals");
    m_notifier = new QSocketNotifier(wakePipe[0], QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, [this] { drainPipe(); });

    struct sigaction action = {};
    action.sa_handler = noteSignal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    for (size_t i = 0; i < stopSignals.size(); ++i)
        sigaction(stopSignals.at(i), &action, &formerActions.at(i));
}

StopSignal::~StopSignal()
{
    for (size_t i = 0; i < stopSignals.size(); ++i)
        sigaction(stopSignals.at(i), &formerActions.at(i), nullptr);
    delete m_notifier;
    ::close(wakePipe[0]);
    ::close(wakePipe[1]);
}

bool StopSignal::raised()
{
    return isRaised != 0;
}

void StopSignal::wait(qint64 milliseconds) const
{
    if (milliseconds <= 0 || raised())
        return;
    QEventLoop loop;
    QTimer timer;
    timer.setSingleShot(true);
    timer.setTimerType(Qt::PreciseTimer);
    QObject::connect(&timer, &QTimer::timeout, &loop, &QEventLoop::quit);
    QObject::connect(this, &StopSignal::stop, &loop, &QEventLoop::quit);
    timer.start(static_cast<int>(milliseconds));
    loop.exec();
}

void StopSignal::drainPipe()
{
    std::array<char, 64> bytes;
    while (::read(wakePipe[0], bytes.data(), bytes.size()) > 0)
        continue;
    emit stop();
}
