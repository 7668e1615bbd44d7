#include "desk/items/value_form.h"

#include "desk/types/value_bits.h"

#include <cstring>

namespace
{

const int BitsOfHexDigit = 4;

quint32 toBits(float number)
{
    quint32 value = 0;
    std::memcpy(&value, &number, sizeof value);
    return value;
}

int baseOf(ValueForm form)
{
    if (form == ValueForm::Hex)
        return 16;
    return form == ValueForm::Binary ? 2 : 10;
}

// A prefix says more than the form; but 0B10 may be four hexadecimal digits where such are expected.
std::optional<qint64> parseInteger(const QString &text, ValueForm form)
{
    bool isNumber = false;
    const QString digits = text.mid(2);
    qint64 number = 0;
    if (text.startsWith(QLatin1String("0x"), Qt::CaseInsensitive))
        number = static_cast<qint64>(digits.toUInt(&isNumber, 16));
    else if (text.startsWith(QLatin1String("0b"), Qt::CaseInsensitive))
        number = form == ValueForm::Hex ? 0 : static_cast<qint64>(digits.toUInt(&isNumber, 2));
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

ValueType typeOf(ItemKind kind, ValueForm form)
{
    static const Meaning meanings[] = {Meaning::Unsigned, Meaning::Signed, Meaning::Hex, Meaning::Binary,
                                       Meaning::Float};
    return {isBitKind(kind) ? Meaning::Bit : meanings[static_cast<int>(form)], widthOf(kind)};
}

Result<QByteArray> parseValue(const QString &text, ItemKind kind, ValueForm form)
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
        return valueOf(*value, typeOf(kind, form).bytes());
    if (form == ValueForm::Hex && text.startsWith(QLatin1String("0b"), Qt::CaseInsensitive))
        return Error{
            QStringLiteral("value \"%1\": binary, or hexadecimal? write 0x%1 for the hexadecimal number, and "
                           "a binary one without the form hex")
                .arg(text)};
    return Error{QStringLiteral("value \"%1\" does not fit a %2; expected %3")
                     .arg(text, form == ValueForm::Float ? QStringLiteral("float") : nameOf(kind),
                          expectedText(width, form))};
}
