#include "drivers/modbus_rtu_slave_over_tcp/modbus_rtu_slave_over_tcp.h"

#include "drivers/modbus_rtu_slave_over_tcp/exchange.h"
#include "drivers/modbus_rtu_slave_over_tcp/rtu_frame.h"
#include "drivers/qt/qt_lines.h"
#include "drivers/tools/byte_order.h"
#include "drivers/tools/command_data.h"
#include "drivers/tools/timing.h"

namespace
{

// Host data of double words as registers on the wire.
QByteArray doubleWordRegisters(const QByteArray &data, bool swapWords)
{
    return swapWords ? toBigEndianULongArray(data) : toBigEndianUShortArray(data);
}

} // namespace

bool DriverModbusRtuSlaveOverTcp::writeWords(AbstractDeviceInterface *device, unsigned short offset,
                                             const QByteArray &data)
{
    return checkRegisterRange("word", offset, sizeOf(data)) &&
           writeRegistersWithFN16(device, offset, toBigEndianUShortArray(data));
}

bool DriverModbusRtuSlaveOverTcp::writeDWords(AbstractDeviceInterface *device, unsigned short offset,
                                              const QByteArray &data, bool swapWords)
{
    return checkRegisterRange("double word", offset, sizeOf(data)) &&
           writeRegistersWithFN16(device, offset, doubleWordRegisters(data, swapWords));
}

// An odd last byte is sent with a zero as the high byte of its register, which is cleared on purpose.
bool DriverModbusRtuSlaveOverTcp::writeBytes(AbstractDeviceInterface *device, unsigned short offset,
                                             const QByteArray &data)
{
    return checkRegisterRange("byte", offset, sizeOf(data)) &&
           writeRegistersWithFN16(device, offset, toBigEndianUShortArray(data));
}

bool DriverModbusRtuSlaveOverTcp::writeRegistersWithFN16(AbstractDeviceInterface *device,
                                                         unsigned short offset, const QByteArray &registers)
{
    const auto quantity = static_cast<unsigned short>(registers.size() / 2);
    return confirmed(device, ModbusRTUSlaveBuildFn16Request(stationOf(device), offset, quantity, registers));
}

bool DriverModbusRtuSlaveOverTcp::writeWordWithFN6(AbstractDeviceInterface *device, unsigned short offset,
                                                   const QByteArray &value)
{
    if (!checkRegisterRange("word", offset, sizeOf(value)))
        return false;
    return confirmed(
        device, ModbusRTUSlaveBuildWriteSingleRequest(stationOf(device), WriteSingleRegister, offset, value));
}

bool DriverModbusRtuSlaveOverTcp::writeWordsWithFN6(AbstractDeviceInterface *device, unsigned short offset,
                                                    const QByteArray &data)
{
    return checkRegisterRange("word", offset, sizeOf(data)) &&
           writeRegistersWithFN6(device, offset, toBigEndianUShortArray(data));
}

bool DriverModbusRtuSlaveOverTcp::writeDWordsWithFN6(AbstractDeviceInterface *device, unsigned short offset,
                                                     const QByteArray &data, bool swapWords)
{
    return checkRegisterRange("double word", offset, sizeOf(data)) &&
           writeRegistersWithFN6(device, offset, doubleWordRegisters(data, swapWords));
}

bool DriverModbusRtuSlaveOverTcp::writeBytesWithFN6(AbstractDeviceInterface *device, unsigned short offset,
                                                    const QByteArray &data)
{
    return checkRegisterRange("byte", offset, sizeOf(data)) &&
           writeRegistersWithFN6(device, offset, toBigEndianUShortArray(data));
}

// One request a register. The attempt has just paused, so the first register goes out at once.
bool DriverModbusRtuSlaveOverTcp::writeRegistersWithFN6(AbstractDeviceInterface *device,
                                                        unsigned short offset, const QByteArray &registers)
{
    if (!writeWordWithFN6(device, offset, registers.left(2)))
        return false;
    for (int i = 2; i < registers.size(); i += 2) {
        HRSleep(device->delayTime());
        if (!writeWordWithFN6(device, static_cast<unsigned short>(offset + i / 2), registers.mid(i, 2)))
            return false;
    }
    return true;
}

// Writers of single registers keep the limit of one request with many, so that both areas take the same
// commands.
bool DriverModbusRtuSlaveOverTcp::checkRegisterRange(const char *item, unsigned short offset, int size)
{
    const unsigned int registers = NumOfBytesToNumOfWords(static_cast<unsigned int>(size));
    if (!isInRange(offset, registers, MaxRegistersWritten))
        return refuseWrite(item, QLatin1String("HR") + oneBased(offset));
    return true;
}
