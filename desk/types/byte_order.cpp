#include "desk/types/byte_order.h"

#include "drivers/qt/qt_lines.h"

#include <QtEndian>

#include <algorithm>

namespace
{

struct NamedOrder {
    const char *name;
    ByteOrder order;
};

const NamedOrder NamedOrders[] = {
    {"AB", {true, false}},       {"BA", {true, true}},         {"ABCD", {true, false}},
    {"CDAB", {false, false}},    {"BADC", {true, true}},       {"DCBA", {false, true}},
    {"ABCDEFGH", {true, false}}, {"GHEFCDAB", {false, false}}, {"BADCFEHG", {true, true}},
    {"HGFEDCBA", {false, true}},
};

const int LettersOfAny = 4;

bool isWithinRegister(const ValueType &type)
{
    return type.isText() || type.bytes() <= 2;
}

bool fits(int letters, const ValueType &type)
{
    return letters == LettersOfAny || (letters == 2 && isWithinRegister(type)) || letters == type.bytes();
}

QString expectedFor(const ValueType &type)
{
    if (isWithinRegister(type))
        return QStringLiteral("AB, BA, ABCD, CDAB, BADC or DCBA");
    if (type.bytes() == LettersOfAny)
        return QStringLiteral("ABCD, CDAB, BADC or DCBA");
    return QStringLiteral("ABCDEFGH, GHEFCDAB, BADCFEHG or HGFEDCBA, for short ABCD, CDAB, BADC or DCBA");
}

quint16 swapped(quint16 word)
{
    return static_cast<quint16>(word << 8 | word >> 8);
}

// From the registers of values to their words, the most significant one first, and back: the same step both
// ways. Texts and bytes run on from register to register, whatever the order of words.
std::vector<quint16> arranged(std::vector<quint16> words, const ValueType &type, const ByteOrder &order)
{
    if (order.isLowByteFirst)
        std::transform(words.begin(), words.end(), words.begin(), swapped);
    if (order.isHighWordFirst || isWithinRegister(type))
        return words;
    for (auto first = words.begin(); first != words.end(); first += type.registers())
        std::reverse(first, first + type.registers());
    return words;
}

} // namespace

ByteOrder defaultOrder(const ValueType &type)
{
    return {type.isText(), type.isByte()};
}

Result<ByteOrder> parseOrder(const QString &name, const ValueType &type)
{
    if (type.isBit())
        return Error{QStringLiteral("order \"%1\": a bit has no order of bytes").arg(name)};
    for (const NamedOrder &named : NamedOrders) {
        if (name.compare(QLatin1String(named.name), Qt::CaseInsensitive) == 0 && fits(sizeOf(name), type))
            return named.order;
    }
    return Error{
        QStringLiteral("order \"%1\": expected %2 of a %3").arg(name, expectedFor(type), nameOf(type))};
}

QString nameOf(const ByteOrder &order, const ValueType &type)
{
    const int letters = isWithinRegister(type) ? 2 : type.bytes();
    for (const NamedOrder &named : NamedOrders) {
        const bool isSame =
            letters == 2 ? order.isLowByteFirst == named.order.isLowByteFirst : order == named.order;
        if (isSame && static_cast<int>(qstrlen(named.name)) == letters)
            return QLatin1String(named.name);
    }
    return {};
}

std::vector<quint16> registersIn(const QByteArray &driverData)
{
    std::vector<quint16> registers;
    for (int i = 0; i + 1 < driverData.size(); i += 2)
        registers.push_back(qFromLittleEndian<quint16>(driverData.constData() + i));
    return registers;
}

QByteArray driverDataOf(const std::vector<quint16> &registers)
{
    QByteArray data;
    for (const quint16 word : registers)
        data.append(static_cast<char>(word & 0xFF)).append(static_cast<char>(word >> 8));
    return data;
}

std::vector<QByteArray> valuesIn(const std::vector<quint16> &registers, const ValueType &type,
                                 const ByteOrder &order, int count)
{
    std::vector<quint16> whole = registers;
    whole.resize(registers.size() - registers.size() % static_cast<size_t>(type.registers()));
    QByteArray bytes;
    for (const quint16 word : arranged(whole, type, order))
        bytes.append(static_cast<char>(word >> 8)).append(static_cast<char>(word & 0xFF));
    const int stride = type.isByte() ? 1 : type.registers() * 2;
    std::vector<QByteArray> values;
    for (int i = 0; i < count && (i + 1) * stride <= bytes.size(); ++i)
        values.push_back(bytes.mid(i * stride, type.bytes()));
    return values;
}

std::vector<quint16> registersOf(const std::vector<QByteArray> &values, const ValueType &type,
                                 const ByteOrder &order)
{
    QByteArray bytes;
    for (const QByteArray &value : values)
        bytes += type.isByte() ? value : value.leftJustified(type.registers() * 2, '\0');
    if (bytes.size() % 2 != 0)
        bytes += '\0';
    std::vector<quint16> words;
    for (int i = 0; i < bytes.size(); i += 2)
        words.push_back(qFromBigEndian<quint16>(bytes.constData() + i));
    return arranged(words, type, order);
}
