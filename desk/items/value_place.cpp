#include "desk/items/value_place.h"

#include "drivers/tools/bit_array.h"

#include <algorithm>

namespace
{

// Values that are no whole registers.
bool isOfBits(const ValueType &type)
{
    return type.isBit() || type.isByte();
}

QByteArray bitsAt(const QByteArray &data, int position, int count)
{
    quint8 bits = 0;
    for (int i = 0; i < count; ++i)
        bits = static_cast<quint8>(bits | (getBit(data, position + i) ? 1 << i : 0));
    return QByteArray(1, static_cast<char>(bits));
}

// What the driver has made of the registers: of a double word its low word is always the first.
ByteOrder orderInData(const TypedItems &typed)
{
    return typed.items.kind == DoubleWordItem ? ByteOrder() : typed.order;
}

// From the first bit of the items' first register, or of their first bit.
int positionOf(const TypedItems &typed, int index)
{
    if (typed.type.isBit())
        return index;
    if (!typed.type.isByte())
        return index * typed.type.registers() * modbus::RegisterBits;
    // In registers the low bytes come first, in the order of the values or not.
    const bool isSwapped = !typed.address.isBitArea() && !typed.order.isLowByteFirst;
    return (isSwapped ? index ^ 1 : index) * modbus::ByteBits;
}

} // namespace

QByteArray valueAt(const QByteArray &data, const ValuePlace &place)
{
    if (isOfBits(place.type))
        return bitsAt(data, place.position, place.type.bits);
    const int bytes = place.type.registers() * modbus::RegisterBytes;
    const std::vector<quint16> registers = registersIn(data.mid(place.position / modbus::ByteBits, bytes));
    return valuesIn(registers, place.type, place.order, 1).at(0);
}

std::vector<ValuePlace> placesOf(const TypedItems &typed)
{
    std::vector<ValuePlace> places;
    places.reserve(static_cast<size_t>(typed.count));
    for (int i = 0; i < typed.count; ++i)
        places.push_back({typed.type, orderInData(typed), positionOf(typed, i)});
    return places;
}

std::vector<QByteArray> valuesIn(const QByteArray &data, const TypedItems &typed)
{
    std::vector<QByteArray> values;
    for (const ValuePlace &place : placesOf(typed))
        values.push_back(valueAt(data, place));
    return values;
}

AreaRange rangeOf(const TypedItems &typed, int index)
{
    const Address address = typed.addressOf(index);
    const bool isByteOfBits = address.isBitArea() && typed.type.isByte();
    const int count = isByteOfBits ? modbus::ByteBits : address.isBitArea() ? 1 : typed.type.registers();
    AreaRange range;
    range.station = std::max(address.station, 0);
    range.area = address.area;
    range.first = address.wireOffset();
    range.last = range.first + count - 1;
    return range;
}

ValuePlace placeIn(const AreaRange &range, const TypedItems &typed, int index)
{
    const Address address = typed.addressOf(index);
    const int items = address.wireOffset() - range.first;
    if (address.isBitArea())
        return {typed.type, typed.order, items};
    const int within = typed.type.isBit()    ? address.bit
                       : typed.type.isByte() ? positionOf(typed, index) % modbus::RegisterBits
                                             : 0;
    return {typed.type, typed.order, items * modbus::RegisterBits + within};
}
