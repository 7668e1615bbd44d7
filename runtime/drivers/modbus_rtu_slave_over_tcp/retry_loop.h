#pragma once

#include "drivers/modbus_rtu_slave_over_tcp/modbus_rtu_slave_over_tcp.h"
#include "drivers/tools/timing.h"
#include "host/abstract_device_interface.h"

/// \file
/// The loop that reads and writes share.

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
