#include "drivers/modbus_rtu_slave_over_tcp/modbus_rtu_slave_over_tcp.h"

#include "drivers/modbus_rtu_slave_over_tcp/address_text.h"
#include "drivers/modbus_rtu_slave_over_tcp/exchange.h"
#include "drivers/modbus_rtu_slave_over_tcp/retry_loop.h"
#include "drivers/tools/command_data.h"

namespace
{

// The most bytes that any writer accepts: bits for all the registers of one read. Writers of whole registers
// refuse that many, and writers of bits look at the count.
const int MaxDataSize = 2 * MaxRegistersRead;

// The data at the command's length, cut or padded with zeros. A length that no writer accepts, a negative one
// included, is cut to the maximum, for the writer to refuse.
QByteArray sizedData(const CommunicatorCommand &command, const QByteArray &data)
{
    const auto size = static_cast<unsigned int>(GetSafeDataLen(command));
    return data.leftJustified(static_cast<int>(qMin<unsigned int>(size, MaxDataSize)), '\0', true);
}

} // namespace

bool DriverModbusRtuSlaveOverTcp::write(AbstractDeviceInterface *device, const CommunicatorCommand &command,
                                        const QByteArray &data)
{
    if (!canStart(device, command, "can't write %1 bits to %2"))
        return false;

    QByteArray area;
    unsigned short offset = 0;
    unsigned char bit = 0;
    ModbusRTUSlaveParseAddress(command.address, area, offset, bit);

    const QByteArray sized = sizedData(command, data);
    bool isWritten = false;
    if (!attempt(device, command, [&] { isWritten = writeItems(device, command, sized, area, offset, bit); }))
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
