#include "tests/driverhost/interop/libmodbus_slave.h"
#include "tests/driverhost/support/doctor_process.h"
#include "tests/peers/exercise.h"
#include "tests/peers/serial_bridge.h"

#include <gtest/gtest.h>

// The driver against a slave of libmodbus, which speaks RTU on serial lines only.

namespace
{

class Libmodbus : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_FALSE(line.device().isEmpty());
        ASSERT_TRUE(slave.isConnected) << modbus_strerror(errno);
        ASSERT_TRUE(layProjectBesideProgram(exerciseTags()));
        link = std::make_unique<DriverLink>(channelTo(line.port(), 10000));
    }

    SerialBridge line;
    LibmodbusSlave slave{line.device()};
    std::unique_ptr<DriverLink> link;
};

TEST_F(Libmodbus, EveryFunctionReadsAndWrites)
{
    exerciseEveryFunction(*link);
}

TEST_F(Libmodbus, Refusals)
{
    EXPECT_TRUE(link->read(Bits, 2008, "DO1").isEmpty());
    EXPECT_EQ("exception code:0x03", link->error());
    EXPECT_EQ(std::vector<int>{exerciseInputRegister(9, 1)}, link->readWords("IR10"));
}

// libmodbus takes what comes within half a second of a request to another station for the reply of that.
TEST(LibmodbusScan, FindsASlaveThatTakesTheNextRequestForAReply)
{
    struct Case {
        const char *options;
        const char *found;
        const char *told;
    };
    for (const Case &c :
         {Case{"--passes 1 --after-silence 0 --timeout 50 --delay 0", "", "\n0 stations answered\n"},
          Case{"--after-silence 0 --timeout 50 --delay 0", "5  answers\n",
               "\nnothing answered: asking 2 stations once more, with 2000 ms for each reply"},
          Case{"--passes 1", "5  answers\n", "\n1 station answered\n"}}) {
        const SerialBridge line;
        const LibmodbusSlave slave(line.device(), 5);
        ASSERT_TRUE(slave.isConnected) << modbus_strerror(errno);
        const HostRun run =
            runHost(QStringList{"scan", QStringLiteral("rtutcp://127.0.0.1:%1").arg(line.port()), "stations",
                                "--from", "4", "--to", "5"} +
                    QString(c.options).split(' '));
        EXPECT_EQ(run.out, c.found) << c.options << '\n' << run.err.toStdString();
        EXPECT_TRUE(('\n' + run.err).contains(c.told)) << c.options << '\n' << run.err.toStdString();
    }
}

// A serial line behind a bridge: nothing is wrong with it, and the command that is suggested reads.
TEST_F(Libmodbus, IsHealthyToTheDoctor)
{
    slave.setHoldingRegister(100, 235);
    const QString target = QStringLiteral("rtutcp://127.0.0.1:%1/1").arg(line.port());
    const DoctorReport report(
        runHost({"doctor", target, "HR100=235", "--timeout", "800", "--listen", "1", "--format", "json"}));
    EXPECT_EQ(report.code, 0) << report.findings.join(' ').toStdString();
    EXPECT_EQ(runHost(report.command()).code, 0) << report.command().join(' ').toStdString();
}

// The slave is silent for others, and the list of its values counts from 0.
TEST_F(Libmodbus, IsExplainedByTheDoctor)
{
    slave.setHoldingRegister(101, 235);
    slave.setHoldingRegister(106, 4711);
    const QString target = QStringLiteral("rtutcp://127.0.0.1:%1/4").arg(line.port());
    const DoctorReport report(runHost({"doctor", target, "HR100=235", "HR105=4711", "--timeout", "800",
                                       "--listen", "1", "--format", "json"}));
    EXPECT_EQ(report.code, 8);
    EXPECT_EQ(report.findings, (QStringList{"off-by-one", "wrong-station"}));
    const HostRun read = runHost(report.command() + QStringList{"--format", "csv"});
    EXPECT_EQ(read.code, 0) << report.command().join(' ').toStdString();
    EXPECT_TRUE(read.out.contains("235") && read.out.contains("4711")) << read.out.toStdString();
}

} // namespace
