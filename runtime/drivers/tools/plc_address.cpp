#include "drivers/tools/plc_address.h"

namespace
{

bool isSymbolCharacter(char c)
{
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_';
}

// The value of a digit of any radix up to 16; 16 for a character that is none.
unsigned int digitValue(char c)
{
    if (c >= '0' && c <= '9')
        return static_cast<unsigned int>(c - '0');
    if (c >= 'A' && c <= 'F')
        return static_cast<unsigned int>(c - 'A') + 10;
    if (c >= 'a' && c <= 'f')
        return static_cast<unsigned int>(c - 'a') + 10;
    return 16;
}

} // namespace

QByteArray ExtractPrefixSymbol(const QByteArray &text)
{
    int end = 0;
    while (end < text.size() && isSymbolCharacter(text.at(end)))
        ++end;
    return text.left(end);
}

QByteArray ExtractPrefixSymbol(const QString &text)
{
    return ExtractPrefixSymbol(text.toLatin1());
}

int ExtractPLCDeviceAddress(const QByteArray &text, int radix)
{
    if (radix != 10 && radix != 16 && radix != 8)
        return -1;
    int start = 0;
    while (start < text.size() && digitValue(text.at(start)) >= static_cast<unsigned int>(radix))
        ++start;
    return text.mid(start).toInt(nullptr, radix);
}

int ExtractPLCDeviceAddress(const QString &text, int radix)
{
    return ExtractPLCDeviceAddress(text.toLatin1(), radix);
}

unsigned int HexToUInt(const char *text, int length)
{
    const bool isPrefixed = length > 1 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X');
    unsigned int value = 0;
    for (int i = isPrefixed ? 2 : 0; i < length && text[i] != '\0'; ++i) {
        const unsigned int digit = digitValue(text[i]);
        if (digit > 15)
            return 0;
        value = value * 16 + digit;
    }
    return value;
}
