#include "tests/driverhost/support/slave_test.h"

class BroadcastTest : public SlaveTest
{
protected:
    HostRun write(const char *what)
    {
        const QStringList words{QStringLiteral("write"), target(0), QStringLiteral("--timeout"),
                                QStringLiteral("60")};
        return runHost(words + QString::fromLatin1(what).split(QLatin1Char(' ')));
    }
};

TEST_F(BroadcastTest, CountsAsWrittenOnceItIsSent)
{
    const HostRun run = write("HR5 7 8");
    EXPECT_EQ(run.code, 0) << run.err.toStdString();
    EXPECT_TRUE(run.err.startsWith(QLatin1String("station 0 is a broadcast"))) << run.err.toStdString();
    EXPECT_TRUE(run.err.contains(QLatin1String("HR5: sent"))) << run.err.toStdString();
    EXPECT_FALSE(run.err.contains(QLatin1String("check:"))) << run.err.toStdString();
    EXPECT_TRUE(waitUntil([&] { return holdingRegister(5) == 8; }));
    EXPECT_EQ(slave.counts().requests, 1u) << "no second attempt";
}

TEST_F(BroadcastTest, IsOneRequestThatNeedsNoReply)
{
    for (const char *what :
         {"FN6HR5 7 8", "FN5DO5 1 0", "FN6HR5 --kind dword 7", "HR5.3 1", "HR5 7 --verify"}) {
        const HostRun run = write(what);
        EXPECT_EQ(run.code, 2) << what;
        EXPECT_TRUE(run.err.contains(QLatin1String("station 0"))) << run.err.toStdString();
    }
    EXPECT_EQ(slave.counts().connections, 0u);
    EXPECT_EQ(write("FN6HR5 7").code, 0);
    EXPECT_TRUE(waitUntil([&] { return holdingRegister(4) == 7; }));
}

TEST_F(BroadcastTest, FailsWithoutAConnection)
{
    slave.stop();
    EXPECT_EQ(write("HR5 7").code, 3);
}

TEST_F(BroadcastTest, FailsWhenOnlyAReadWasSent)
{
    const HostRun run = write("HR5.3 1 --raw --kind bit");
    EXPECT_EQ(run.code, 4) << run.err.toStdString();
}
