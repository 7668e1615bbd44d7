#include "apps/driverhost/commands/demo_cases.h"

#include "desk/slave/slave_thread.h"
#include "desk/types/value_bits.h"

#include <algorithm>

namespace
{

const int Station = 1;

quint16 at(SlaveThread &slave, const Address &address, int further = 0)
{
    return slave.value(Station, address.area, static_cast<quint16>(address.wireOffset() + further));
}

void put(SlaveThread &slave, const Address &address, quint32 value, int further = 0)
{
    slave.setValue(Station, address.area, static_cast<quint16>(address.wireOffset() + further),
                   static_cast<quint16>(value));
}

quint16 withBits(quint16 value, int shift, quint32 mask, quint32 bits)
{
    return static_cast<quint16>((value & ~(mask << shift)) | ((bits & mask) << shift));
}

// Where an item that is smaller than a register lies in it.
int shiftOf(const Items &items, int index)
{
    return isBitKind(items.kind) ? items.addressOf(index).bit : modbus::ByteBits * (index % 2);
}

quint32 maskOf(const Items &items)
{
    return isBitKind(items.kind) ? 1 : 0xFF;
}

struct CaseText {
    const char *address;
    ItemKind kind;
    std::vector<quint32> values;
};

std::vector<CaseText> caseTexts()
{
    return {
        {"HR7.3", BitItem, {1}},
        {"HR8.14", SecondBitItem, {1, 0, 1, 1}},
        {"HR10", ByteItem, {0x11, 0x22, 0x33, 0x44}},
        {"HR12", BlockItem, {0xDE, 0xAD}},
        {"HR100", WordItem, {1234, 65535, 0}},
        {"HR110", DoubleWordItem, {0x11223344, 1}},
        {"HRSW120", DoubleWordItem, {0x11223344, 1}},
        {"HR65536", WordItem, {4711}},
        {"FN6HR20.0", BitItem, {1, 1}},
        {"FN6HR21.15", SecondBitItem, {1, 1}},
        {"FN6HR30", ByteItem, {1, 2, 3, 4}},
        {"FN6HR32", BlockItem, {5, 6}},
        {"FN6HR40", WordItem, {40000, 40001}},
        {"FN6HR50", DoubleWordItem, {0xCAFEBABE}},
        {"FN6HRSW60", DoubleWordItem, {0xCAFEBABE}},
        {"IR1.15", BitItem, {1, 0, 1}},
        {"IR3.0", SecondBitItem, {0, 1}},
        {"IR5", ByteItem, {7, 8, 9}},
        {"IR8", BlockItem, {10, 11}},
        {"IR10", WordItem, {300, 301, 302}},
        {"IR20", DoubleWordItem, {70000}},
        {"IRSW30", DoubleWordItem, {70000}},
        {"DI1", BitItem, {1, 0, 1, 1, 0, 0, 0, 0, 1}},
        {"DI17", SecondBitItem, {1}},
        {"DI33", ByteItem, {0xA5, 0x0F}},
        {"DI65", BlockItem, {0x81}},
        {"DO1", BitItem, {1, 1, 0, 1, 0, 0, 0, 0, 0, 1}},
        {"DO17", SecondBitItem, {1, 0, 1}},
        {"DO33", ByteItem, {0x3C}},
        {"DO41", BlockItem, {0xFF, 0x01}},
        {"FN5DO65", BitItem, {1, 0, 1}},
        {"FN5DO73", SecondBitItem, {1}},
        {"FN5DO81", ByteItem, {0x99}},
        {"FN5DO89", BlockItem, {0x66}},
    };
}

bool hasWriter(const Items &items)
{
    const Area area = items.address.area;
    return area == Area::HoldingRegisters || (area == Area::Coils && isBitKind(items.kind));
}

} // namespace

std::vector<DemoCase> demoCases()
{
    std::vector<DemoCase> cases;
    for (const CaseText &text : caseTexts()) {
        DemoCase demoCase;
        demoCase.items.address = parseAddress(QLatin1String(text.address)).valueOr(Address());
        demoCase.items.kind = text.kind;
        demoCase.items.count = static_cast<int>(text.values.size());
        demoCase.values = text.values;
        demoCase.isWritten = hasWriter(demoCase.items);
        cases.push_back(demoCase);
    }
    return cases;
}

TypedItems typed(const Items &items)
{
    return typedItems(items, ValueForm::Hex);
}

std::vector<QByteArray> valuesOf(const std::vector<quint32> &numbers, const Items &items)
{
    std::vector<QByteArray> values;
    values.reserve(numbers.size());
    for (const quint32 number : numbers)
        values.push_back(valueOf(number, typed(items).type.bytes()));
    return values;
}

std::vector<quint32> numbersOf(const std::vector<QByteArray> &values)
{
    std::vector<quint32> numbers;
    numbers.reserve(values.size());
    for (const QByteArray &value : values)
        numbers.push_back(static_cast<quint32>(bitsOf(value)));
    return numbers;
}

quint32 valueInSlave(SlaveThread &slave, const Items &items, int index)
{
    const Address address = items.addressOf(index);
    if (items.kind == WordItem || (address.isBitArea() && isBitKind(items.kind)))
        return at(slave, address);
    if (items.kind == DoubleWordItem) {
        const quint32 first = at(slave, address);
        const quint32 second = at(slave, address, 1);
        return address.highWordFirst ? first << modbus::RegisterBits | second
                                     : second << modbus::RegisterBits | first;
    }
    if (!address.isBitArea())
        return (quint32(at(slave, address)) >> shiftOf(items, index)) & maskOf(items);
    quint32 byte = 0;
    for (int bit = 0; bit < modbus::ByteBits; ++bit)
        byte |= quint32(at(slave, address, bit)) << bit;
    return byte;
}

void putIntoSlave(SlaveThread &slave, const Items &items, int index, quint32 value)
{
    const Address address = items.addressOf(index);
    if (items.kind == WordItem || (address.isBitArea() && isBitKind(items.kind))) {
        put(slave, address, value);
    } else if (items.kind == DoubleWordItem) {
        put(slave, address, address.highWordFirst ? value >> modbus::RegisterBits : value);
        put(slave, address, address.highWordFirst ? value : value >> modbus::RegisterBits, 1);
    } else if (!address.isBitArea()) {
        put(slave, address, withBits(at(slave, address), shiftOf(items, index), maskOf(items), value));
    } else {
        for (int bit = 0; bit < modbus::ByteBits; ++bit)
            put(slave, address, (value >> bit) & 1, bit);
    }
}
