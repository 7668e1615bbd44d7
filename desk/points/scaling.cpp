#include "desk/points/scaling.h"

#include "desk/types/decimal.h"

#include <algorithm>
#include <cmath>

namespace
{

const int MaxDecimals = 15;
const int DigitsOfSingle = 7;
const int DigitsOfDouble = 15;
// What is lost on the way there and back is below this share of a step.
const double Tolerance = 1e-6;

int decimalsOf(const QString &number)
{
    const std::optional<Decimal> decimal = parseDecimal(number);
    return decimal ? std::clamp(-decimal->exponent, 0, MaxDecimals) : 0;
}

QString withPoint(const QString &text)
{
    return text.contains(QLatin1Char('.')) ? text : QString(text).replace(QLatin1Char(','), QLatin1Char('.'));
}

Error notANumber(const QString &what, const QString &text)
{
    return {QStringLiteral("%1 \"%2\": expected a number such as 0.1").arg(what, text)};
}

} // namespace

std::optional<double> parseNumberText(const QString &text)
{
    bool isNumber = false;
    const double number = withPoint(text).toDouble(&isNumber);
    return isNumber && std::isfinite(number) ? std::optional<double>(number) : std::nullopt;
}

Result<Scaling> parseScaling(const QString &scale, const QString &offset)
{
    const std::optional<double> factor = scale.isEmpty() ? 1 : parseNumberText(scale);
    const std::optional<double> summand = offset.isEmpty() ? 0 : parseNumberText(offset);
    if (!factor || *factor == 0)
        return factor ? Error{QStringLiteral("scale \"%1\": expected a number other than 0").arg(scale)}
                      : notANumber(QStringLiteral("scale"), scale);
    if (!summand)
        return notANumber(QStringLiteral("offset"), offset);
    return Scaling{*factor, *summand, std::max(decimalsOf(withPoint(scale)), decimalsOf(withPoint(offset)))};
}

QString scaledText(const QByteArray &value, const ValueType &type, const Scaling &scaling)
{
    if (scaling.isNeutral())
        return textOf(value, type);
    const double number = numberOf(value, type).value_or(0) * scaling.scale + scaling.offset;
    if (type.meaning != Meaning::Float)
        return QString::number(number, 'f', scaling.decimals);
    return QString::number(number, 'g', type.bits == 32 ? DigitsOfSingle : DigitsOfDouble);
}

Result<QByteArray> parseScaled(const QString &text, const ValueType &type, const Scaling &scaling,
                               const ValueParsing &parsing)
{
    if (scaling.isNeutral())
        return parseValue(text, type, parsing);
    const std::optional<double> number = parseNumberText(text);
    if (!number)
        return Error{QStringLiteral("value \"%1\": expected a number").arg(text)};
    const double raw = (*number - scaling.offset) / scaling.scale;
    ValueParsing rawParsing = parsing;
    rawParsing.mayRound = true;
    const bool isFloat = type.meaning == Meaning::Float;
    const QString rawText = QString::number(isFloat ? raw : std::round(raw), 'g', DigitsOfDouble + 2);
    Result<QByteArray> value = parseValue(rawText, type, rawParsing);
    if (!value)
        return Error{
            QStringLiteral("value \"%1\" is %2 before scaling: %3").arg(text, rawText, value.errorText())};
    if (isFloat || parsing.mayRound || std::abs(raw - std::round(raw)) < Tolerance)
        return value;
    return Error{QStringLiteral("value \"%1\" lies between two steps of %2; the nearest is %3")
                     .arg(text, QString::number(scaling.scale), scaledText(*value, type, scaling))};
}
