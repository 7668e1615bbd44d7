#include "support/sleep_recorder.h"

#include <cerrno>
#include <ctime>

namespace
{

SleepRecorder *recorder = nullptr;

} // namespace

SleepRecorder::SleepRecorder()
{
    recorder = this;
}

SleepRecorder::~SleepRecorder()
{
    recorder = nullptr;
}

// Takes the place of the C library's function for the whole program.
extern "C" int nanosleep(const timespec *request, timespec *remaining)
{
    if (recorder != nullptr) {
        recorder->note(qint64(request->tv_sec) * 1000000000 + request->tv_nsec);
        return 0;
    }
    const int error = clock_nanosleep(CLOCK_MONOTONIC, 0, request, remaining);
    if (error == 0)
        return 0;
    errno = error;
    return -1;
}
