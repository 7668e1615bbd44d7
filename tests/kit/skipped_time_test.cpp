#include "kit/process/skipped_time.h"

#include <gtest/gtest.h>

#include <ctime>
#include <sys/time.h>
#include <unistd.h>

// Nobody waits, and no clock notices.

namespace
{

const qint64 Second = 1000000000;

qint64 nanosecondsOf(clockid_t clock)
{
    timespec now = timespec();
    clock_gettime(clock, &now);
    return qint64(now.tv_sec) * Second + now.tv_nsec;
}

// Time that really passes: of the processor, which sleeping takes none of.
qint64 processorTime()
{
    return nanosecondsOf(CLOCK_PROCESS_CPUTIME_ID);
}

// All ways of sleeping an hour.
void sleepLong(int way)
{
    const timespec hour = {3600, 0};
    timespec until = {time(nullptr) + 3600, 0};
    switch (way) {
    case 0: nanosleep(&hour, nullptr); break;
    case 1: clock_nanosleep(CLOCK_MONOTONIC, 0, &hour, nullptr); break;
    case 2: clock_nanosleep(CLOCK_REALTIME, TIMER_ABSTIME, &until, nullptr); break;
    case 3: sleep(3600); break;
    default:
        for (int i = 0; i < 3600; ++i)
            usleep(1000000);
    }
}

} // namespace

TEST(SkippedTime, SleepingTakesNoTimeAndAllClocksGoOn)
{
    const kit::SkippedTime nobodyWaits;
    for (int way = 0; way < 5; ++way) {
        const qint64 monotonic = nanosecondsOf(CLOCK_MONOTONIC);
        const qint64 real = nanosecondsOf(CLOCK_REALTIME);
        const time_t seconds = time(nullptr);
        timeval day = timeval();
        gettimeofday(&day, nullptr);
        sleepLong(way);
        EXPECT_GE(nanosecondsOf(CLOCK_MONOTONIC) - monotonic, 3598 * Second) << way;
        EXPECT_GE(nanosecondsOf(CLOCK_REALTIME) - real, 3598 * Second) << way;
        EXPECT_GE(time(nullptr) - seconds, 3598) << way;
        timeval later = timeval();
        gettimeofday(&later, nullptr);
        EXPECT_GE(later.tv_sec - day.tv_sec, 3598) << way;
    }
}

TEST(SkippedTime, IsWhatWasSlept)
{
    const kit::SkippedTime nobodyWaits;
    const qint64 before = kit::SkippedTime::skipped();
    usleep(1500);
    kit::SkippedTime::skip(500);
    EXPECT_EQ(kit::SkippedTime::skipped() - before, 1500500);
    kit::SkippedTime::skip(-500);
    EXPECT_EQ(kit::SkippedTime::skipped() - before, 1500500);
}

TEST(SkippedTime, TheProcessorsTimeIsNotSkipped)
{
    const kit::SkippedTime nobodyWaits;
    const qint64 before = processorTime();
    sleepLong(0);
    EXPECT_LT(processorTime() - before, 3600 * Second);
}
