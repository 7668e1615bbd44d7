// What the system may refuse: a signal, a sleep, the plug-in that reads databases.

#include "drivers/modbus_rtu_slave_over_tcp/modbus_rtu_slave_over_tcp.h"
#include "drivers/tools/timing.h"
#include "tests/doubles/command.h"
#include "tests/doubles/project_database.h"
#include "tests/doubles/scripted_channel.h"
#include "tests/support/gtest_qt.h"

#include <QCoreApplication>
#include <QFile>
#include <QSqlDatabase>

#include <cerrno>
#include <csignal>
#include <ctime>

namespace
{

int killError = 0;
int sleepError = 0;
int sleepCalls = 0;

int failure(int error)
{
    errno = error;
    return error == 0 ? 0 : -1;
}

} // namespace

// These take the place of the C library's functions for the whole program.

extern "C" int kill(pid_t /*process*/, int /*signal*/) noexcept
{
    return failure(killError);
}

extern "C" int nanosleep(const timespec * /*request*/, timespec * /*remaining*/)
{
    ++sleepCalls;
    return failure(sleepError);
}

TEST(ProcessIsRunning, TrueForAProcessOfAnotherUser)
{
    killError = EPERM;
    EXPECT_TRUE(ProcessIsRunning(1));
    killError = ESRCH;
    EXPECT_FALSE(ProcessIsRunning(1));
}

TEST(HRSleep, EndsWhenTheSystemRefusesToSleep)
{
    sleepError = EINVAL;
    HRSleep(1);
    EXPECT_EQ(sleepCalls, 1);
}

// The file starts like a database, but nothing in this process can read one.
TEST(ProjectDatabaseOpen, FailsWithoutTheSQLitePlugin)
{
    QCoreApplication::setLibraryPaths(QStringList());
    if (QSqlDatabase::isDriverAvailable(QLatin1String("QSQLITE")))
        GTEST_SKIP() << "this Qt has SQLite built in";
    ProjectDatabase::makeFolders();
    QFile file(ProjectDatabase::path());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("SQLite format 3", 16);
    file.close();

    ScriptedChannel channel;
    DriverModbusRtuSlaveOverTcp driver;
    EXPECT_TRUE(driver.read(&channel, makeCommand(WordItem, QLatin1String("HR1"), 1)).isEmpty());
    EXPECT_EQ(driver.getLastError(), QLatin1String(CanNotOpen));
    ProjectDatabase::remove();
}
