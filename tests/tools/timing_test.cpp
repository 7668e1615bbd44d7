#include "drivers/tools/timing.h"
#include "tests/doubles/frames.h"
#include "tests/support/gtest_qt.h"
#include "tests/support/sleep_recorder.h"

#include <csignal>
#include <limits>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace
{

std::vector<qint64> nanosecondsAskedFor(unsigned long milliseconds)
{
    const SleepRecorder recorder;
    HRSleep(milliseconds);
    return recorder.sleeps();
}

qint64 millisecondsTaken(unsigned long milliseconds)
{
    const qint64 start = CurrentMSecsSinceBoot();
    HRSleep(milliseconds);
    return CurrentMSecsSinceBoot() - start;
}

volatile std::sig_atomic_t alarmsLeft = 0;
volatile std::sig_atomic_t alarmsSeen = 0;

void onAlarm(int /*signal*/)
{
    alarmsSeen = alarmsSeen + 1;
    alarmsLeft = alarmsLeft - 1;
    if (alarmsLeft <= 0) {
        const itimerval off = {};
        setitimer(ITIMER_REAL, &off, nullptr);
    }
}

// Interrupts the process every 100 ms, `count` times, while it lives.
class Alarms
{
public:
    explicit Alarms(int count)
    {
        alarmsLeft = count;
        alarmsSeen = 0;
        struct sigaction action = {};
        action.sa_handler = onAlarm;
        sigaction(SIGALRM, &action, &previous);
        itimerval every = {};
        every.it_interval.tv_usec = 100000;
        every.it_value.tv_usec = 100000;
        setitimer(ITIMER_REAL, &every, nullptr);
    }
    ~Alarms()
    {
        const itimerval off = {};
        setitimer(ITIMER_REAL, &off, nullptr);
        sigaction(SIGALRM, &previous, nullptr);
    }
    Alarms(const Alarms &) = delete;
    Alarms &operator=(const Alarms &) = delete;

private:
    struct sigaction previous;
};

qint64 idOfEndedChild()
{
    const pid_t child = fork();
    if (child == 0)
        _exit(0);
    waitpid(child, nullptr, 0);
    return child;
}

// What a process without any rights sees.
bool unprivilegedSeesRunning(qint64 pid)
{
    const uid_t nobody = 65534;
    const pid_t child = fork();
    if (child == 0) {
        if (geteuid() == 0 && setuid(nobody) != 0)
            _exit(2);
        _exit(ProcessIsRunning(pid) ? 0 : 1);
    }
    int status = -1;
    waitpid(child, &status, 0);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

} // namespace

TEST(HRSleep, ZeroDoesNotEnterTheKernel)
{
    EXPECT_EQ(nanosecondsAskedFor(0), std::vector<qint64>());
}

TEST(HRSleep, SplitsSecondsAndNanoseconds)
{
    EXPECT_EQ(nanosecondsAskedFor(1), std::vector<qint64>{1000000});
    EXPECT_EQ(nanosecondsAskedFor(999), std::vector<qint64>{999000000});
    EXPECT_EQ(nanosecondsAskedFor(1000), std::vector<qint64>{1000000000});
    EXPECT_EQ(nanosecondsAskedFor(4294), std::vector<qint64>{4294000000});
}

TEST(HRSleep, NanosecondsWrap)
{
    EXPECT_EQ(nanosecondsAskedFor(4295), std::vector<qint64>{32704});
    EXPECT_EQ(nanosecondsAskedFor(5000), std::vector<qint64>{705032704});
    EXPECT_EQ(nanosecondsAskedFor(0xFFFFFFFFul), std::vector<qint64>{4294967296 - 1000000});
    EXPECT_EQ(nanosecondsAskedFor(1ul << 26), std::vector<qint64>());
}

TEST(HRSleep, SleepsForTheTime)
{
    const qint64 taken = millisecondsTaken(50);
    EXPECT_GE(taken, 49);
    EXPECT_LT(taken, 1000);
}

TEST(HRSleep, OutlastsSignals)
{
    const Alarms alarms(14);
    const qint64 taken = millisecondsTaken(1500);
    EXPECT_GE(alarmsSeen, 5);
    EXPECT_GE(taken, 1499);
    // One that started again after the last signal would take 2900 ms.
    EXPECT_LT(taken, 2500);
}

TEST(Clock, RunsWithTheMonotonicClock)
{
    timespec before = {};
    timespec after = {};
    clock_gettime(CLOCK_MONOTONIC, &before);
    const qint64 now = CurrentMSecsSinceBoot();
    clock_gettime(CLOCK_MONOTONIC, &after);
    EXPECT_GE(now, before.tv_sec * 1000 + before.tv_nsec / 1000000);
    EXPECT_LE(now, after.tv_sec * 1000 + after.tv_nsec / 1000000);
}

TEST(Process, OwnOneRuns)
{
    EXPECT_TRUE(ProcessIsRunning(getpid()));
}

TEST(Process, OneOfAnotherUserRuns)
{
    EXPECT_TRUE(unprivilegedSeesRunning(1));
    EXPECT_FALSE(unprivilegedSeesRunning(idOfEndedChild()));
}

TEST(Process, OneThatEndedDoesNot)
{
    EXPECT_FALSE(ProcessIsRunning(idOfEndedChild()));
}

TEST(Process, NumbersThatAreNoProcessId)
{
    const qint64 above = qint64(1) << 32;
    EXPECT_FALSE(ProcessIsRunning(above + getpid()));
    EXPECT_FALSE(ProcessIsRunning(std::numeric_limits<qint64>::max()));
    EXPECT_FALSE(ProcessIsRunning(std::numeric_limits<qint64>::min()));
}

TEST(Dump, HexadecimalThenText)
{
    EXPECT_EQ(dumpByteArray(fromHex("01 AB 30")), QString::fromLatin1("(0X1 0Xab 0X30 ) : \x01\xAB\x30"));
    EXPECT_EQ(dumpByteArray(QByteArray()), QString::fromLatin1("() : "));
    EXPECT_EQ(dumpByteArray(fromHex("00")), QString::fromLatin1("(0X0 ) : "));
    EXPECT_EQ(dumpByteArray(fromHex("41 00 42")), QString::fromLatin1("(0X41 0X0 0X42 ) : A"));
}

TEST(Dump, BytesFrom0x80UpShowAsLatin1)
{
    const QString text = dumpByteArray(fromHex("80 FF"));
    ASSERT_EQ(text.size(), 17);
    EXPECT_EQ(text.at(15).unicode(), 0x80);
    EXPECT_EQ(text.at(16).unicode(), 0xFF);
}

TEST(Dump, EndsWithTheArray)
{
    const char data[] = {'A', 'B', 'C', 'D'};
    EXPECT_EQ(dumpByteArray(QByteArray::fromRawData(data, 2)), QString::fromLatin1("(0X41 0X42 ) : AB"));
}

TEST(Reverse, Bytes)
{
    EXPECT_EQ(reverseArray(fromHex("01 02 03")), fromHex("03 02 01"));
    EXPECT_EQ(reverseArray(fromHex("01 00")), fromHex("00 01"));
    EXPECT_EQ(reverseArray(QByteArray()), QByteArray());
    const QByteArray original = fromHex("01 02");
    reverseArray(original);
    EXPECT_EQ(original, fromHex("01 02"));
}

TEST(PackageSizes, AreEmptyAtFirst)
{
    EXPECT_TRUE(EmptyPackageSizeList().isEmpty());
}
