#include "fuzz/support/write_plan.h"

#include "tests/doubles/frames.h"

namespace fuzz
{

namespace
{

const int MaxRegisters = 123;
const int MaxCoils = 1976;
const int MaxReadRegisters = 125;
const int AreaSize = 65536;

// The value may be missing.
QByteArray writeSingleFrame(int station, int function, int address, const QByteArray &value)
{
    return framed(QByteArray(1, static_cast<char>(station)) + static_cast<char>(function) +
                  bigEndian(address) + value);
}

// The bytes of each item turned round, the last one filled up with zeros.
QByteArray onTheWire(const QByteArray &data, int itemSize)
{
    QByteArray wire;
    for (int item = 0; item < data.size(); item += itemSize)
        for (int i = itemSize - 1; i >= 0; --i)
            wire.append(item + i < data.size() ? data.at(item + i) : '\0');
    return wire;
}

void addRegisters(Plan &plan, int station, bool oneByOne, int address, const QByteArray &wire)
{
    if (!oneByOne) {
        plan.requests += writeMultipleFrame(station, 16, address, wire.size() / 2, wire);
        return;
    }
    // Writing no register sends one request without a value.
    for (int i = 0; i == 0 || i < wire.size(); i += 2)
        plan.requests += writeSingleFrame(station, 6, address + i / 2, wire.mid(i, 2));
}

// Bytes of both kinds have the same words.
int itemKind(const Command &command)
{
    return command.isByteKind() ? static_cast<int>(ByteItem) : command.dataType;
}

Plan planRegisters(const Command &command, const QByteArray &data, int station, bool oneByOne)
{
    static const char *const texts[] = {nullptr, "can't write any byte to HR", "can't write any word to HR",
                                        "can't write any double word to HR"};
    const qint64 itemSize = command.isByteKind() ? 1 : command.dataType == WordItem ? 2 : 4;
    const qint64 size = itemSize * command.count;
    const qint64 registers = (size + 1) / 2;
    Plan plan;
    if (size < 0 || registers > MaxRegisters || command.offset + registers > AreaSize)
        plan.refusal = refusal(texts[itemKind(command)], QString(), command.offset);
    else
        addRegisters(plan, station, oneByOne, command.offset,
                     onTheWire(data.leftJustified(static_cast<int>(size), '\0', true),
                               command.dataType == DoubleWordItem && command.highWordFirst ? 4 : 2));
    return plan;
}

Plan planCoils(const Command &command, const QByteArray &bits, int station)
{
    Plan plan;
    if (command.count < 0 || command.count > MaxCoils || command.offset + command.count > AreaSize)
        plan.refusal = refusal(qPrintable(QStringLiteral("can't write %1 bits to DO").arg(command.count)),
                               QString(), command.offset);
    else if (command.areaIs("DO"))
        plan.requests += writeMultipleFrame(station, 15, command.offset, command.count, bits);
    else
        for (int i = 0; i < command.count; ++i)
            plan.requests += writeSingleFrame(
                station, 5, command.offset + i,
                QByteArray((byteAt(bits, i / 8) >> i % 8 & 1) != 0 ? "\xFF" : "\0", 1) + '\0');
    return plan;
}

Plan planRegisterBits(const Command &command, const QByteArray &bits, int station,
                      const QList<Exchange> &exchanges)
{
    Plan plan;
    const qint64 registers = (command.bit + qint64(command.count) + 15) / 16;
    if (command.count < 0 || registers > MaxReadRegisters || command.offset + registers > AreaSize) {
        plan.refusal = refusal("can't read any word from HR", QString(), command.offset);
        return plan;
    }
    plan.requests += fieldsFrame(station, 3, command.offset, static_cast<int>(registers));
    if (registers == 0 || exchanges.isEmpty())
        return plan;

    QByteArray wire = exchanges.first().data().left(2 * static_cast<int>(registers));
    for (int i = 0; i < command.count; ++i) {
        const int bit = command.bit + i;
        const int byte = bit / 16 * 2 + (bit % 16 < 8 ? 1 : 0);
        const int mask = 1 << bit % 8;
        const bool on = (byteAt(bits, i / 8) >> i % 8 & 1) != 0;
        wire[byte] = static_cast<char>(on ? wire.at(byte) | mask : wire.at(byte) & ~mask);
    }
    const bool oneByOne = command.areaIs("FN6HR");
    if (!oneByOne && registers > MaxRegisters)
        plan.refusal = refusal("can't write any word to HR", QString(), command.offset);
    else
        addRegisters(plan, station, oneByOne, command.offset, wire);
    return plan;
}

Plan refused(const char *item, const Command &command)
{
    return {{}, QStringLiteral("can't write any %1 to %2").arg(QLatin1String(item), command.address)};
}

} // namespace

Plan planWrite(const Command &command, const QByteArray &data, int station, const QList<Exchange> &exchanges)
{
    static const char *const items[] = {"bit", "byte", "word", "double word"};
    if (!command.isBitKind()) {
        if (command.area->isHolding)
            return planRegisters(command, data, station, command.areaIs("FN6HR"));
        return refused(items[itemKind(command)], command);
    }
    // Longer ones are refused whatever they are.
    const int bitBytes = (qBound(0, command.count, 0xFFFF) + 7) / 8;
    const QByteArray bits = data.leftJustified(bitBytes, '\0', true);
    if (command.area->isCoils)
        return planCoils(command, bits, station);
    if (command.area->isHolding)
        return planRegisterBits(command, bits, station, exchanges);
    return refused(items[BitItem], command);
}

} // namespace fuzz
