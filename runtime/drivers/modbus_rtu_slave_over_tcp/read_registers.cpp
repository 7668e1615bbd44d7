#include "drivers/modbus_rtu_slave_over_tcp/modbus_rtu_slave_over_tcp.h"

#include "drivers/modbus_rtu_slave_over_tcp/address_text.h"
#include "drivers/modbus_rtu_slave_over_tcp/exchange.h"
#include "drivers/modbus_rtu_slave_over_tcp/rtu_frame.h"
#include "drivers/tools/bit_array.h"
#include "drivers/tools/byte_order.h"
#include "drivers/tools/command_data.h"

QByteArray DriverModbusRtuSlaveOverTcp::readWords(AbstractDeviceInterface *device, const QByteArray &area,
                                                  unsigned short offset, int count)
{
    Reply reply;
    if (!readRegisters(device, "word", area, offset, static_cast<unsigned int>(count), reply))
        return QByteArray();
    return fromBigEndianUShortArray(reply + ReadDataStart, count);
}

QByteArray DriverModbusRtuSlaveOverTcp::readDWords(AbstractDeviceInterface *device, const QByteArray &area,
                                                   unsigned short offset, int count, bool swapWords)
{
    Reply reply;
    if (!readRegisters(device, "double word", area, offset, quint64(2) * static_cast<unsigned int>(count),
                       reply))
        return QByteArray();
    return swapWords ? fromBigEndianULongArray(reply + ReadDataStart, count)
                     : fromBigEndianUShortArray(reply + ReadDataStart, 2 * count);
}

QByteArray DriverModbusRtuSlaveOverTcp::readBytes(AbstractDeviceInterface *device, const QByteArray &area,
                                                  unsigned short offset, int count)
{
    const unsigned int registers = NumOfBytesToNumOfWords(static_cast<unsigned int>(count));
    Reply reply;
    if (!readRegisters(device, "byte", area, offset, registers, reply))
        return QByteArray();
    QByteArray bytes = fromBigEndianUShortArray(reply + ReadDataStart, static_cast<int>(registers));
    bytes.resize(count);
    return bytes;
}

QByteArray DriverModbusRtuSlaveOverTcp::readIRHRbits(AbstractDeviceInterface *device, const QByteArray &area,
                                                     unsigned short offset, unsigned char bit, int count)
{
    QByteArray bits = readWords(device, area, offset, registersOfBits(bit, count));
    if (bits.isEmpty())
        return bits;
    RightShiftNBits(bits, bit);
    FitBitArray(bits, count);
    clearUnnecessaryBits(bits, count);
    return bits;
}

// Reads registers into the reply; false, with "can't read any <item> from ..." when they are out of range.
bool DriverModbusRtuSlaveOverTcp::readRegisters(AbstractDeviceInterface *device, const char *item,
                                                const QByteArray &area, unsigned short offset,
                                                quint64 registers, Reply &reply)
{
    if (!isInRange(offset, registers, MaxRegistersRead))
        return fail(QString::fromLatin1("can't read any %1 from %2%3")
                        .arg(QLatin1String(item), QString::fromLatin1(area), oneBased(offset)));
    const ModbusFunction function = isHoldingRegisterArea(area) ? ReadHoldingRegisters : ReadInputRegisters;
    const auto quantity = static_cast<unsigned short>(registers);
    return exchange(device,
                    ModbusRTUSlaveBuildReadDevicesRequest(stationOf(device), function, offset, quantity),
                    2 * quantity, reply);
}
