#include "desk/types/value_parse.h"

#include "desk/types/decimal.h"
#include "desk/types/value_bits.h"

#include <charconv>
#include <cmath>
#include <limits>

namespace
{

const int BitsOfDigit = 4;

struct WholeNumber {
    bool isNegative = false;
    quint64 magnitude = 0;
};

quint64 largestIn(int bits)
{
    return std::numeric_limits<quint64>::max() >> (64 - bits);
}

quint64 largestBcd(int bits)
{
    quint64 number = 9;
    for (int digits = 1; digits < bits / BitsOfDigit; ++digits)
        number = number * 10 + 9;
    return number;
}

quint64 largestOf(const ValueType &type)
{
    switch (type.meaning) {
    case Meaning::Signed: return largestIn(type.bits - 1);
    case Meaning::Bcd: return largestBcd(type.bits);
    default: return largestIn(type.bits);
    }
}

QString expectedFor(const ValueType &type)
{
    switch (type.meaning) {
    case Meaning::Bit: return QStringLiteral("0 or 1 (off, on, false, true)");
    case Meaning::Float: return QStringLiteral("a number that %1 bits can hold").arg(type.bits);
    case Meaning::Hex: return QStringLiteral("at most %1 hexadecimal digits").arg(type.bits / BitsOfDigit);
    case Meaning::Binary: return QStringLiteral("at most %1 binary digits, 0 or 1").arg(type.bits);
    case Meaning::Signed:
        return QStringLiteral("-%1 to %2")
            .arg(QString::number(largestOf(type) + 1), QString::number(largestOf(type)));
    default: return QStringLiteral("0 to %1").arg(largestOf(type));
    }
}

Error doesNotFit(const QString &text, const ValueType &type)
{
    return {QStringLiteral("value \"%1\" does not fit %2; expected %3")
                .arg(text, nameOf(type), expectedFor(type))};
}

Error isMoreExact(const QString &text, const ValueType &type, const QString &nearest)
{
    return {QStringLiteral("value \"%1\" is more exact than %2 can be; the nearest is %3")
                .arg(text, nameOf(type), nearest)};
}

// A prefix says more than the type; but 0B10 are four hexadecimal digits where such are expected.
int baseOf(const QString &text, Meaning meaning)
{
    if (text.startsWith(QLatin1String("0x"), Qt::CaseInsensitive))
        return 16;
    if (meaning != Meaning::Hex && text.startsWith(QLatin1String("0b"), Qt::CaseInsensitive))
        return 2;
    if (meaning == Meaning::Hex)
        return 16;
    return meaning == Meaning::Binary ? 2 : 10;
}

std::optional<quint64> parseDigits(const QString &text, int base)
{
    const bool hasPrefix = text.startsWith(QLatin1String(base == 2 ? "0b" : "0x"), Qt::CaseInsensitive);
    const QByteArray digits = text.mid(hasPrefix ? 2 : 0).toLatin1();
    quint64 number = 0;
    const char *const end = digits.constData() + digits.size();
    const std::from_chars_result read = std::from_chars(digits.constData(), end, number, base);
    const bool isWhole = read.ec == std::errc() && read.ptr == end;
    return isWhole ? std::optional<quint64>(number) : std::nullopt;
}

QByteArray asValue(const WholeNumber &number, const ValueType &type)
{
    quint64 bits = type.meaning == Meaning::Bcd ? bcdOf(number.magnitude) : number.magnitude;
    if (number.isNegative)
        bits = ~bits + 1;
    return valueOf(bits, type.bytes());
}

bool fits(const WholeNumber &number, const ValueType &type)
{
    if (!number.isNegative || number.magnitude == 0)
        return number.magnitude <= largestOf(type);
    return type.meaning == Meaning::Signed && number.magnitude <= largestOf(type) + 1;
}

Result<QByteArray> parseDecimalOf(const QString &text, const ValueType &type, bool mayRound)
{
    const std::optional<Decimal> number = parseDecimal(text);
    if (!number)
        return doesNotFit(text, type);
    const Decimal nearest = rounded(*number);
    const std::optional<quint64> magnitude = magnitudeOf(nearest);
    const WholeNumber whole{nearest.isNegative, magnitude.value_or(0)};
    if (!magnitude || !fits(whole, type))
        return doesNotFit(text, type);
    const QByteArray value = asValue(whole, type);
    if (!number->isWhole() && !mayRound)
        return isMoreExact(text, type, textOf(value, type));
    return value;
}

Result<QByteArray> parseWhole(const QString &text, const ValueType &type, bool mayRound)
{
    const int base = baseOf(text, type.meaning);
    if (base == 10)
        return parseDecimalOf(text, type, mayRound);
    const std::optional<quint64> magnitude = parseDigits(text, base);
    if (!magnitude || !fits({false, *magnitude}, type))
        return doesNotFit(text, type);
    return asValue({false, *magnitude}, type);
}

// 0.1 is in no float, and still it is what people write for the float nearest to it: a text is exact enough
// when it is the float's own, in its shortest form or with all its digits.
bool isExact(const QString &text, const QByteArray &value)
{
    if (!std::isfinite(floatOf(value)))
        return true;
    const std::optional<Decimal> number = parseDecimal(text);
    return number == parseDecimal(QString::fromLatin1(shortestText(value))) ||
           number == parseDecimal(QString::fromLatin1(exactText(value)));
}

Result<QByteArray> parseFloat(const QString &text, const ValueType &type, bool mayRound)
{
    const std::optional<QByteArray> value = nearestFloat(text.toLatin1(), type.bytes());
    if (!value)
        return doesNotFit(text, type);
    if (!mayRound && !isExact(text, *value))
        return isMoreExact(text, type, textOf(*value, type));
    return *value;
}

Result<QByteArray> parseBit(const QString &text, const ValueType &type)
{
    const QString word = text.toLower();
    for (const char *on : {"1", "on", "true"}) {
        if (word == QLatin1String(on))
            return QByteArray(1, '\1');
    }
    for (const char *off : {"0", "off", "false"}) {
        if (word == QLatin1String(off))
            return QByteArray(1, '\0');
    }
    return doesNotFit(text, type);
}

Result<QByteArray> parseString(const QString &text, const ValueType &type, TextEncoding encoding)
{
    const QByteArray bytes = encoding == TextEncoding::Utf8 ? text.toUtf8() : text.toLatin1();
    if (encoding == TextEncoding::Latin1 && QString::fromLatin1(bytes) != text)
        return Error{
            QStringLiteral(
                "value \"%1\" has characters that are not in Latin-1; expected UTF-8 to be asked for")
                .arg(text)};
    if (bytes.size() > type.bytes())
        return Error{
            QStringLiteral("value \"%1\" has %2 bytes; %3 holds %4")
                .arg(text, QString::number(bytes.size()), nameOf(type), QString::number(type.bytes()))};
    return bytes.leftJustified(type.bytes(), '\0');
}

} // namespace

Result<QByteArray> parseValue(const QString &text, const ValueType &type, const ValueParsing &parsing)
{
    switch (type.meaning) {
    case Meaning::Bit: return parseBit(text, type);
    case Meaning::Text: return parseString(text, type, parsing.encoding);
    case Meaning::Float: return parseFloat(text, type, parsing.mayRound);
    default: return parseWhole(text, type, parsing.mayRound);
    }
}
