#include "tests/driverhost/support/slave_test.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <csignal>

// Ctrl-C in the middle of what a subcommand does.

namespace
{

// Every third request is not answered, and may have been executed or not.
SlaveOptions silentAtTheThird()
{
    SlaveOptions options;
    EXPECT_TRUE(options.faults.add("silence=1/3"));
    return options;
}

} // namespace

class InterruptTest : public SlaveTest
{
protected:
    InterruptTest() : SlaveTest(silentAtTheThird()) {}

    // Interrupts a run when the slave is silent.
    HostRun interrupted(const QString &arguments)
    {
        QStringList words = arguments.split(QLatin1Char(' '), Qt::SkipEmptyParts);
        words.replaceInStrings(QStringLiteral("TARGET"), target());
        QProcess process;
        process.start(hostProgram(), words + QStringList{"--timeout", "600000"});
        EXPECT_TRUE(waitUntil([&] { return slave.counts().requests == 3; }));
        EXPECT_EQ(kill(static_cast<pid_t>(process.processId()), SIGINT), 0);
        EXPECT_TRUE(process.waitForFinished());
        EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
        return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
    }
};

TEST_F(InterruptTest, OfAReadPrintsWhatWasRead)
{
    setHoldingRegister(1, 7);
    const HostRun run = interrupted("read TARGET HR1 HR2 HR3 HR4");
    EXPECT_EQ(run.code, 130);
    EXPECT_EQ(run.out, "address  offset  value\nHR1           0      0\nHR2           1      7\n");
    EXPECT_EQ(run.err, "driverhost: interrupted: 2 values read\n");
}

TEST_F(InterruptTest, OfAReadIsInItsSummary)
{
    const QStringList lines = interrupted("read TARGET HR1 HR2 HR3 HR4 --format json").out.split('\n');
    ASSERT_EQ(lines.size(), 4);
    const QJsonObject summary =
        QJsonDocument::fromJson(lines.at(2).toUtf8()).object().value("summary").toObject();
    EXPECT_EQ(summary.value("interrupted"), true);
    EXPECT_EQ(summary.value("values"), 2);
    EXPECT_EQ(summary.value("timeouts"), 0) << "nobody waited for the end of it";
}

TEST_F(InterruptTest, OfAWriteSaysHowFarItCame)
{
    const HostRun run = interrupted("write TARGET FN6HR1 1 2 3 4 5");
    EXPECT_EQ(run.code, 130);
    EXPECT_EQ(run.err, "driverhost: FN6HR1: interrupted\n"
                       "  already written: HR1..2\n"
                       "  sent but not confirmed, perhaps written: HR3\n"
                       "  not sent: HR4..5\n");
}

TEST_F(InterruptTest, OfAWriteIsInItsRows)
{
    const HostRun run = interrupted("write TARGET 1-FN5DO1 1 1 1 1 --format csv");
    EXPECT_EQ(run.code, 130);
    EXPECT_EQ(run.out, "station,address,offset,kind,value,wanted,result,failure,error\n"
                       "1,1-FN5DO1,0,bit,1,1,written,,\n"
                       "1,1-FN5DO2,1,bit,1,1,written,,\n"
                       "1,1-FN5DO3,2,bit,,1,unconfirmed,,\n"
                       "1,1-FN5DO4,3,bit,,1,not-sent,,\n");
}

TEST_F(InterruptTest, OfAVerificationSaysThatAllIsWritten)
{
    const HostRun run = interrupted("write TARGET FN6HR1 1 2 --verify");
    EXPECT_EQ(run.code, 130);
    EXPECT_EQ(run.err, "FN6HR1: wrote 2 items of kind word\ndriverhost: FN6HR1: interrupted\n"
                       "  already written: HR1..2\n");
}

TEST_F(InterruptTest, OfAWatchCutsItShortOnlyWhenItHadAnEnd)
{
    EXPECT_EQ(interrupted("watch TARGET HR1 --interval 0 --count 9").code, 130);
    slave.stop();
    ASSERT_TRUE(slave.start());
    EXPECT_EQ(interrupted("watch TARGET HR1 --interval 0").code, 0);
}
