#include "drivers/modbus_rtu_slave_over_tcp/modbus_rtu_slave_over_tcp.h"

#include "drivers/modbus_rtu_slave_over_tcp/address_text.h"
#include "drivers/modbus_rtu_slave_over_tcp/exchange.h"
#include "drivers/modbus_rtu_slave_over_tcp/memory_check.h"
#include "drivers/modbus_rtu_slave_over_tcp/project/bit_runs.h"
#include "drivers/modbus_rtu_slave_over_tcp/rtu_frame.h"
#include "drivers/tools/bit_array.h"
#include "drivers/tools/command_data.h"
#include "drivers/tools/timing.h"

#include <limits>

QByteArray DriverModbusRtuSlaveOverTcp::readDIDOs(AbstractDeviceInterface *device, const QByteArray &area,
                                                  unsigned short offset, int count)
{
    if (!isInRange(offset, static_cast<unsigned int>(count), MaxBitsRead))
        return refuseBitRead(count, area, offset);

    const ModbusFunction function = isCoilArea(area) ? ReadCoils : ReadDiscreteInputs;
    const auto quantity = static_cast<unsigned short>(count);
    const int size = static_cast<int>(NumOfBitsToNumOfBytes(0, quantity));
    Reply reply;
    if (!exchange(device,
                  ModbusRTUSlaveBuildReadDevicesRequest(stationOf(device), function, offset, quantity), size,
                  reply))
        return QByteArray();

    QByteArray bits(reinterpret_cast<const char *>(reply) + ReadDataStart, size);
    clearUnnecessaryBits(bits, count);
    return bits;
}

QByteArray DriverModbusRtuSlaveOverTcp::readBytesFromDI(AbstractDeviceInterface *device,
                                                        unsigned short offset, int count)
{
    const ModbusBitSet *used = usedBitsOf(device, "DI");
    return used != nullptr ? readUsedBits(device, "DI", used->DISet(), offset, count) : QByteArray();
}

QByteArray DriverModbusRtuSlaveOverTcp::readBytesFromDO(AbstractDeviceInterface *device,
                                                        unsigned short offset, int count)
{
    const ModbusBitSet *used = usedBitsOf(device, "DO");
    return used != nullptr ? readUsedBits(device, "DO", used->DOSet(), offset, count) : QByteArray();
}

// What the project uses of the station; null, after storing the reason, when that is nothing.
const ModbusBitSet *DriverModbusRtuSlaveOverTcp::usedBitsOf(AbstractDeviceInterface *device, const char *area)
{
    const QMap<unsigned char, ModbusBitSet>::const_iterator station =
        validBitAddressesMap.constFind(stationOf(device));
    if (station != validBitAddressesMap.constEnd())
        return &station.value();
    setCommError(QString::fromLatin1("invalid address %1-").arg(device->stationId()) + QLatin1String(area));
    return nullptr;
}

// Many slaves answer a range that touches a bit they do not have with an exception, so only bits that the
// project uses are asked for, one request for each unbroken run of them; the others stay 0.
QByteArray DriverModbusRtuSlaveOverTcp::readUsedBits(AbstractDeviceInterface *device, const QByteArray &area,
                                                     const UShortVector &used, unsigned short offset,
                                                     int count)
{
    const qint64 bitCount = qint64(8) * count;
    if (bitCount > std::numeric_limits<int>::max() || !hasMemoryFor(count))
        return refuseBitRead(bitCount, area, offset);
    if (count < 1)
        return QByteArray();

    QByteArray result(count, '\0');
    const std::vector<BitRun> runs = bitRuns(used, offset, static_cast<int>(bitCount));
    for (auto run = runs.begin(); run != runs.end(); ++run) {
        if (run != runs.begin())
            HRSleep(device->delayTime());
        const QByteArray bits = readDIDOs(device, area, run->address, run->length);
        if (bits.isEmpty())
            return QByteArray();
        CopyBits(result, bits, run->position, run->length);
    }
    return result;
}

QByteArray DriverModbusRtuSlaveOverTcp::refuseBitRead(qint64 count, const QByteArray &area,
                                                      unsigned short offset)
{
    setCommError(QString::fromLatin1("can't read %1 bits from %2%3")
                     .arg(QString::number(count), QString::fromLatin1(area), oneBased(offset)));
    return QByteArray();
}
