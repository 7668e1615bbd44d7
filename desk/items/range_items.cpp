#include "desk/items/range_items.h"

#include "drivers/tools/bit_array.h"

namespace
{

QByteArray bitsOf(const QByteArray &data, int first, int count)
{
    const int byte = first / modbus::ByteBits;
    QByteArray bits = data.mid(byte, modbus::bytesOfBits(first + count) - byte);
    RightShiftNBits(bits, first % modbus::ByteBits);
    FitBitArray(bits, count);
    clearUnnecessaryBits(bits, count);
    return bits;
}

} // namespace

Items itemsOf(const AreaRange &range)
{
    Items items;
    items.address.station = range.station;
    items.address.areaName = areaName(range.area);
    items.address.area = range.area;
    items.address.number = range.first + 1;
    items.kind = isBitArea(range.area) ? BitItem : WordItem;
    items.count = range.last - range.first + 1;
    return items;
}

QByteArray partOf(const QByteArray &data, const AreaRange &range, const AreaRange &part)
{
    const int first = part.first - range.first;
    const int count = part.last - part.first + 1;
    return isBitArea(range.area) ? bitsOf(data, first, count)
                                 : data.mid(first * modbus::RegisterBytes, count * modbus::RegisterBytes);
}
