#pragma once

#include "drivers/device_setting.h"
#include "drivers/modbus_rtu_slave_over_tcp/memory_check.h"
#include "drivers/modbus_rtu_slave_over_tcp/modbus_rtu_slave_over_tcp.h"
#include "drivers/tools/timing.h"
#include "host/abstract_device_interface.h"

/// \file
/// The loop that reads and writes share.

/// What the area and the error texts of a command take at most for each character of its address.
const qint64 BytesForCharacter = 20;

/// Whether the project is read, with the first command, and the address is not so many megabytes long that
/// there is no memory to repeat it. The \a refusal of such an address is filled with the count and its
/// beginning.
///
/// Inline, since every command comes through here.
inline bool DriverModbusRtuSlaveOverTcp::canStart(AbstractDeviceInterface *device,
                                                  const CommunicatorCommand &command, const char *refusal)
{
    if (!dbLoaded && !readDB(device->deviceSetting()->deviceString))
        return false;
    if (!hasMemoryFor(BytesForCharacter * command.address.size()))
        return refuseLongAddress(command, refusal);
    return true;
}

/// Calls \a transfer, and calls it again while it leaves an error and retries are left. False when the
/// command ended before a transfer: a channel that does not open and a kind that is not supported are not
/// tried again.
template <typename Transfer>
bool DriverModbusRtuSlaveOverTcp::attempt(AbstractDeviceInterface *device, const CommunicatorCommand &command,
                                          Transfer transfer)
{
    int retries = 0;
    do {
        HRSleep(device->delayTime());
        clearError();
        if (!canTransfer(device, command))
            return false;
        transfer();
    } while (errorFlag && retries++ < device->retryCount());
    return true;
}
