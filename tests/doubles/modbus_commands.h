#pragma once

#include "tests/doubles/model_slave.h"

#include <QStringList>

/// A command that the driver can do.
struct ModbusCommand {
    const char *name; ///< of the reader or writer that serves it
    bool isWrite;
    int dataType;
    const char *address;
    int count;
    const char *data; ///< of a write, in hexadecimal digits
    /// What a failure's text ends with, on station 1.
    const char *details;
};

/// One command for each reader and writer of the driver.
const std::vector<ModbusCommand> &modbusCommands();
/// The tags that the commands on used bits need.
QStringList modbusCommandTags();
/// A slave of station 1 whose first 100 items of every area have values.
ModelSlave filledSlave();
