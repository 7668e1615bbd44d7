#include "tests/model/driver_model.h"

#include "drivers/tools/command_data.h"

#include <algorithm>
#include <cctype>

namespace
{

std::string upper(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(),
                   [](char c) { return static_cast<char>(std::toupper(static_cast<unsigned char>(c))); });
    return text;
}

bool startsWith(const std::string &text, const char *prefix)
{
    return upper(text).find(prefix) == 0;
}

bool isBits(int dataType)
{
    return dataType == BitItem || dataType == SecondBitItem;
}

bool isBytes(int dataType)
{
    return dataType == ByteItem || dataType == BlockItem;
}

bool isSupported(int dataType)
{
    return dataType >= BitItem && dataType <= SecondBitItem && dataType != EightByteItem;
}

bool isHighWordFirst(const DriverModel::Address &address)
{
    return upper(address.text).find("SW") != std::string::npos;
}

bool isHolding(const std::string &area)
{
    return startsWith(area, "HR") || startsWith(area, "FN6HR");
}

const char *itemName(int dataType)
{
    return dataType == WordItem ? "word" : dataType == DoubleWordItem ? "double word" : "byte";
}

// -1 for a negative count.
long long registersFor(int dataType, long long count)
{
    const long long registers = dataType == WordItem         ? count
                                : dataType == DoubleWordItem ? 2 * count
                                                             : (count + 1) / 2;
    return count < 0 ? -1 : registers;
}

std::string details(const char *verb, const char *const names[], const char *middle, int dataType,
                    const DriverModel::Address &address, int count, int station)
{
    if (dataType > DoubleWordItem)
        return std::string();
    return std::string(" (") + verb + " " + std::to_string(count) + " " + names[dataType] + " " + middle +
           " " + std::to_string(station % 256) + "-" + address.text + ")";
}

int bitOf(const QByteArray &bits, int i)
{
    return i / 8 < bits.size() ? static_cast<unsigned char>(bits.at(i / 8)) >> i % 8 & 1 : 0;
}

QByteArray packed(const std::vector<int> &bits)
{
    QByteArray bytes(static_cast<int>((bits.size() + 7) / 8), '\0');
    for (size_t i = 0; i < bits.size(); ++i) {
        const int at = static_cast<int>(i / 8);
        bytes[at] = static_cast<char>(bytes.at(at) | bits[i] << i % 8);
    }
    return bytes;
}

char low(int value)
{
    return static_cast<char>(value % 256);
}

// The registers that hold the host's data: \a dataType of it, padded or cut to count items.
std::vector<std::uint16_t> registersOf(int dataType, long long count, const QByteArray &data, bool isSwapped)
{
    const long long size = dataType == WordItem ? 2 * count : dataType == DoubleWordItem ? 4 * count : count;
    std::vector<std::uint16_t> registers;
    for (int i = 0; i < size; i += 2) {
        const auto byte = [&](int at) {
            return at < data.size() && at < size ? static_cast<unsigned char>(data.at(at)) : 0;
        };
        registers.push_back(static_cast<std::uint16_t>(byte(i) + 256 * byte(i + 1)));
    }
    if (isSwapped)
        for (size_t i = 0; i + 1 < registers.size(); i += 2)
            std::swap(registers[i], registers[i + 1]);
    return registers;
}

} // namespace

DriverModel::DriverModel(int areaSize)
    : station(1),
      coils(static_cast<size_t>(areaSize)),
      discreteInputs(coils),
      holdingRegisters(static_cast<size_t>(areaSize)),
      inputRegisters(holdingRegisters)
{
}

DriverModel::Outcome DriverModel::read(int dataType, const Address &address, int count)
{
    static const char *const names[] = {"bit(s)", "byte(s)", "word(s)", "dword(s)"};
    Outcome outcome = {QByteArray(), false, std::string()};
    error.clear();
    const std::string area = upper(address.area);
    if (!isSupported(dataType))
        return {QByteArray(), false, "unsupported data type: " + address.text};
    const bool isCoil = startsWith(area, "DO") || startsWith(area, "FN5DO");
    if (isBits(dataType))
        outcome.data = isCoil || startsWith(area, "DI")
                           ? readBits(address.area, isCoil, address.offset, count)
                           : readRegisterBits(address, count);
    else if (isBytes(dataType) && area != "HR" && area != "FN6HR" && area != "IR")
        outcome.data = readUsedBits(area != "DI", address, count);
    else
        outcome.data = readRegisterItems(dataType, address, count);
    if (!error.empty())
        outcome.error = error + details("read", names, "from", dataType, address, count, station);
    return outcome;
}

