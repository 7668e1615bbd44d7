#include "drivers/modbus_rtu_slave_over_tcp/modbus_rtu_slave_over_tcp.h"

#include "drivers/modbus_rtu_slave_over_tcp/exchange.h"
#include "drivers/modbus_rtu_slave_over_tcp/rtu_frame.h"
#include "drivers/tools/bit_array.h"

bool DriverModbusRtuSlaveOverTcp::writeCoils(AbstractDeviceInterface *device, unsigned short offset,
                                             const QByteArray &bits, int count)
{
    if (!checkCoilRange(offset, count))
        return false;
    const auto quantity = static_cast<unsigned short>(count);
    return confirmed(device, ModbusRTUSlaveBuildFn15Request(stationOf(device), offset, quantity, bits));
}

// One request a coil, back to back.
bool DriverModbusRtuSlaveOverTcp::writeCoilsWithFN5(AbstractDeviceInterface *device, unsigned short offset,
                                                    const QByteArray &bits, int count)
{
    if (!checkCoilRange(offset, count))
        return false;
    const QByteArray on("\xFF\x00", 2);
    const QByteArray off("\x00\x00", 2);
    for (int i = 0; i < count; ++i) {
        const QByteArray request = ModbusRTUSlaveBuildWriteSingleRequest(
            stationOf(device), WriteSingleCoil, static_cast<unsigned short>(offset + i),
            getBit(bits, i) ? on : off);
        if (!confirmed(device, request))
            return false;
    }
    return true;
}

bool DriverModbusRtuSlaveOverTcp::checkCoilRange(unsigned short offset, int count)
{
    if (!isInRange(offset, static_cast<unsigned int>(count), MaxCoilsWritten))
        return fail(
            QString::fromLatin1("can't write %1 bits to DO%2").arg(QString::number(count), oneBased(offset)));
    return true;
}
