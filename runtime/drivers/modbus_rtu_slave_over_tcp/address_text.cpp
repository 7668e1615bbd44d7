#include "drivers/modbus_rtu_slave_over_tcp/address_text.h"

#include "drivers/qt/qt_lines.h"

namespace
{

const int FunctionPrefixLength = 3; // "FN5", "FN6"

bool isLetter(QChar c)
{
    const ushort lowerCase = c.unicode() | 0x20;
    return lowerCase >= 'a' && lowerCase <= 'z';
}

bool isDigit(QChar c)
{
    return c >= QLatin1Char('0') && c <= QLatin1Char('9');
}

// The number at c, modulo 2^32, 0 when there is none; moves c past it.
unsigned int numberAt(const QChar *&c, const QChar *end)
{
    unsigned int number = 0;
    for (; c != end && isDigit(*c); ++c)
        number = number * 10 + (c->unicode() - '0');
    return number;
}

const QChar *endOfArea(const QChar *c, const QChar *end)
{
    const bool hasFunction = c != end && (c->unicode() | 0x20) == 'f';
    if (hasFunction)
        c += qMin(FunctionPrefixLength, static_cast<int>(end - c));
    while (c != end && isLetter(*c))
        ++c;
    return c;
}

void appendLatin1(QByteArray &bytes, const QChar *c, const QChar *end)
{
    const int before = sizeOf(bytes);
    bytes.resize(before + static_cast<int>(end - c));
    for (char *out = bytes.data() + before; c != end; ++c)
        *out++ = c->unicode() > 0xFF ? '?' : static_cast<char>(c->unicode());
}

} // namespace

void ModbusRTUSlaveParseAddress(const QString &text, QByteArray &area, unsigned short &offset,
                                unsigned char &bit)
{
    const QChar *c = text.constData();
    const QChar *const end = c + text.size();
    const QChar *const areaEnd = endOfArea(c, end);
    appendLatin1(area, c, areaEnd);

    c = areaEnd;
    offset = static_cast<unsigned short>(numberAt(c, end) - 1);

    if (c != end && *c == QLatin1Char('.'))
        bit = static_cast<unsigned char>(numberAt(++c, end));
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
