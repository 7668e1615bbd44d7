#include "desk/items/portions.h"

#include <algorithm>

namespace
{

// The driver would ask for 2008 bits; slaves need not answer more than the protocol allows.
int maxInOneRequest(const Items &items)
{
    if (items.address.isBitArea())
        return isByteKind(items.kind) ? modbus::MaxReadBits / modbus::ByteBits : modbus::MaxReadBits;
    // Whole registers a portion, so that each begins at the same bit.
    if (isBitKind(items.kind))
        return (modbus::MaxReadRegisters - 1) * modbus::RegisterBits;
    if (isByteKind(items.kind))
        return modbus::MaxReadRegisters * modbus::RegisterBytes;
    return items.kind == DoubleWordItem ? modbus::MaxReadRegisters / 2 : modbus::MaxReadRegisters;
}

// Whole values a portion.
int maxInOneRequest(const TypedItems &typed)
{
    const int max = maxInOneRequest(typed.items);
    if (typed.items.kind != WordItem)
        return max;
    return typed.type.isByte() ? max * modbus::RegisterBytes : max / typed.type.registers();
}

} // namespace

std::vector<Items> portionsOf(const Items &items)
{
    if (items.isRaw())
        return {items};
    std::vector<Items> portions;
    const int max = maxInOneRequest(items);
    for (int first = 0; first < items.count; first += max) {
        Items portion = items;
        portion.address = items.addressOf(first);
        portion.count = std::min(max, items.count - first);
        portions.push_back(portion);
    }
    return portions;
}

std::vector<TypedItems> portionsOf(const TypedItems &typed)
{
    std::vector<TypedItems> portions;
    const int max = maxInOneRequest(typed);
    for (int first = 0; first < typed.count; first += max) {
        TypedItems portion = typed;
        portion.address = typed.addressOf(first);
        portion.count = std::min(max, typed.count - first);
        portion.items = itemsOf(portion);
        portions.push_back(portion);
    }
    return portions;
}
