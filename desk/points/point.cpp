#include "desk/points/point.h"

namespace
{

Limit limitOf(const Point &point, std::optional<double> number)
{
    if (point.low && number < *point.low)
        return Limit::Below;
    return point.high && number > *point.high ? Limit::Above : Limit::Within;
}

// Numbers that can have states are whole and fit.
qint64 wholeNumber(const QByteArray &value, const ValueType &type)
{
    return jsonOf(value, type).toVariant().toLongLong();
}

} // namespace

PointValue shownOf(const Point &point, const QByteArray &value, TextEncoding encoding)
{
    const ValueType &type = point.at.type;
    PointValue shown;
    shown.raw = textOf(value, type, encoding);
    shown.text = shown.raw;
    shown.number = jsonOf(value, type, encoding);
    const std::optional<double> number = numberOf(value, type);
    if (!number)
        return shown;
    if (!point.states.isEmpty())
        shown.state = point.states.nameOf(wholeNumber(value, type));
    if (!point.scaling.isNeutral()) {
        shown.text = scaledText(value, type, point.scaling);
        shown.number = shown.text.toDouble();
    }
    shown.limit = limitOf(point, *number * point.scaling.scale + point.scaling.offset);
    return shown;
}

Result<QByteArray> parsePointValue(const Point &point, const QString &text, const ValueParsing &parsing)
{
    if (const std::optional<qint64> state = point.states.valueOf(text))
        return parseValue(QString::number(*state), point.at.type, parsing);
    Result<QByteArray> value = parseScaled(text, point.at.type, point.scaling, parsing);
    if (value)
        return value;
    const QString states =
        point.states.isEmpty() || point.states.isOfBits()
            ? QString()
            : QStringLiteral(", or one of ") + point.states.names().join(QStringLiteral(", "));
    return Error{value.errorText() + states};
}

QString valueWithUnit(const Point &point, const PointValue &value)
{
    if (!value.state.isEmpty())
        return value.state;
    return point.unit.isEmpty() ? value.text : value.text + QLatin1Char(' ') + point.unit;
}

QString limitText(const Point &point, Limit limit)
{
    if (limit == Limit::Within)
        return {};
    return limit == Limit::Below ? QStringLiteral("below %1").arg(*point.low)
                                 : QStringLiteral("above %1").arg(*point.high);
}
