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

// Known bytes of types and orders, through the program. No master reads while they are laid there.
TEST_F(Libmodbus, ReadsAndWritesTypedValues)
{
    const std::vector<int> known{0x47F1, 0x2000, 0x2000, 0x47F1, 0xF147, 0x0020, 0x0020, 0xF147, 0x3FF8,
                                 0,      0,      0,      0x1234, 0x5678, 0x5075, 0x6D70, 0xFFFE};
    for (size_t i = 0; i < known.size(); ++i)
        slave.setHoldingRegister(1 + static_cast<int>(i), known[i]);
    const QString target = QStringLiteral("rtutcp://127.0.0.1:%1/1").arg(line.port());
    const HostRun read =
        runHost({"read", target, "HR1:f32@ABCD", "HR3:f32@CDAB", "HR5:f32@BADC", "HR7:f32@DCBA",
                 "HR9:f64@ABCDEFGH", "HR13:bcd32@ABCD", "HR15:str4", "HR17:i16", "--format", "csv"});
    EXPECT_EQ(read.code, 0) << read.err.toStdString();
    QStringList values;
    for (const QString &row : read.out.split('\n', Qt::SkipEmptyParts).mid(1))
        values += row.section(',', 4, 4);
    EXPECT_EQ(values, (QStringList{"123456", "123456", "123456", "123456", "1.5", "12345678", "Pump", "-2"}));
}

TEST_F(Libmodbus, TakesTypedValues)
{
    const QString target = QStringLiteral("rtutcp://127.0.0.1:%1/1").arg(line.port());
    const HostRun written =
        runHost({"write", target, "HR1:f32@BADC=123456", "HR3:u64@GHEFCDAB=0x0123456789ABCDEF",
                 "HR7:str3=Abc", "HR9:bcd16=1234", "--verify"});
    EXPECT_EQ(written.code, 0) << written.err.toStdString();
    const std::vector<int> expected{0xF147, 0x0020, 0xCDEF, 0x89AB, 0x4567, 0x0123, 0x4162, 0x6300, 0x1234};
    for (size_t i = 0; i < expected.size(); ++i)
        EXPECT_EQ(slave.holdingRegister(1 + static_cast<int>(i)), expected[i]) << i;
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
