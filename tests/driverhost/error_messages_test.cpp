#include "tests/driverhost/support/slave_test.h"

#include <QFile>

// What the program says when it is used wrongly, or when the world is not as it should be.
class ErrorMessagesTest : public SlaveTest
{
protected:
    void expectRefusal(const QString &arguments, const QString &text)
    {
        const HostRun run = host(arguments);
        EXPECT_EQ(run.code, 2) << arguments.toStdString();
        EXPECT_TRUE(run.err.contains(text)) << run.err.toStdString();
    }
};

TEST_F(ErrorMessagesTest, TargetsAreHalfWritten)
{
    expectRefusal("read localhost:15102/1 HR1", "rtutcp://localhost:15102/1");
    expectRefusal("read 10.0.0.5:502 HR1", "rtutcp://10.0.0.5:502");
    expectRefusal("read [::1]:502/3 HR1", "rtutcp://[::1]:502/3");
    expectRefusal("read rtutcp://localhost:99999/1 HR1", "a port from 1 to 65535");
    expectRefusal("read TARGET rtutcp://10.0.0.5 HR1", "\"rtutcp://10.0.0.5\": one target is there already");
    expectRefusal("read --host 127.0.0.1:15102 HR1", "--port");
    expectRefusal("read --host rtutcp://127.0.0.1 HR1", "--port");
}

TEST_F(ErrorMessagesTest, BracketsOfAnAddressAreNoError)
{
    const HostRun run = host("read --host [::1] --port 9 HR1 --retries 0");
    EXPECT_EQ(run.code, 3);
    EXPECT_TRUE(run.err.contains(QLatin1String("cannot connect to [::1]:9"))) << run.err.toStdString();
    EXPECT_FALSE(run.err.contains(QLatin1String("not found"))) << run.err.toStdString();
}

TEST_F(ErrorMessagesTest, NumbersAreNamedAsTheyWereGiven)
{
    expectRefusal("read TARGET 40001", "40001 is HR1");
    expectRefusal("read TARGET HR1 --count 0", "--count \"0\"");
    expectRefusal("watch TARGET HR1 --items 0", "--items \"0\"");
    expectRefusal("watch TARGET HR1 --interval=-1", "--interval \"-1\"");
    expectRefusal("watch TARGET HR1 --interval -1", "--interval \"-1\"");
    EXPECT_FALSE(host("watch TARGET HR1 --duration=-1").err.contains(QLatin1String("e+")));
}

TEST_F(ErrorMessagesTest, OutputThatCannotBeWrittenIsReported)
{
    if (!QFile::exists("/dev/full"))
        GTEST_SKIP() << "no full device here";
    QProcess process;
    process.setStandardOutputFile("/dev/full");
    process.start(hostProgram(), {"read", target(), "HR1"});
    ASSERT_TRUE(process.waitForFinished());
    EXPECT_EQ(process.exitCode(), 141);
    const QByteArray reported = process.readAllStandardError();
    EXPECT_TRUE(reported.contains("cannot write the output: No space left on device"))
        << reported.constData();
}

TEST_F(ErrorMessagesTest, GatewaysThatAnswerForNobodyAreNoStations)
{
    slave.inject(Fault{Fault::Exception, 0x0B});
    const HostRun read = host("read TARGET HR1 --retries 0");
    EXPECT_EQ(read.code, 5);
    EXPECT_TRUE(read.err.contains(QLatin1String("the gateway got no answer"))) << read.err.toStdString();

    slave.inject(Fault{Fault::Exception, 0x0B});
    const HostRun scan = host("scan TARGET stations --to 1 --delay 0 --passes 1");
    EXPECT_EQ(scan.out, QString());
    EXPECT_TRUE(scan.err.contains(QLatin1String("0 stations answered"))) << scan.err.toStdString();
    EXPECT_TRUE(scan.err.contains(QLatin1String("for 1 station the gateway"))) << scan.err.toStdString();
}

TEST_F(ErrorMessagesTest, LineBreaksInAnAddressStayInTheirCell)
{
    const HostRun run = runHost({"read", target(), "--raw", "IR\n1", "--format", "csv"});
    EXPECT_TRUE(run.out.contains(QLatin1String("\"IR\n1\""))) << run.out.toStdString();
}
