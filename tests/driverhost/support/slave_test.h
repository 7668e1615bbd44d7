#pragma once

#include "desk/slave/slave_thread.h"
#include "tests/driverhost/support/host_program.h"

#include <gtest/gtest.h>

/// Stations 1 and 5, without HR11..20, HR50 and DO3.
inline SlaveOptions withHoles()
{
    SlaveOptions options;
    options.stations = {1, 5};
    options.memory.addHole({0, Area::HoldingRegisters, 10, 19});
    options.memory.addHole({0, Area::HoldingRegisters, 49, 49});
    options.memory.addHole({0, Area::Coils, 2, 2});
    return options;
}

/// A test with a slave on the loopback.
class SlaveTest : public testing::Test
{
protected:
    explicit SlaveTest(const SlaveOptions &options = SlaveOptions()) : slave(options) {}

    void SetUp() override { ASSERT_TRUE(slave.start()) << slave.errorString().toStdString(); }

    QString target(int station = 1) const
    {
        return QStringLiteral("rtutcp://127.0.0.1:%1/%2").arg(slave.port()).arg(station);
    }
    /// Runs driverhost; "TARGET" among the arguments stands for the slave.
    HostRun host(const QString &arguments)
    {
        QStringList words = arguments.split(QLatin1Char(' '), Qt::SkipEmptyParts);
        words.replaceInStrings(QStringLiteral("TARGET"), target());
        return runHost(words);
    }
    quint16 holdingRegister(int offset)
    {
        return slave.value(1, Area::HoldingRegisters, static_cast<quint16>(offset));
    }
    void setHoldingRegister(int offset, quint16 value)
    {
        slave.setValue(1, Area::HoldingRegisters, static_cast<quint16>(offset), value);
    }

    SlaveThread slave;
};
