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
