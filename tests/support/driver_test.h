#pragma once

#include "drivers/modbus_rtu_slave_over_tcp/modbus_rtu_slave_over_tcp.h"
#include "support/frames.h"
#include "support/project_database.h"
#include "support/scripted_channel.h"
#include "support/sleep_recorder.h"

#include <gtest/gtest.h>

#include <string>

const char NoError[] = "no error";

CommunicatorCommand makeCommand(int dataType, const QString &address, int count);
/// The strings as a list, for tags.
QStringList stringList(std::initializer_list<const char *> texts);

/// A driver on a scripted channel of station 1. Pauses take no time.
///
/// The project has only the link of the channel, with the tags that a test's constructor gives; the database
/// is there until the driver has loaded it, with the first command.
class DriverTest : public testing::Test
{
protected:
    explicit DriverTest(const QStringList &tags = QStringList());

    QByteArray read(int dataType, const char *address, int count);
    bool write(int dataType, const char *address, int count, const QByteArray &data);

    /// The error text, NoError when there is none.
    std::string error();

    SleepRecorder pauses;
    ScriptedChannel channel;
    DriverModbusRtuSlaveOverTcp driver;
};
