#include "drivers/modbus_rtu_slave_over_tcp/modbus_rtu_slave_over_tcp.h"

#include "drivers/modbus_rtu_slave_over_tcp/address_text.h"
#include "drivers/modbus_rtu_slave_over_tcp/attempt.h"
#include "drivers/modbus_rtu_slave_over_tcp/exchange.h"
#include "drivers/tools/command_data.h"

namespace
{

// No writer accepts data as long as this: 123 registers and 1976 coils end below it, 2000 bits in registers
// as well.
const int RefusedSize = 256;

// The data at the command's length, or, where its writer will refuse that length, just as long as that takes.
QByteArray sizedData(const CommunicatorCommand &command, const QByteArray &data)
{
    const int size = GetSafeDataLen(command);
    if (size == data.size())
        return data;
    return size < 0 || size > RefusedSize ? QByteArray(RefusedSize, '\0') : ToSafeData(command, data);
}

} // namespace

bool DriverModbusRtuSlaveOverTcp::write(AbstractDeviceInterface *device, const CommunicatorCommand &command,
                                        const QByteArray &data)
{
    if (!loadProjectOnce(device))
        return false;

    QByteArray area;
    unsigned short offset = 0;
    unsigned char bit = 0;
    ModbusRTUSlaveParseAddress(command.address, area, offset, bit);

    bool isWritten = false;
    if (!attempt(device, command, [&] {
            isWritten = writeItems(device, command, sizedData(command, data), area, offset, bit);
        }))
        return false;
    if (errorFlag)
        appendCmdToWriteCommError(stationOf(device), command);
    return isWritten;
}

bool DriverModbusRtuSlaveOverTcp::writeItems(AbstractDeviceInterface *device,
                                             const CommunicatorCommand &command, const QByteArray &data,
                                             const QByteArray &area, unsigned short offset, unsigned char bit)
{
    const int count = command.count;
    switch (command.dataType) {
    case BitItem:
    case SecondBitItem:
        if (areaStartsWith(area, "FN6HR"))
            return writeHRbitWithFN6(device, offset, bit, data, count);
        if (areaStartsWith(area, "FN5DO"))
            return writeCoilsWithFN5(device, offset, data, count);
        if (areaStartsWith(area, "DO"))
            return writeCoils(device, offset, data, count);
        if (areaStartsWith(area, "HR"))
            return writeHRbit(device, offset, bit, data, count);
        return refuseWrite("bit", command.address);
    case ByteItem:
    case BlockItem:
        if (areaStartsWith(area, "HR"))
            return writeBytes(device, offset, data);
        if (areaStartsWith(area, "FN6HR"))
            return writeBytesWithFN6(device, offset, data);
        return refuseWrite("byte", command.address);
    case WordItem:
        if (areaStartsWith(area, "HR"))
            return writeWords(device, offset, data);
        if (areaStartsWith(area, "FN6HR"))
            return writeWordsWithFN6(device, offset, data);
        return refuseWrite("word", command.address);
    default:
        if (areaStartsWith(area, "HR"))
            return writeDWords(device, offset, data, hasHighWordFirst(command.address));
        if (areaStartsWith(area, "FN6HR"))
            return writeDWordsWithFN6(device, offset, data, hasHighWordFirst(command.address));
        return refuseWrite("double word", command.address);
    }
}
