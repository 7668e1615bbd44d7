#include "drivers/modbus_rtu_slave_over_tcp/address_text.h"

namespace
{

const unsigned short NoOffset = 65535;
const int FunctionPrefixLength = 3; // "FN5", "FN6"

char latin1At(const QString &text, int i)
{
    const ushort unicode = text.at(i).unicode();
    return unicode > 0xFF ? '?' : static_cast<char>(unicode);
}

bool isLetter(const QString &text, int i)
{
    const ushort lowerCase = text.at(i).unicode() | 0x20;
    return lowerCase >= 'a' && lowerCase <= 'z';
}

bool isDigit(const QString &text, int i)
{
    const ushort unicode = text.at(i).unicode();
    return unicode >= '0' && unicode <= '9';
}

// The number at i, modulo 2^32; i moves behind it.
unsigned int numberAt(const QString &text, int &i)
{
    unsigned int number = 0;
    for (; i < text.size() && isDigit(text, i); ++i)
        number = number * 10 + (text.at(i).unicode() - '0');
    return number;
}

int endOfArea(const QString &text)
{
    const bool hasFunction = !text.isEmpty() && (text.at(0).unicode() | 0x20) == 'f';
    int i = hasFunction ? qMin(FunctionPrefixLength, text.size()) : 0;
    while (i < text.size() && isLetter(text, i))
        ++i;
    return i;
}

} // namespace

void ModbusRTUSlaveParseAddress(const QString &text, QByteArray &area, unsigned short &offset,
                                unsigned char &bit)
{
    int i = endOfArea(text);
    const int before = area.size();
    area.resize(before + i);
    char *letters = area.data() + before;
    for (int letter = 0; letter < i; ++letter)
        letters[letter] = latin1At(text, letter);

    const bool hasNumber = i < text.size() && isDigit(text, i);
    offset = hasNumber ? static_cast<unsigned short>(numberAt(text, i) - 1) : NoOffset;

    if (i < text.size() && text.at(i) == QLatin1Char('.'))
        bit = static_cast<unsigned char>(numberAt(text, ++i));
}

bool areaStartsWith(const QByteArray &area, const char *prefix)
{
    return qstrnicmp(area.constData(), prefix, qstrlen(prefix)) == 0;
}

bool areaIs(const QByteArray &area, const char *name)
{
    return qstricmp(area.constData(), name) == 0;
}

bool isHoldingRegisterArea(const QByteArray &area)
{
    return areaStartsWith(area, "HR") || areaStartsWith(area, "FN6HR");
}

bool isCoilArea(const QByteArray &area)
{
    return areaStartsWith(area, "DO") || areaStartsWith(area, "FN5DO");
}

bool hasHighWordFirst(const QString &address)
{
    return address.contains(QLatin1String("SW"), Qt::CaseInsensitive);
}
