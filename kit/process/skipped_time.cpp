#include "kit/process/skipped_time.h"

#include <cerrno>
#include <ctime>
#include <dlfcn.h>
#include <sys/time.h>
#include <unistd.h>

namespace
{

const qint64 Billion = 1000000000;

kit::SkippedTime *present = nullptr;
qint64 skippedNanoseconds = 0;

qint64 nanosecondsOf(const timespec &time)
{
    return qint64(time.tv_sec) * Billion + time.tv_nsec;
}

timespec timespecOf(qint64 nanoseconds)
{
    timespec time = timespec();
    time.tv_sec = static_cast<time_t>(nanoseconds / Billion);
    time.tv_nsec = static_cast<long>(nanoseconds % Billion);
    return time;
}

// The C library's own function, which the one in this file hides.
template <typename Function>
Function original(const char *name, Function /*sameType*/)
{
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

// CPU time is spent, not slept.
bool isOfTheWorld(clockid_t clock)
{
    return clock != CLOCK_PROCESS_CPUTIME_ID && clock != CLOCK_THREAD_CPUTIME_ID;
}

} // namespace

namespace kit
{

SkippedTime::SkippedTime() : m_outer(present)
{
    present = this;
}

SkippedTime::~SkippedTime()
{
    present = m_outer;
}

void SkippedTime::skip(qint64 nanoseconds)
{
    if (nanoseconds > 0)
        skippedNanoseconds += nanoseconds;
}

qint64 SkippedTime::skipped()
{
    return skippedNanoseconds;
}

qint64 SkippedTime::nanoseconds()
{
    timespec now = timespec();
    clock_gettime(CLOCK_MONOTONIC, &now);
    return nanosecondsOf(now);
}

} // namespace kit

// These take the places of the C library's functions for the whole process, plug-ins and Qt included. Weak,
// so that a program may have others. NOLINTBEGIN(readability-inconsistent-declaration-parameter-name): the
// library's names are reserved

extern "C" __attribute__((weak)) int clock_gettime(clockid_t clock, timespec *time)
{
    static const auto real = original("clock_gettime", &clock_gettime);
    const int result = real(clock, time);
    if (result == 0 && isOfTheWorld(clock))
        *time = timespecOf(nanosecondsOf(*time) + skippedNanoseconds);
    return result;
}

extern "C" __attribute__((weak)) int gettimeofday(timeval *time, void *zone) noexcept
{
    static const auto real = original("gettimeofday", &gettimeofday);
    const int result = real(time, zone);
    if (result == 0) {
        const qint64 microseconds = time->tv_usec + skippedNanoseconds / 1000;
        time->tv_sec += static_cast<time_t>(microseconds / 1000000);
        time->tv_usec = static_cast<suseconds_t>(microseconds % 1000000);
    }
    return result;
}

extern "C" __attribute__((weak)) time_t time(time_t *seconds) noexcept
{
    timespec now = timespec();
    clock_gettime(CLOCK_REALTIME, &now);
    if (seconds != nullptr)
        *seconds = now.tv_sec;
    return now.tv_sec;
}

extern "C" __attribute__((weak)) int clock_nanosleep(clockid_t clock, int flags, const timespec *request,
                                                     timespec *remaining)
{
    if (present == nullptr) {
        static const auto real = original("clock_nanosleep", &clock_nanosleep);
        return real(clock, flags, request, remaining);
    }
    timespec now = timespec();
    if ((flags & TIMER_ABSTIME) != 0)
        clock_gettime(clock, &now);
    const qint64 slept = nanosecondsOf(*request) - nanosecondsOf(now);
    present->note(slept);
    kit::SkippedTime::skip(slept);
    return 0;
}

extern "C" __attribute__((weak)) int nanosleep(const timespec *request, timespec *remaining)
{
    const int error = clock_nanosleep(CLOCK_MONOTONIC, 0, request, remaining);
    if (error == 0)
        return 0;
    errno = error;
    return -1;
}

static int sleepOtherwise(const timespec &request, timespec *remaining)
{
    if (present == nullptr)
        return nanosleep(&request, remaining);
    present->noteOther(nanosecondsOf(request));
    kit::SkippedTime::skip(nanosecondsOf(request));
    return 0;
}

extern "C" __attribute__((weak)) int usleep(useconds_t microseconds)
{
    const qint64 nanoseconds = qint64(microseconds) * 1000;
    return sleepOtherwise(timespecOf(nanoseconds), nullptr);
}

extern "C" __attribute__((weak)) unsigned int sleep(unsigned int seconds)
{
    timespec left = timespec();
    const int result = sleepOtherwise(timespecOf(qint64(seconds) * Billion), &left);
    return result == 0 ? 0 : static_cast<unsigned int>(left.tv_sec);
}

// NOLINTEND(readability-inconsistent-declaration-parameter-name)
