#pragma once

#include "drivers/tools/command_data.h"
#include "host/communicator_command.h"

namespace kit
{

/// A command as a host makes it; \a dataType is an ItemKind, or a number that none has.
inline CommunicatorCommand makeCommand(int dataType, const QString &address, int count)
{
    CommunicatorCommand command;
    command.dataType = dataType;
    command.count = count;
    command.address = address;
    return command;
}

} // namespace kit
