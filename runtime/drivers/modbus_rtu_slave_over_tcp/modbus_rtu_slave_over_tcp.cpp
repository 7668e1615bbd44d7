#include "drivers/modbus_rtu_slave_over_tcp/modbus_rtu_slave_over_tcp.h"

#include "drivers/device_setting.h"
#include "drivers/driver_setting.h"
#include "drivers/modbus_rtu_slave_over_tcp/exchange.h"

namespace
{

const QString Version = QLatin1String("1.0.0");

} // namespace

DriverModbusRtuSlaveOverTcp::DriverModbusRtuSlaveOverTcp()
    : errorFlag(false),
      debugMode(false),
      dbConnected(false),
      dbLoaded(false),
      connectionName(QString::number(nextRandomNumber()))
{
}

int DriverModbusRtuSlaveOverTcp::totalSize()
{
    return 0x44000;
}

bool DriverModbusRtuSlaveOverTcp::initialize(AbstractDeviceInterface * /*device*/)
{
    return true;
}

bool DriverModbusRtuSlaveOverTcp::validation(const QString & /*address*/)
{
    return false;
}

QString DriverModbusRtuSlaveOverTcp::name()
{
    return QLatin1String("Modbus RTU Slave over TCP");
}

QString DriverModbusRtuSlaveOverTcp::vender()
{
    return QLatin1String("Modbus");
}

QString DriverModbusRtuSlaveOverTcp::getVersionNumber()
{
    return Version;
}

DeviceSetting *DriverModbusRtuSlaveOverTcp::getDefaultSerialDeviceSetting()
{
    return new DeviceSetting(DefaultDeviceType, QLatin1String("COM2"), 9600, 8, 0, 2);
}

DriverSetting *DriverModbusRtuSlaveOverTcp::getDefaultDriverSetting()
{
    return new DriverSetting(3000, 3, 1, 0);
}

QString DriverModbusRtuSlaveOverTcp::getStringBasedDefaultDriverSetting()
{
    return QLatin1String("23");
}

int DriverModbusRtuSlaveOverTcp::supportedCommunicationFlags()
{
    return 0x100;
}

void DriverModbusRtuSlaveOverTcp::setDebugMode(bool on)
{
    debugMode = on;
}

int DriverModbusRtuSlaveOverTcp::getBlockAccessSize()
{
    return MaxRegistersRead;
}

int DriverModbusRtuSlaveOverTcp::getBitBlockAccessSize()
{
    return MaxBitsRead;
}

QObject *DriverModbusRtuSlaveOverTcp::getThisObject()
{
    return this;
}

bool DriverModbusRtuSlaveOverTcp::isConnected(AbstractDeviceInterface *device)
{
    return device->isConnected();
}
