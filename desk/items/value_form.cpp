#include "desk/items/value_form.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstring>

namespace
{

const int BitsOfHexDigit = 4;

float toFloat(quint32 value)
{
    float number = 0;
    static_assert(sizeof number == sizeof value, "a float is 32 bits");
    std::memcpy(&number, &value, sizeof number);
    return number;
}

quint32 toBits(float number)
{
    quint32 value = 0;
    std::memcpy(&value, &number, sizeof value);
    return value;
}

qint64 toSigned(quint32 value, int width)
{
    const qint64 range = qint64(1) << width;
    return value >= range / 2 ? qint64(value) - range : value;
}

// The shortest text that reads back as the same number.
QString shortest(float number)
{
    std::array<char, 64> text = {};
    const std::to_chars_result end = std::to_chars(text.data(), text.data() + text.size(), number);
    return QString::fromLatin1(text.data(), static_cast<int>(end.ptr - text.data()));
}

int baseOf(ValueForm form)
{
    if (form == ValueForm::Hex)
        return 16;
    return form == ValueForm::Binary ? 2 : 10;
}

// A prefix says more than the form; but 0B10 are four hexadecimal digits where such are expected.
std::optional<qint64> parseInteger(const QString &text, ValueForm form)
{
    bool isNumber = false;
    const QString digits = text.mid(2);
    qint64 number = 0;
    if (text.startsWith(QLatin1String("0x"), Qt::CaseInsensitive))
        number = static_cast<qint64>(digits.toUInt(&isNumber, 16));
    else if (form != ValueForm::Hex && text.startsWith(QLatin1String("0b"), Qt::CaseInsensitive))
        number = static_cast<qint64>(digits.toUInt(&isNumber, 2));
    else
        number = text.toLongLong(&isNumber, baseOf(form));
    return isNumber ? std::optional<qint64>(number) : std::nullopt;
}

std::optional<quint32> parseBit(const QString &text)
{
    const QString word = text.toLower();
    for (const char *on : {"1", "on", "true"}) {
        if (word == QLatin1String(on))
            return 1;
    }
    for (const char *off : {"0", "off", "false"}) {
        if (word == QLatin1String(off))
            return 0;
    }
    return std::nullopt;
}

std::optional<quint32> parseFloat(const QString &text)
{
    bool isNumber = false;
    const float number = text.toFloat(&isNumber);
    return isNumber ? std::optional<quint32>(toBits(number)) : std::nullopt;
}

std::optional<quint32> parseWhole(const QString &text, int width, ValueForm form)
{
    const std::optional<qint64> number = parseInteger(text, form);
    const qint64 range = qint64(1) << width;
    if (!number || *number < -range / 2 || *number >= range)
        return std::nullopt;
    return static_cast<quint32>(*number & (range - 1));
}

QString expectedText(int width, ValueForm form)
{
    if (width == 1)
        return QStringLiteral("0 or 1 (off, on, false, true)");
    if (form == ValueForm::Float)
        return QStringLiteral("a number that a 32-bit float can hold");
    const qint64 range = qint64(1) << width;
    if (form == ValueForm::Hex)
        return QStringLiteral("at most %1 hexadecimal digits").arg(width / BitsOfHexDigit);
    if (form == ValueForm::Binary)
        return QStringLiteral("at most %1 binary digits, 0 or 1").arg(width);
    return QStringLiteral("%1 to %2").arg(QString::number(-range / 2), QString::number(range - 1));
}

} // namespace

QStringList valueFormNames()
{
    return {QStringLiteral("unsigned"), QStringLiteral("signed"), QStringLiteral("hex"),
            QStringLiteral("binary"), QStringLiteral("float")};
}

QString formatValue(quint32 value, ItemKind kind, ValueForm form)
{
    const int width = widthOf(kind);
    const QChar zero = QLatin1Char('0');
    if (width == 1)
        return QString::number(value);
    switch (form) {
    case ValueForm::Signed: return QString::number(toSigned(value, width));
    case ValueForm::Hex:
        return QStringLiteral("0x") +
               QString::number(value, 16).toUpper().rightJustified(width / BitsOfHexDigit, zero);
    case ValueForm::Binary:
        return QStringLiteral("0b") + QString::number(value, 2).rightJustified(width, zero);
    case ValueForm::Float: return shortest(toFloat(value));
    case ValueForm::Unsigned: break;
    }
    return QString::number(value);
}

QJsonValue numberOf(quint32 value, ItemKind kind, ValueForm form)
{
    if (form == ValueForm::Float) {
        // By its text: the nearest double of 0.1f would be written as 0.10000000149011612.
        const float number = toFloat(value);
        if (!std::isfinite(number))
            return QJsonValue();
        // There is no negative zero among whole numbers, which some readers make of "-0".
        return number == 0 ? 0.0 : shortest(number).toDouble();
    }
    const bool isSigned = form == ValueForm::Signed && widthOf(kind) > 1;
    return isSigned ? toSigned(value, widthOf(kind)) : qint64(value);
}

Result<quint32> parseValue(const QString &text, ItemKind kind, ValueForm form)
{
    const int width = widthOf(kind);
    std::optional<quint32> value;
    if (width == 1)
        value = parseBit(text);
    else if (form == ValueForm::Float)
        value = parseFloat(text);
    else
        value = parseWhole(text, width, form);
    if (value)
        return *value;
    return Error{QStringLiteral("value \"%1\" does not fit a %2; expected %3")
                     .arg(text, form == ValueForm::Float ? QStringLiteral("float") : nameOf(kind),
                          expectedText(width, form))};
}
