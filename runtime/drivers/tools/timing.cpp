#include "drivers/tools/timing.h"

#include <cerrno>
#include <csignal>
#include <ctime>

void HRSleep(unsigned long milliseconds)
{
    const quint32 nanoseconds = static_cast<quint32>(milliseconds) * 1000000u;
    if (nanoseconds == 0)
        return;
    timespec left;
    left.tv_sec = static_cast<time_t>(nanoseconds / 1000000000u);
    left.tv_nsec = static_cast<long>(nanoseconds % 1000000000u);
    while (nanosleep(&left, &left) == -1 && errno == EINTR) {
    }
}

qint64 CurrentMSecsSinceBoot()
{
    timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return qint64(now.tv_sec) * 1000 + now.tv_nsec / 1000000;
}

bool ProcessIsRunning(qint64 pid)
{
    const auto id = static_cast<pid_t>(pid);
    return id == pid && (kill(id, 0) == 0 || errno == EPERM);
}
