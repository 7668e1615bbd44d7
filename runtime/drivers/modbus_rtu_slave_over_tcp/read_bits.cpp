#include "drivers/modbus_rtu_slave_over_tcp/modbus_rtu_slave_over_tcp.h"

#include "drivers/modbus_rtu_slave_over_tcp/address_text.h"
#include "drivers/modbus_rtu_slave_over_tcp/exchange.h"
#include "drivers/modbus_rtu_slave_over_tcp/rtu_frame.h"
#include "drivers/tools/bit_array.h"
#include "drivers/tools/command_data.h"
#include "drivers/tools/timing.h"

#include <algorithm>
#include <limits>

namespace
{

// The used address at which a walk upwards from `offset` first arrives, round the end of the area if it must.
size_t firstUsedFrom(const UShortVector &used, unsigned short offset)
{
    const UShortVector::const_iterator found = std::lower_bound(used.begin(), used.end(), offset);
    return found == used.end() ? 0 : static_cast<size_t>(found - used.begin());
}

// How many used addresses from index `first` on follow each other without a gap, `limit` at most.
int runLengthAt(const UShortVector &used, size_t first, int limit)
{
    size_t end = first + 1;
    while (end < used.size() && used[end] == used[end - 1] + 1)
        ++end;
    return qMin(static_cast<int>(end - first), limit);
}

} // namespace

QByteArray DriverModbusRtuSlaveOverTcp::readDIDOs(AbstractDeviceInterface *device, const QByteArray &area,
                                                  unsigned short offset, int count)
{
    if (!isInRange(offset, static_cast<unsigned int>(count), LargestBitRead))
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
    return readUsedBits(device, "DI", &ModbusBitSet::DISet, offset, count);
}

QByteArray DriverModbusRtuSlaveOverTcp::readBytesFromDO(AbstractDeviceInterface *device,
                                                        unsigned short offset, int count)
{
    return readUsedBits(device, "DO", &ModbusBitSet::DOSet, offset, count);
}

// Many slaves answer a range that touches a bit they do not have with an exception, so only bits that the
// project uses are asked for, one request for each unbroken run of them; the others stay 0.
QByteArray DriverModbusRtuSlaveOverTcp::readUsedBits(AbstractDeviceInterface *device, const QByteArray &area,
                                                     const UShortVector &(ModbusBitSet::*usedAddresses)()
                                                         const,
                                                     unsigned short offset, int count)
{
    const QMap<unsigned char, ModbusBitSet>::const_iterator station =
        validBitAddressesMap.constFind(stationOf(device));
    if (station == validBitAddressesMap.constEnd()) {
        setCommError(QString::fromLatin1("invalid address %1-").arg(device->stationId()) +
                     QString::fromLatin1(area));
        return QByteArray();
    }
    const qint64 bitCount = qint64(8) * count;
    if (bitCount > std::numeric_limits<int>::max())
        return refuseBitRead(bitCount, area, offset);
    if (bitCount < 1)
        return QByteArray();

    const UShortVector &used = (station.value().*usedAddresses)();
    QByteArray result(count, '\0');
    size_t next = firstUsedFrom(used, offset);
    if (next == used.size())
        return result;
    // Addresses only rise from the first one on, so the walk passes the end of the area at most before it.
    const int start = static_cast<unsigned short>(used[next] - offset) - used[next];
    for (bool isFirst = true; next < used.size() && start + used[next] < bitCount; isFirst = false) {
        const int position = start + used[next];
        const int length = runLengthAt(used, next, static_cast<int>(bitCount) - position);
        if (!isFirst)
            HRSleep(device->delayTime());
        const QByteArray bits = readDIDOs(device, area, used[next], length);
        if (bits.isEmpty())
            return QByteArray();
        CopyBits(result, bits, position, length);
        next += static_cast<size_t>(length);
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
