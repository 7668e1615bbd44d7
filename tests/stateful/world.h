#pragma once

#include "drivers/modbus_rtu_slave_over_tcp/modbus_rtu_slave_over_tcp.h"
#include "tests/stateful/faulty_line.h"
#include "tests/stateful/world_model.h"
#include "tests/support/sleep_recorder.h"

#include <memory>

/// The real driver on a faulty line, with a project file.
class World
{
public:
    /// Without a file, on a line that is open.
    World();
    ~World();

    World(const World &) = delete;
    World &operator=(const World &) = delete;

    DriverModel::Outcome transfer(const Transfer &command);
    /// Another object in place of the driver.
    void startDriver();

    FaultyLine line;

private:
    SleepRecorder pauses;
    std::unique_ptr<DriverModbusRtuSlaveOverTcp> driver;
};
