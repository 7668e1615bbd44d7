#include "drivers/modbus_rtu_slave_over_tcp/used_bits.h"

#include "drivers/tools/plc_address.h"

namespace
{

const int FunctionPrefixLength = 3; // "FN5"
const int LongestPlainNumber = 9;   // more digits may not fit, and Qt decides about those

unsigned char toStation(unsigned int number)
{
    return static_cast<unsigned char>(number & 0xFF);
}

unsigned short zeroBased(unsigned int number)
{
    return static_cast<unsigned short>(number - 1);
}

bool startsWith(const QString &text, const char *prefix)
{
    return text.startsWith(QLatin1String(prefix), Qt::CaseInsensitive);
}

unsigned int numberBehindArea(const QString &text)
{
    return static_cast<unsigned int>(ExtractPLCDeviceAddress(text, 10));
}

ushort lowerCase(QChar c)
{
    return c.unicode() | 0x20;
}

// Reads one to nine digits at c; c moves behind them.
bool plainNumberAt(const QChar *&c, const QChar *end, unsigned int &number)
{
    const QChar *const begin = c;
    number = 0;
    for (; c != end; ++c) {
        const unsigned int digit = c->unicode() - '0';
        if (digit > 9)
            break;
        number = 10 * number + digit;
    }
    return c != begin && c - begin <= LongestPlainNumber;
}

enum Area { InputArea, CoilArea, RegisterArea, UnusualArea };

// Reads "DI", "DO" or "FN5DO" at c; c moves behind it.
Area plainAreaAt(const QChar *&c, const QChar *end)
{
    if (end - c < 3)
        return UnusualArea;
    const ushort first = lowerCase(c[0]);
    const ushort second = lowerCase(c[1]);
    if (first == 'h' || first == 'i')
        return RegisterArea;
    if (first == 'd' && (second == 'i' || second == 'o')) {
        c += 2;
        return second == 'i' ? InputArea : CoilArea;
    }
    if (end - c > 5 && first == 'f' && second == 'n' && c[2] == QLatin1Char('5') && lowerCase(c[3]) == 'd' &&
        lowerCase(c[4]) == 'o') {
        c += 5;
        return CoilArea;
    }
    return UnusualArea;
}

} // namespace

UsedBits::UsedBits(unsigned char stationOfLink, const QRegExp &stationPattern)
    : defaultStation(stationOfLink), pattern(stationPattern), sets(256)
{
}

void UsedBits::add(const QVariant &address)
{
    if (address.type() != QVariant::String || !addPlain(*static_cast<const QString *>(address.constData())))
        addUnusual(address);
}

// Nearly all tags are written plainly, and a project may have a million of them. False when this one is not.
bool UsedBits::addPlain(const QString &tag)
{
    const QChar *c = tag.constData();
    const QChar *const end = c + tag.size();
    unsigned int station = defaultStation;
    if (c != end && c->unicode() <= '9') {
        if (!plainNumberAt(c, end, station) || c == end || *c != QLatin1Char('-'))
            return false;
        ++c;
    }
    const Area area = plainAreaAt(c, end);
    if (area == RegisterArea)
        return true;
    unsigned int number = 0;
    if (area == UnusualArea || !plainNumberAt(c, end, number) || c != end)
        return false;
    if (area == InputArea)
        validBitAddressesMapInsertDI(toStation(station), zeroBased(number));
    else
        validBitAddressesMapInsertDO(toStation(station), zeroBased(number));
    return true;
}

void UsedBits::addUnusual(const QVariant &address)
{
    const QString tag = address.toString();
    if (startsWith(tag, "FN5DO")) {
        validBitAddressesMapInsertDO(defaultStation,
                                     zeroBased(numberBehindArea(tag.mid(FunctionPrefixLength))));
    } else if (startsWith(tag, "DI")) {
        validBitAddressesMapInsertDI(defaultStation, zeroBased(numberBehindArea(tag)));
    } else if (startsWith(tag, "DO")) {
        validBitAddressesMapInsertDO(defaultStation, zeroBased(numberBehindArea(tag)));
    } else if (pattern.indexIn(tag) == 0) {
        const unsigned int station = pattern.cap(1).toUInt();
        const unsigned int number = pattern.cap(3).toUInt();
        if (startsWith(pattern.cap(2), "DI"))
            validBitAddressesMapInsertDI(toStation(station), zeroBased(number));
        else
            validBitAddressesMapInsertDO(toStation(station), zeroBased(number));
    }
}

QMap<unsigned char, ModbusBitSet> UsedBits::sorted()
{
    QMap<unsigned char, ModbusBitSet> map;
    for (size_t station = 0; station < sets.size(); ++station) {
        ModbusBitSet &set = sets[station];
        if (set.DISet().empty() && set.DOSet().empty())
            continue;
        set.DISetSort();
        set.DOSetSort();
        map.insert(static_cast<unsigned char>(station), set);
    }
    return map;
}

void UsedBits::validBitAddressesMapInsertDI(unsigned char station, unsigned short address)
{
    sets[station].DISetPush(address);
}

void UsedBits::validBitAddressesMapInsertDO(unsigned char station, unsigned short address)
{
    sets[station].DOSetPush(address);
}
