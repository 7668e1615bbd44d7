#pragma once

#include "drivers/modbus_rtu_slave_over_tcp/limits.h"
#include "drivers/tools/command_data.h"
#include "host/abstract_device_interface.h"

/// \file
/// What every request of the driver shares.

/// Where the data of a read's reply begins: after station, function and byte count.
const int ReadDataStart = 3;

/// The station of a request: the low 8 bits of the channel's, asked for anew each time.
inline unsigned char stationOf(AbstractDeviceInterface *device)
{
    return static_cast<unsigned char>(device->stationId() & 0xFF);
}

/// Whether \a count items from \a offset on stay within \a max and the area.
inline bool isInRange(unsigned short offset, quint64 count, unsigned int max)
{
    return count <= max && offset + count <= AddressSpace;
}

/// The number of an address as people write it, in error texts.
inline QString oneBased(unsigned short offset)
{
    return QString::number(offset + 1);
}

/// How many registers hold \a count bits from bit \a bit of the first on. A negative count stays one, to be
/// refused.
inline int registersOfBits(unsigned char bit, int count)
{
    return count < 0 ? count : static_cast<int>(NumOfBitsToNumOfWords(bit, static_cast<unsigned int>(count)));
}
