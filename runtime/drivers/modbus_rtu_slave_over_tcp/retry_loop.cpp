#include "drivers/modbus_rtu_slave_over_tcp/retry_loop.h"

#include "drivers/device_setting.h"
#include "drivers/tools/command_data.h"

namespace
{

const int ShownOfLongAddress = 100;

bool isSupported(int dataType)
{
    return dataType >= BitItem && dataType <= SecondBitItem && dataType != EightByteItem;
}

} // namespace

bool DriverModbusRtuSlaveOverTcp::refuseLongAddress(const CommunicatorCommand &command, const char *refusal)
{
    return fail(QString::fromLatin1(refusal).arg(QString::number(command.count),
                                                 command.address.left(ShownOfLongAddress)));
}

bool DriverModbusRtuSlaveOverTcp::canTransfer(AbstractDeviceInterface *device,
                                              const CommunicatorCommand &command)
{
    if (!isConnected(device) && !device->open())
        return fail(device->errorString());
    if (!isSupported(command.dataType))
        return fail(QLatin1String("unsupported data type: ") + command.address);
    return true;
}
