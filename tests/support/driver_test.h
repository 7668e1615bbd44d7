#pragma once

#include "drivers/modbus_rtu_slave_over_tcp/modbus_rtu_slave_over_tcp.h"
#include "tests/doubles/command.h"
#include "tests/doubles/frames.h"
#include "tests/doubles/project_database.h"
#include "tests/doubles/scripted_channel.h"
#include "tests/support/gtest_qt.h"
#include "tests/support/sleep_recorder.h"

#include <limits>
#include <string>

const char NoError[] = "no error";

/// The one kind of item that the driver does not serve, and numbers that are no kind.
const int UnsupportedKinds[] = {EightByteItem,
                                SecondBitItem + 1,
                                SecondBitItem + 2,
                                100,
                                -1,
                                -4,
                                std::numeric_limits<int>::max(),
                                std::numeric_limits<int>::min()};

/// The strings as a list, for tags.
QStringList stringList(std::initializer_list<const char *> texts);
/// The trace of a channel after \a times attempts, each of which has this trace.
std::string repeated(const std::string &attempt, int times);
/// The frame of each text, as framed() makes it.
QList<QByteArray> frames(std::initializer_list<const char *> hexTexts);
/// \a size bytes, each different from its neighbours, over the whole range of values.
QByteArray patternBytes(int size);

/// The error text of the last command, NoError when there is none.
std::string errorOf(DriverInterface &driver);

/// A driver on a scripted channel of station 1. Pauses take no time.
///
/// The project has only the link of the channel, with these tags and the default station 1; the database is
/// gone once the driver has loaded it.
struct LoadedDriver {
    explicit LoadedDriver(const QStringList &tags = QStringList());

    QByteArray read(int dataType, const char *address, int count);
    bool write(int dataType, const char *address, int count, const QByteArray &data);

    std::string error() { return errorOf(driver); }
    /// Whether nothing was sent since the calls were last forgotten.
    bool isSilent() const { return channel.count(ScriptedChannel::WriteData) == 0; }

    SleepRecorder pauses;
    ScriptedChannel channel;
    DriverModbusRtuSlaveOverTcp driver;
};

/// A test with a loaded driver whose project uses no bit addresses.
class DriverTest : public testing::Test, protected LoadedDriver
{
};
