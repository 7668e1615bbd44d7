#include "tests/exhaustive/expected_requests.h"

#include <algorithm>
#include <cstring>

const ExpectedArea ExpectedAreas[6] = {{"HR", 3, false, 16}, {"FN6HR", 3, false, 6}, {"IR", 4, false, 0},
                                       {"DO", 1, true, 15},  {"FN5DO", 1, true, 5},  {"DI", 2, true, 0}};

const ExpectedKind ExpectedKinds[6] = {
    {0, "bit", "bit(s)", "bit"},    {1, "byte", "byte(s)", "byte"},
    {2, "word", "word(s)", "word"}, {3, "double word", "dword(s)", "dword"},
    {5, "byte", nullptr, nullptr},  {6, "bit", nullptr, nullptr}};

namespace
{

typedef QuickChannel::Frame Frame;

const int MaxRegistersRead = 125;
const int MaxBitsRead = 2008;
const int MaxRegistersWritten = 123;
const int MaxCoilsWritten = 1976;
const int EndOfArea = 65536;

int itemsOfARegister(const ExpectedKind &kind)
{
    return isOfBits(kind) ? 16 : isOfBytes(kind) ? 2 : 1;
}

int registersOf(const ExpectedKind &kind, int count)
{
    const int items = itemsOfARegister(kind);
    return kind.dataType == 3 ? 2 * count : (count + items - 1) / items;
}

bool isWithin(int offset, int count, int quantity, int most)
{
    return count >= 0 && quantity <= most && offset + quantity <= EndOfArea;
}

std::string placeOf(const char *area, int offset)
{
    return area + std::to_string(offset + 1);
}

std::string details(const char *transfer, const char *items, const char *direction, int count,
                    const std::string &place)
{
    if (items == nullptr)
        return std::string();
    return std::string(" (") + transfer + " " + std::to_string(count) + " " + items + " " + direction +
           " 1-" + place + ")";
}

Frame &addFrame(ExpectedRequests &expected, int function, int first)
{
    expected.frames.resize(expected.frames.size() + 1);
    Frame &frame = expected.frames.back();
    frame.bytes[0] = 1;
    frame.bytes[1] = static_cast<unsigned char>(function);
    frame.bytes[2] = static_cast<unsigned char>(first / 256);
    frame.bytes[3] = static_cast<unsigned char>(first % 256);
    return frame;
}

void putQuantity(Frame &frame, int quantity)
{
    frame.bytes[4] = static_cast<unsigned char>(quantity / 256);
    frame.bytes[5] = static_cast<unsigned char>(quantity % 256);
}

void addRead(ExpectedRequests &expected, int function, int offset, int quantity)
{
    Frame &frame = addFrame(expected, function, offset);
    putQuantity(frame, quantity);
    closeFrame(frame, 6);
}

void addWriteOfMany(ExpectedRequests &expected, int function, int offset, int quantity,
                    const unsigned char *bytes, int size)
{
    Frame &frame = addFrame(expected, function, offset);
    putQuantity(frame, quantity);
    frame.bytes[6] = static_cast<unsigned char>(size);
    std::memcpy(frame.bytes + 7, bytes, static_cast<size_t>(size));
    closeFrame(frame, 7 + size);
}

void addWriteOfOne(ExpectedRequests &expected, int function, int offset, unsigned char high,
                   unsigned char low)
{
    Frame &frame = addFrame(expected, function, offset);
    frame.bytes[4] = high;
    frame.bytes[5] = low;
    closeFrame(frame, 6);
}

// The registers, high byte first, into which the first items of the data go; what is left of the last one is
// 0.
void layOut(const ExpectedKind &kind, int count, const QByteArray &data, unsigned char *registers)
{
    std::memset(registers, 0, 2 * static_cast<size_t>(registersOf(kind, count)));
    const int bits = isOfBits(kind) ? count : 16 * registersOf(kind, count);
    for (int i = 0; i < bits; ++i) {
        const bool isBeyondTheBytes = isOfBytes(kind) && i >= 8 * count;
        const int isSet = isBeyondTheBytes ? 0 : static_cast<unsigned char>(data.at(i / 8)) >> i % 8 & 1;
        unsigned char &byte = registers[(i / 8) ^ 1];
        byte = static_cast<unsigned char>(byte | isSet << i % 8);
    }
}

void addWriteOfRegisters(ExpectedRequests &expected, int function, int offset, int quantity,
                         const unsigned char *registers)
{
    if (function == 16) {
        addWriteOfMany(expected, 16, offset, quantity, registers, 2 * quantity);
        return;
    }
    for (int i = 0; i < quantity; ++i)
        addWriteOfOne(expected, 6, offset + i, registers[2 * i], registers[2 * i + 1]);
}

void expectCoilWrite(const ExpectedArea &area, int offset, int count, const QByteArray &data,
                     ExpectedRequests &expected)
{
    if (!isWithin(offset, count, count, MaxCoilsWritten)) {
        expected.error = "can't write " + std::to_string(count) + " bits to " + placeOf("DO", offset);
        return;
    }
    const auto *bytes = reinterpret_cast<const unsigned char *>(data.constData());
    if (area.writeFunction == 15)
        addWriteOfMany(expected, 15, offset, count, bytes, (count + 7) / 8);
    else
        for (int i = 0; i < count; ++i)
            addWriteOfOne(expected, 5, offset + i, (bytes[i / 8] >> i % 8 & 1) != 0 ? 0xFF : 0, 0);
    expected.isWritten = true;
}

// Bits are changed in the registers that hold them, which are read first.
void expectRegisterBitWrite(const ExpectedArea &area, const ExpectedKind &kind, int offset, int count,
                            const QByteArray &data, ExpectedRequests &expected)
{
    const int quantity = registersOf(kind, count);
    if (!isWithin(offset, count, quantity, MaxRegistersRead)) {
        expected.error = "can't read any word from " + placeOf("HR", offset);
        return;
    }
    addRead(expected, 3, offset, quantity);
    if (quantity == 0)
        return; // nothing is written, and that is no error
    if (area.writeFunction == 16 && quantity > MaxRegistersWritten) {
        expected.error = "can't write any word to " + placeOf("HR", offset);
        return;
    }
    unsigned char registers[256];
    layOut(kind, count, data, registers);
    addWriteOfRegisters(expected, area.writeFunction, offset, quantity, registers);
    expected.isWritten = true;
}

void expectRegisterWrite(const ExpectedArea &area, const ExpectedKind &kind, int offset, int count,
                         const QByteArray &data, ExpectedRequests &expected)
{
    const int quantity = registersOf(kind, count);
    if (!isWithin(offset, count, quantity, MaxRegistersWritten)) {
        expected.error = std::string("can't write any ") + kind.item + " to " + placeOf("HR", offset);
        return;
    }
    unsigned char registers[256];
    layOut(kind, count, data, registers);
    addWriteOfRegisters(expected, area.writeFunction, offset, quantity, registers);
    // No registers one by one are one request without a value.
    if (expected.frames.empty())
        closeFrame(addFrame(expected, 6, offset), 4);
    expected.isWritten = true;
}

void start(ExpectedRequests &expected)
{
    expected.error.clear();
    expected.frames.clear();
    expected.dataSize = 0;
    expected.isWritten = false;
}

} // namespace