DriverModel::Outcome DriverModel::write(int dataType, const Address &address, int count,
                                        const QByteArray &data)
{
    static const char *const names[] = {"bit", "byte", "word", "dword"};
    static const char *const items[] = {"bit", "byte", "word", "double word", "", "byte", "bit"};
    if (!isSupported(dataType))
        return {QByteArray(), false, "unsupported data type: " + address.text};
    Outcome outcome = {QByteArray(), false, std::string()};
    error.clear();
    const bool isOneByOne = startsWith(address.area, "FN");
    if (isHolding(address.area))
        outcome.isWritten = isBits(dataType) ? writeRegisterBits(address, count, data, isOneByOne)
                                             : writeRegisters(dataType, address, count, data, isOneByOne);
    else if (isBits(dataType) && (startsWith(address.area, "DO") || startsWith(address.area, "FN5DO")))
        outcome.isWritten = writeCoils(address, count, data, isOneByOne);
    else
        fail(std::string("can't write any ") + items[dataType] + " to " + address.text);
    if (!error.empty())
        outcome.error = error + details("write", names, "to", dataType, address, count, station);
    return outcome;
}

bool DriverModel::fail(const std::string &text)
{
    error = text;
    return false;
}

// What the slave makes of a range: nothing of nothing, and nothing beyond its areas.
bool DriverModel::isServed(long long start, long long quantity)
{
    if (!isSent())
        return false;
    const std::string code = quantity == 0                                             ? "03"
                             : start + quantity > static_cast<long long>(coils.size()) ? "02"
                                                                                       : "";
    if (code.empty())
        return true;
    return isAnswered(true) && fail("exception code:0x" + code);
}

// A reply always carries the low byte of the station, and a larger station accepts none.
bool DriverModel::isAnswered(bool /*isException*/)
{
    return station < 256 || fail("invalid slave id:" + std::to_string(station % 256));
}

bool DriverModel::readRegisters(const char *item, const Address &address, const std::string &area,
                                long long count, std::vector<std::uint16_t> &registers)
{
    if (count < 0 || count > 125 || address.offset + count > 65536)
        return fail(std::string("can't read any ") + item + " from " + area +
                    std::to_string(address.offset + 1));
    if (!isServed(address.offset, count) || !isAnswered(false))
        return false;
    const std::vector<std::uint16_t> &memory = isHolding(area) ? holdingRegisters : inputRegisters;
    registers.assign(memory.begin() + address.offset,
                     memory.begin() + address.offset + static_cast<long>(count));
    return true;
}

QByteArray DriverModel::readRegisterItems(int dataType, const Address &address, int count)
{
    const char *const item = itemName(dataType);
    const long long needed = registersFor(dataType, count);
    std::vector<std::uint16_t> registers;
    if (!readRegisters(item, address, address.area, needed, registers))
        return QByteArray();
    if (dataType == DoubleWordItem && isHighWordFirst(address))
        for (size_t i = 0; i < registers.size(); i += 2)
            std::swap(registers[i], registers[i + 1]);
    QByteArray data;
    for (const std::uint16_t value : registers)
        data += QByteArray(1, low(value)) + low(value / 256);
    return isBytes(dataType) ? data.left(count) : data;
}

QByteArray DriverModel::readRegisterBits(const Address &address, int count)
{
    std::vector<std::uint16_t> registers;
    const long long needed = count < 0 ? -1 : (address.bit + count + 15LL) / 16;
    if (!readRegisters("word", address, address.area, needed, registers))
        return QByteArray();
    std::vector<int> bits;
    for (int i = address.bit; i < address.bit + count; ++i)
        bits.push_back(registers[static_cast<size_t>(i / 16)] >> i % 16 & 1);
    return packed(bits);
}

QByteArray DriverModel::readBits(const std::string &area, bool isCoil, int offset, long long count)
{
    if (count < 0 || count > 2008 || offset + count > 65536) {
        fail("can't read " + std::to_string(count) + " bits from " + area + std::to_string(offset + 1));
        return QByteArray();
    }
    if (!isServed(offset, count) || !isAnswered(false))
        return QByteArray();
    const std::vector<std::uint8_t> &memory = isCoil ? coils : discreteInputs;
    return packed(
        std::vector<int>(memory.begin() + offset, memory.begin() + offset + static_cast<long>(count)));
}

