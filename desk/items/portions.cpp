#include "desk/items/portions.h"

#include <algorithm>

namespace
{

// What one request carries.
struct Limits {
    int registers;
    int bits;
};

// The driver would ask for 2008 bits and send 1976 coils; slaves need not take more than the protocol allows.
const Limits ReadLimits{modbus::MaxReadRegisters, modbus::MaxReadBits};
const Limits WriteLimits{modbus::MaxWriteRegisters, modbus::MaxWriteCoils};

int maxInOneRequest(const Items &items, const Limits &limits)
{
    if (items.address.isBitArea())
        return isByteKind(items.kind) ? limits.bits / modbus::ByteBits : limits.bits;
    // Whole registers a portion, so that each begins at the same bit.
    if (isBitKind(items.kind))
        return (limits.registers - 1) * modbus::RegisterBits;
    if (isByteKind(items.kind))
        return limits.registers * modbus::RegisterBytes;
    return items.kind == DoubleWordItem ? limits.registers / 2 : limits.registers;
}

// Whole values a portion.
int maxInOneRequest(const TypedItems &typed, const Limits &limits)
{
    const int max = maxInOneRequest(typed.items, limits);
    if (typed.items.kind != WordItem)
        return max;
    return typed.type.isByte() ? max * modbus::RegisterBytes : max / typed.type.registers();
}

std::vector<TypedItems> portionsWithin(const TypedItems &typed, const Limits &limits)
{
    if (typed.items.isRaw())
        return {typed};
    std::vector<TypedItems> portions;
    const int max = maxInOneRequest(typed, limits);
    for (int first = 0; first < typed.count; first += max)
        portions.push_back(partOf(typed, first, std::min(max, typed.count - first)));
    return portions;
}

} // namespace

std::vector<TypedItems> portionsOf(const TypedItems &typed)
{
    return portionsWithin(typed, ReadLimits);
}

std::vector<TypedItems> writePortionsOf(const TypedItems &typed)
{
    return portionsWithin(typed, WriteLimits);
}
