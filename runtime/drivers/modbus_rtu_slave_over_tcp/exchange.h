#pragma once

#include "drivers/tools/command_data.h"
#include "host/abstract_device_interface.h"

/// \file
/// What every request of the driver shares.

/// The most registers and bits in one read. The protocol ends at 2000 bits ("MODBUS Application Protocol
/// V1.1b3", 6.1); 2008 still fit the reply buffer, and there are slaves that serve them.
const int MaxRegistersRead = 125;
const int MaxBitsRead = 2008;
/// The most registers and coils in one write. The protocol ends at 1968 coils ("MODBUS Application Protocol
/// V1.1b3", 6.11); 1976 are 247 bytes of data, which slaves without that limit take.
const unsigned int MaxRegistersWritten = 123;
const unsigned int MaxCoilsWritten = 1976;

/// One past the last address of an area.
const unsigned int AddressSpace = 65536;

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
