#include "drivers/modbus_rtu_slave_over_tcp/modbus_rtu_slave_over_tcp.h"

// What a host finds in the file of the plug-in.

DRIVER_EXPORT_PLUGIN(modbus_rtu_slave_over_tcp, DriverModbusRtuSlaveOverTcp)

extern "C" Q_DECL_EXPORT DriverInterface *CreateDriver()
{
    return new DriverModbusRtuSlaveOverTcp;
}
