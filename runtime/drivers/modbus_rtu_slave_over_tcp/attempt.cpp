#include "drivers/modbus_rtu_slave_over_tcp/modbus_rtu_slave_over_tcp.h"

#include "drivers/device_setting.h"
#include "drivers/tools/command_data.h"
#include "drivers/tools/timing.h"
#include "host/abstract_device_interface.h"

namespace
{

bool isSupported(int dataType)
{
    return dataType >= BitItem && dataType <= SecondBitItem && dataType != EightByteItem;
}

} // namespace

bool DriverModbusRtuSlaveOverTcp::loadProjectOnce(AbstractDeviceInterface *device)
{
    return dbLoaded || readDB(device->deviceSetting()->deviceString);
}

// Pauses, clears the error, makes sure that the channel is open. False ends the command: a channel that does
// not open and a kind that is not supported are not tried again.
bool DriverModbusRtuSlaveOverTcp::beginAttempt(AbstractDeviceInterface *device,
                                               const CommunicatorCommand &command)
{
    HRSleep(device->delayTime());
    clearError();
    if (!isConnected(device) && !device->open())
        return fail(device->errorString());
    if (!isSupported(command.dataType))
        return fail(QLatin1String("unsupported data type: ") + command.address);
    return true;
}

bool DriverModbusRtuSlaveOverTcp::mayRetry(AbstractDeviceInterface *device, int attempt)
{
    return errorFlag && attempt < device->retryCount();
}