QByteArray DriverModel::readUsedBits(bool isCoil, const Address &address, int count)
{
    const std::string area = isCoil ? "DO" : "DI";
    const auto entry = usedBits.find(station % 256);
    if (entry == usedBits.end()) {
        fail("invalid address " + std::to_string(station) + "-" + area);
        return QByteArray();
    }
    const std::set<int> &used = isCoil ? entry->second.coils : entry->second.discreteInputs;
    const int end = 8 * std::max(count, 0);
    std::vector<int> bits;
    int lastHit = -1;
    for (int i = 0; i < end;) {
        int length = 0;
        const int start = (address.offset + i) % 65536;
        // An address below an earlier hit is not seen again.
        while (i + length < end && start + length < 65536 && start + length > lastHit &&
               used.count(start + length) != 0)
            ++length;
        if (length == 0) {
            bits.push_back(0);
            ++i;
            continue;
        }
        lastHit = start + length - 1;
        const QByteArray run = readBits(area, isCoil, start, length);
        if (run.isEmpty())
            return QByteArray();
        for (int k = 0; k < length; ++k)
            bits.push_back(bitOf(run, k));
        i += length;
    }
    return packed(bits);
}

bool DriverModel::writeRegisters(int dataType, const Address &address, long long count,
                                 const QByteArray &data, bool isOneByOne)
{
    const char *const item = itemName(dataType);
    const long long needed = registersFor(dataType, count);
    if (needed < 0 || needed > 123 || address.offset + needed > 65536)
        return fail(std::string("can't write any ") + item + " to HR" + std::to_string(address.offset + 1));
    const bool isSwapped = dataType == DoubleWordItem && isHighWordFirst(address);
    return storeRegisters(item, address.offset, registersOf(dataType, count, data, isSwapped), isOneByOne);
}

bool DriverModel::storeRegisters(const char *item, int offset, const std::vector<std::uint16_t> &registers,
                                 bool isOneByOne)
{
    const auto count = static_cast<long long>(registers.size());
    if (isOneByOne && registers.empty())
        return isSent() && failAndClose("PLC no response"); // no value, to which a slave says nothing
    if (isOneByOne)
        return storeEach(offset, registers);
    if (count > 123)
        return fail(std::string("can't write any ") + item + " to HR" + std::to_string(offset + 1));
    if (!isServed(offset, count))
        return false;
    std::copy(registers.begin(), registers.end(), holdingRegisters.begin() + offset);
    return isAnswered(false);
}

bool DriverModel::storeEach(int offset, const std::vector<std::uint16_t> &registers)
{
    for (const std::uint16_t value : registers) {
        if (!isServed(offset, 1))
            return false;
        holdingRegisters[static_cast<size_t>(offset++)] = value;
        if (!isAnswered(false))
            return false;
    }
    return true;
}

bool DriverModel::writeRegisterBits(const Address &address, int count, const QByteArray &bits,
                                    bool isOneByOne)
{
    std::vector<std::uint16_t> registers;
    const long long needed = count < 0 ? -1 : (address.bit + count + 15LL) / 16;
    if (!readRegisters("word", address, "HR", needed, registers))
        return false;
    for (int i = 0; i < count; ++i) {
        std::uint16_t &target = registers[static_cast<size_t>((address.bit + i) / 16)];
        const int mask = 1 << (address.bit + i) % 16;
        target = static_cast<std::uint16_t>(bitOf(bits, i) != 0 ? target | mask : target & ~mask);
    }
    return storeRegisters("word", address.offset, registers, isOneByOne);
}

bool DriverModel::writeCoils(const Address &address, int count, const QByteArray &bits, bool isOneByOne)
{
    if (count < 0 || count > 1976 || address.offset + count > 65536)
        return fail("can't write " + std::to_string(count) + " bits to DO" +
                    std::to_string(address.offset + 1));
    if (!isOneByOne && !isServed(address.offset, count))
        return false;
    for (int i = 0; i < count; ++i) {
        const int coil = address.offset + i;
        if (isOneByOne && !isServed(coil, 1))
            return false;
        coils[static_cast<size_t>(coil)] = static_cast<std::uint8_t>(bitOf(bits, i));
        if (isOneByOne && !isAnswered(false))
            return false;
    }
    return isOneByOne || isAnswered(false);
}
