#include "drivers/modbus_rtu_slave_over_tcp/project/used_bits.h"

#include "drivers/modbus_rtu_slave_over_tcp/project/station_tag.h"
#include "drivers/tools/plc_address.h"

namespace
{

const int FunctionPrefixLength = 3; // "FN5"
const int MaxPlainDigits = 9;       // more may not fit an int, and Qt decides about those

enum PlainArea { DiscreteInputs, Coils, Registers, NoArea };

// What a plain address text names; the number is one-based.
struct PlainTag {
    PlainArea area;
    unsigned int station;
    unsigned int number;
};

ushort lowerCase(QChar c)
{
    return c.unicode() | 0x20;
}

// Reads one to nine digits at c and moves c past them.
bool plainNumberAt(const QChar *&c, const QChar *end, unsigned int &number)
{
    const QChar *const start = c;
    number = 0;
    for (; c != end; ++c) {
        const unsigned int digit = c->unicode() - '0';
        if (digit > 9)
            break;
        number = 10 * number + digit;
    }
    return c != start && c - start <= MaxPlainDigits;
}

// Reads "DI", "DO" or "FN5DO" at c and moves c past it. Registers are texts that can name no bit.
PlainArea plainAreaAt(const QChar *&c, const QChar *end)
{
    if (end - c < 3)
        return NoArea;
    const ushort first = lowerCase(c[0]);
    const ushort second = lowerCase(c[1]);
    if (first == 'h' || first == 'i')
        return Registers;
    if (first == 'd' && (second == 'i' || second == 'o')) {
        c += 2;
        return second == 'i' ? DiscreteInputs : Coils;
    }
    if (end - c > 5 && first == 'f' && second == 'n' && c[2] == QLatin1Char('5') && lowerCase(c[3]) == 'd' &&
        lowerCase(c[4]) == 'o') {
        c += 5;
        return Coils;
    }
    return NoArea;
}

// Nearly all tags are written plainly, and a project may have a million of them. False when this one is not.
bool readPlain(const QString &text, PlainTag &tag)
{
    const QChar *c = text.constData();
    const QChar *const end = c + text.size();
    if (c != end && c->unicode() <= '9') {
        if (!plainNumberAt(c, end, tag.station) || c == end || *c != QLatin1Char('-'))
            return false;
        ++c;
    }
    tag.area = plainAreaAt(c, end);
    if (tag.area == Registers)
        return true;
    return tag.area != NoArea && plainNumberAt(c, end, tag.number) && c == end;
}

bool startsWith(const QString &text, const char *prefix)
{
    return text.startsWith(QLatin1String(prefix), Qt::CaseInsensitive);
}

unsigned char toStation(unsigned int number)
{
    return static_cast<unsigned char>(number & 0xFF);
}

unsigned short zeroBased(unsigned int number)
{
    return static_cast<unsigned short>(number - 1);
}

unsigned short addressIn(const QString &text)
{
    return zeroBased(static_cast<unsigned int>(ExtractPLCDeviceAddress(text, 10)));
}

void mark(std::unique_ptr<AddressMarks> &marks, unsigned short address)
{
    if (!marks)
        marks.reset(new AddressMarks);
    marks->mark(address);
}

UShortVector addressesOf(const std::unique_ptr<AddressMarks> &marks)
{
    return marks ? marks->addresses() : UShortVector();
}

} // namespace

UsedBits::UsedBits(unsigned char stationOfLink) : defaultStation(stationOfLink), stations(256) {}

void UsedBits::add(const QString &text)
{
    PlainTag tag = {NoArea, defaultStation, 0};
    if (!readPlain(text, tag))
        addByRules(text);
    else if (tag.area == DiscreteInputs)
        validBitAddressesMapInsertDI(toStation(tag.station), zeroBased(tag.number));
    else if (tag.area == Coils)
        validBitAddressesMapInsertDO(toStation(tag.station), zeroBased(tag.number));
}

void UsedBits::addWithStation(const QString &text)
{
    StationTag tag = {0, false, 0};
    if (!splitStationTag(text, tag))
        return;
    if (tag.isCoil)
        validBitAddressesMapInsertDO(toStation(tag.station), zeroBased(tag.number));
    else
        validBitAddressesMapInsertDI(toStation(tag.station), zeroBased(tag.number));
}

// The rules in full. A plain tag comes out the same by them.
void UsedBits::addByRules(const QString &text)
{
    if (startsWith(text, "FN5DO")) {
        validBitAddressesMapInsertDO(defaultStation, addressIn(text.mid(FunctionPrefixLength)));
    } else if (startsWith(text, "DI")) {
        validBitAddressesMapInsertDI(defaultStation, addressIn(text));
    } else if (startsWith(text, "DO")) {
        validBitAddressesMapInsertDO(defaultStation, addressIn(text));
    } else {
        addWithStation(text);
    }
}

QMap<unsigned char, ModbusBitSet> UsedBits::sortedByStation() const
{
    QMap<unsigned char, ModbusBitSet> map;
    for (size_t station = 0; station < stations.size(); ++station) {
        const UShortVector inputs = addressesOf(stations[station].inputs);
        const UShortVector coils = addressesOf(stations[station].coils);
        if (inputs.empty() && coils.empty())
            continue;
        ModbusBitSet set;
        for (auto address = inputs.begin(); address != inputs.end(); ++address)
            set.DISetPush(*address);
        for (auto address = coils.begin(); address != coils.end(); ++address)
            set.DOSetPush(*address);
        // The copy has just the size of its addresses.
        map.insert(static_cast<unsigned char>(station), set);
    }
    return map;
}

void UsedBits::validBitAddressesMapInsertDI(unsigned char station, unsigned short address)
{
    mark(stations[station].inputs, address);
}

void UsedBits::validBitAddressesMapInsertDO(unsigned char station, unsigned short address)
{
    mark(stations[station].coils, address);
}
