#include "drivers/modbus_rtu_slave_over_tcp/modbus_rtu_slave_over_tcp.h"

#include "drivers/modbus_rtu_slave_over_tcp/address_text.h"
#include "drivers/modbus_rtu_slave_over_tcp/exchange.h"
#include "drivers/modbus_rtu_slave_over_tcp/retry_loop.h"
#include "drivers/tools/command_data.h"

QByteArray DriverModbusRtuSlaveOverTcp::read(AbstractDeviceInterface *device,
                                             const CommunicatorCommand &command)
{
    if (!canStart(device, command, "can't read %1 bits from %2"))
        return QByteArray();

    QByteArray area;
    unsigned short offset = 0;
    unsigned char bit = 0;
    ModbusRTUSlaveParseAddress(command.address, area, offset, bit);

    QByteArray data;
    if (!attempt(device, command, [&] { data = readItems(device, command, area, offset, bit); }))
        return QByteArray();
    if (errorFlag)
        appendCmdToReadCommError(stationOf(device), command);
    return data;
}

QByteArray DriverModbusRtuSlaveOverTcp::readItems(AbstractDeviceInterface *device,
                                                  const CommunicatorCommand &command, const QByteArray &area,
                                                  unsigned short offset, unsigned char bit)
{
    const int count = command.count;
    switch (command.dataType) {
    case BitItem:
    case SecondBitItem:
        if (isCoilArea(area) || areaStartsWith(area, "DI"))
            return readDIDOs(device, area, offset, count);
        return readIRHRbits(device, area, offset, bit, count);
    case ByteItem:
    case BlockItem:
        if (areaIs(area, "HR") || areaIs(area, "FN6HR") || areaIs(area, "IR"))
            return readBytes(device, area, offset, count);
        if (areaIs(area, "DI"))
            return readBytesFromDI(device, offset, count);
        return readBytesFromDO(device, offset, count);
    case WordItem: return readWords(device, area, offset, count);
    default: return readDWords(device, area, offset, count, hasHighWordFirst(command.address));
    }
}
