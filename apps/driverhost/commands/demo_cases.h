#pragma once

#include "desk/items/typed_items.h"

#include <vector>

class SlaveThread;

/// One line of the demonstration: items of one kind somewhere, and the values that they have or get.
struct DemoCase {
    Items items;
    std::vector<quint32> values;
    bool isWritten = false; ///< by the driver, not beforehand in the slave's memory
};

/// Every item kind of every area.
std::vector<DemoCase> demoCases();

/// The items as values in hexadecimal digits; the values of their numbers, and back.
TypedItems typed(const Items &items);
std::vector<QByteArray> valuesOf(const std::vector<quint32> &numbers, const Items &items);
std::vector<quint32> numbersOf(const std::vector<QByteArray> &values);

/// The value of item \a index as the slave's memory has it, by the rules of the protocol and of addresses,
/// without the driver.
quint32 valueInSlave(SlaveThread &slave, const Items &items, int index);
void putIntoSlave(SlaveThread &slave, const Items &items, int index, quint32 value);