bool isOfBits(const ExpectedKind &kind)
{
    return kind.dataType == 0 || kind.dataType == 6;
}

bool isOfBytes(const ExpectedKind &kind)
{
    return kind.dataType == 1 || kind.dataType == 5;
}

int limitOf(const ExpectedArea &area, const ExpectedKind &kind, bool isWrite)
{
    if (area.isBits && isOfBits(kind))
        return isWrite ? MaxCoilsWritten : MaxBitsRead;
    const int registers = isWrite && !isOfBits(kind) ? MaxRegistersWritten : MaxRegistersRead;
    return kind.dataType == 3 ? registers / 2 : registers * itemsOfARegister(kind);
}

void expectRead(const ExpectedArea &area, const ExpectedKind &kind, int offset, int count,
                ExpectedRequests &expected)
{
    start(expected);
    const std::string place = placeOf(area.name, offset);
    const bool isOfBitArea = area.isBits && isOfBits(kind);
    const int quantity = isOfBitArea ? count : registersOf(kind, count);
    if (isWithin(offset, count, quantity, isOfBitArea ? MaxBitsRead : MaxRegistersRead)) {
        // Registers "of a bit area" are read as input registers.
        addRead(expected, area.isBits && !isOfBitArea ? 4 : area.readFunction, offset, quantity);
        expected.dataSize = isOfBits(kind) ? (count + 7) / 8 : isOfBytes(kind) ? count : 2 * quantity;
        return;
    }
    if (isOfBitArea)
        expected.error = "can't read " + std::to_string(count) + " bits from " + place;
    else
        expected.error =
            std::string("can't read any ") + (isOfBits(kind) ? "word" : kind.item) + " from " + place;
    expected.error += details("read", kind.readDetails, "from", count, place);
}

void expectWrite(const ExpectedArea &area, const ExpectedKind &kind, int offset, int count,
                 const QByteArray &data, ExpectedRequests &expected)
{
    start(expected);
    const std::string place = placeOf(area.name, offset);
    if (area.writeFunction == 0 || (area.isBits && !isOfBits(kind)))
        expected.error = std::string("can't write any ") + kind.item + " to " + place;
    else if (area.isBits)
        expectCoilWrite(area, offset, count, data, expected);
    else if (isOfBits(kind))
        expectRegisterBitWrite(area, kind, offset, count, data, expected);
    else
        expectRegisterWrite(area, kind, offset, count, data, expected);
    if (!expected.error.empty())
        expected.error += details("write", kind.writeDetails, "to", count, place);
}
