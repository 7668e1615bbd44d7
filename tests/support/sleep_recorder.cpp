#include "tests/support/sleep_recorder.h"

#include <cerrno>
#include <ctime>
#include <unistd.h>

namespace
{

SleepRecorder *recorder = nullptr;

int sleepReally(const timespec *request, timespec *remaining)
{
    const int error = clock_nanosleep(CLOCK_MONOTONIC, 0, request, remaining);
    if (error == 0)
        return 0;
    errno = error;
    return -1;
}

} // namespace

SleepRecorder::SleepRecorder() : waited(0), outer(recorder)
{
    recorder = this;
}

SleepRecorder::~SleepRecorder()
{
    recorder = outer;
}

// These take the places of the C library's functions for the whole program.

// NOLINTNEXTLINE(readability-inconsistent-declaration-parameter-name): the library's names are reserved
extern "C" int nanosleep(const timespec *request, timespec *remaining)
{
    if (recorder == nullptr)
        return sleepReally(request, remaining);
    recorder->note(qint64(request->tv_sec) * 1000000000 + request->tv_nsec);
    return 0;
}

// NOLINTNEXTLINE(readability-inconsistent-declaration-parameter-name)
extern "C" int usleep(useconds_t microseconds)
{
    timespec time = {};
    time.tv_sec = static_cast<time_t>(microseconds / 1000000);
    time.tv_nsec = static_cast<long>(microseconds % 1000000) * 1000;
    if (recorder == nullptr)
        return sleepReally(&time, nullptr);
    recorder->noteWait(microseconds);
    return 0;
}

extern "C" unsigned int sleep(unsigned int seconds)
{
    timespec time = {};
    time.tv_sec = static_cast<time_t>(seconds);
    timespec left = {};
    if (recorder == nullptr)
        return sleepReally(&time, &left) == 0 ? 0 : static_cast<unsigned int>(left.tv_sec);
    recorder->noteWait(qint64(seconds) * 1000000);
    return 0;
}
