#include "tests/driverhost/interop/pymodbus_slave.h"
#include "tests/driverhost/support/doctor_process.h"
#include "tests/peers/exercise.h"

#include <gtest/gtest.h>

// driverhost doctor against servers that nobody here wrote.

namespace
{

DoctorReport examine(quint16 port, int station, const QStringList &more = {})
{
    const QString target = QStringLiteral("rtutcp://127.0.0.1:%1/%2").arg(port).arg(station);
    return DoctorReport(runHost(
        QStringList{"doctor", target, "--format", "json", "--timeout", "800", "--listen", "1"} + more));
}

TEST(DoctorPymodbus, IsHealthyWithRtuFraming)
{
    const PymodbusSlave slave;
    ASSERT_NE(0, slave.port());
    const DoctorReport report =
        examine(slave.port(), 1, {QStringLiteral("IR10=%1").arg(exerciseInputRegister(9, 1))});
    EXPECT_EQ(report.code, 0) << report.findings.join(' ').toStdString();
    EXPECT_EQ(runHost(report.command()).code, 0) << report.command().join(' ').toStdString();
}

TEST(DoctorPymodbus, HasAnotherStation)
{
    const PymodbusSlave slave;
    ASSERT_NE(0, slave.port());
    const DoctorReport report = examine(slave.port(), 7);
    EXPECT_EQ(report.code, 8);
    EXPECT_EQ(report.findings, QStringList{"wrong-station"});
    EXPECT_EQ(runHost(report.command()).code, 0) << report.command().join(' ').toStdString();
}

TEST(DoctorPymodbus, IsToldFromOneThatSpeaksModbusTcp)
{
    const PymodbusSlave slave(QStringLiteral("socket"));
    ASSERT_NE(0, slave.port());
    const DoctorReport report = examine(slave.port(), 1);
    EXPECT_EQ(report.code, 8);
    EXPECT_EQ(report.findings, QStringList{"modbus-tcp"});
    EXPECT_FALSE(report.worksNow());
}

} // namespace
