#pragma once

#include "desk/wire/protocol.h"

/// Costs are counted by the units of a reply: a register, or the eight bits of a byte.
constexpr int itemsPerUnit(Area area)
{
    return isBitArea(area) ? modbus::ByteBits : 1;
}
constexpr int unitsOf(Area area, int items)
{
    return (items + itemsPerUnit(area) - 1) / itemsPerUnit(area);
}

/// How long the line is taken by a request with its reply, in microseconds.
struct RequestCost {
    double perRequest = 0;
    double perUnit = 0;

    double of(int units) const { return perRequest + perUnit * units; }
};

/// What to go by before anything is measured: a line of 9600 baud, 11 bits a character, to a device that
/// takes 30 ms to answer. What matters is how the two compare: with nothing known, a gap is filled where
/// most serial lines and their devices gain by it.
RequestCost startingCost(Area area);

/// Whether a plan made for one cost is nearly as good for the other.
bool isNear(const RequestCost &left, const RequestCost &right);
