#include "desk/types/value_text.h"

#include "desk/types/value_bits.h"
#include "drivers/qt/qt_lines.h"

#include <cmath>
#include <limits>

namespace
{

const int BitsOfHexDigit = 4;

QString digitsOf(const QByteArray &value, int bits, int base, int bitsOfDigit)
{
    return QString::number(bitsOf(value), base)
        .toUpper()
        .rightJustified(bits / bitsOfDigit, QLatin1Char('0'));
}

QString hexOf(const QByteArray &value)
{
    return QStringLiteral("0x") + digitsOf(value, sizeOf(value) * 8, 16, BitsOfHexDigit);
}

QString bcdText(const QByteArray &value)
{
    const std::optional<quint64> number = numberOfBcd(bitsOf(value));
    return number ? QString::number(*number) : hexOf(value) + QStringLiteral(" (no BCD)");
}

bool movesCursor(QChar character)
{
    return character.category() == QChar::Other_Control;
}

QString withoutControls(const QString &text)
{
    QString plain;
    for (const QChar character : text) {
        if (movesCursor(character))
            plain += QStringLiteral("\\x%1")
                         .arg(character.unicode(), 2, 16, QLatin1Char('0'))
                         .toUpper()
                         .replace(QLatin1Char('X'), QLatin1Char('x'));
        else
            plain += character;
    }
    return plain;
}

// There is no negative zero among whole numbers, which some readers make of "-0".
double withoutMinusZero(double number)
{
    return number == 0 ? 0.0 : number;
}

} // namespace

QString stringOf(const QByteArray &value, TextEncoding encoding)
{
    const QByteArray text =
        value.left(static_cast<int>(qstrnlen(value.constData(), static_cast<uint>(value.size()))));
    return encoding == TextEncoding::Utf8 ? QString::fromUtf8(text) : QString::fromLatin1(text);
}

QString textOf(const QByteArray &value, const ValueType &type, TextEncoding encoding)
{
    switch (type.meaning) {
    case Meaning::Signed: return QString::number(signedOf(bitsOf(value), type.bits));
    case Meaning::Float: return QString::fromLatin1(shortestText(value));
    case Meaning::Hex: return hexOf(value);
    case Meaning::Binary: return QStringLiteral("0b") + digitsOf(value, type.bits, 2, 1);
    case Meaning::Bcd: return bcdText(value);
    case Meaning::Text: return withoutControls(stringOf(value, encoding));
    case Meaning::Bit:
    case Meaning::Unsigned: break;
    }
    return QString::number(bitsOf(value));
}

std::optional<double> numberOf(const QByteArray &value, const ValueType &type)
{
    switch (type.meaning) {
    case Meaning::Signed: return static_cast<double>(signedOf(bitsOf(value), type.bits));
    case Meaning::Text: return std::nullopt;
    case Meaning::Float: {
        const double number = floatOf(value);
        return std::isfinite(number) ? std::optional<double>(number) : std::nullopt;
    }
    case Meaning::Bcd: {
        const std::optional<quint64> number = numberOfBcd(bitsOf(value));
        return number ? std::optional<double>(static_cast<double>(*number)) : std::nullopt;
    }
    default: return static_cast<double>(bitsOf(value));
    }
}

QJsonValue jsonOf(const QByteArray &value, const ValueType &type, TextEncoding encoding)
{
    if (type.isText())
        return stringOf(value, encoding);
    if (!numberOf(value, type))
        return {};
    // By its text: the nearest double of 0.1f would be written as 0.10000000149011612.
    if (type.meaning == Meaning::Float)
        return withoutMinusZero(shortestText(value).toDouble());
    if (type.meaning == Meaning::Signed)
        return signedOf(bitsOf(value), type.bits);
    const quint64 number = type.meaning == Meaning::Bcd ? *numberOfBcd(bitsOf(value)) : bitsOf(value);
    const bool fits = number <= static_cast<quint64>(std::numeric_limits<qint64>::max());
    return fits ? QJsonValue(static_cast<qint64>(number)) : QJsonValue(QString::number(number));
}
