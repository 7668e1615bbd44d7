#include "drivers/modbus_rtu_slave_over_tcp/modbus_rtu_slave_over_tcp.h"

#include "drivers/modbus_rtu_slave_over_tcp/exchange.h"
#include "drivers/tools/bit_array.h"
#include "drivers/tools/byte_order.h"

// Few slaves know function 22 (mask write register), so both writers read the registers, change the bits and
// write all of them back. What another master changes in between is lost.

bool DriverModbusRtuSlaveOverTcp::writeHRbit(AbstractDeviceInterface *device, unsigned short offset,
                                             unsigned char bitIndex, const QByteArray &bits, int count)
{
    const QByteArray image = registersWithBits(device, offset, bitIndex, bits, count);
    return !image.isEmpty() && writeWords(device, offset, image);
}

// Sends without pauses, as coils are sent one by one.
bool DriverModbusRtuSlaveOverTcp::writeHRbitWithFN6(AbstractDeviceInterface *device, unsigned short offset,
                                                    unsigned char bitIndex, const QByteArray &bits, int count)
{
    const QByteArray image = registersWithBits(device, offset, bitIndex, bits, count);
    const QByteArray registers = toBigEndianUShortArray(image);
    for (int i = 0; i < registers.size(); i += 2) {
        if (!writeWordWithFN6(device, static_cast<unsigned short>(offset + i / 2), registers.mid(i, 2)))
            return false;
    }
    return !image.isEmpty();
}

// The registers that hold the bits, as the host lays them out (low byte first), with the bits changed; empty
// when they could not be read.
QByteArray DriverModbusRtuSlaveOverTcp::registersWithBits(AbstractDeviceInterface *device,
                                                          unsigned short offset, unsigned char bitIndex,
                                                          const QByteArray &bits, int count)
{
    QByteArray image = readWords(device, "HR", offset, registersOfBits(bitIndex, count));
    if (!image.isEmpty())
        for (int i = 0; i < count; ++i)
            setBit(image, bitIndex + i, getBit(bits, i));
    return image;
}
