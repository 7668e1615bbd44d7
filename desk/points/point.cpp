#include "desk/points/point.h"

namespace
{

QString limitOf(const Point &point, double number)
{
    if (point.low && number < *point.low)
        return QStringLiteral("below %1").arg(*point.low);
    return point.high && number > *point.high ? QStringLiteral("above %1").arg(*point.high) : QString();
}

// Numbers that can have states are whole and fit.
qint64 wholeNumber(const QJsonValue &number)
{
    return number.toVariant().toLongLong();
}

QString statesText(const States &states)
{
    if (states.isEmpty() || states.isOfBits())
        return {};
    return QStringLiteral(", or one of ") + states.names().join(QStringLiteral(", "));
}

} // namespace

QString PointValue::withUnit(const QString &unit) const
{
    if (!state.isEmpty())
        return state;
    return unit.isEmpty() || text.isEmpty() ? text : text + QLatin1Char(' ') + unit;
}

QString labelOf(const Point &point)
{
    return point.name.isEmpty() ? point.at.label(0) : point.name;
}

PointValue shownOf(const Point &point, const QByteArray &value)
{
    const ValueType &type = point.at.type;
    PointValue shown;
    shown.raw = textOf(value, type, point.encoding);
    shown.rawNumber = jsonOf(value, type, point.encoding);
    shown.text = shown.raw;
    shown.number = shown.rawNumber;
    const std::optional<double> number = numberOf(value, type);
    if (!number)
        return shown;
    if (!point.states.isEmpty())
        shown.state = point.states.nameOf(wholeNumber(shown.rawNumber));
    if (!point.scaling.isNeutral()) {
        shown.text = scaledText(value, type, point.scaling);
        shown.number = shown.text.toDouble();
    }
    shown.limit = limitOf(point, *number * point.scaling.scale + point.scaling.offset);
    return shown;
}

Result<QByteArray> parsePointValue(const Point &point, const QString &text, bool mayRound)
{
    const ValueParsing parsing{point.encoding, mayRound};
    if (const std::optional<qint64> state = point.states.valueOf(text))
        return parseValue(QString::number(*state), point.at.type, parsing);
    Result<QByteArray> value = parseScaled(text, point.at.type, point.scaling, parsing);
    if (value)
        return value;
    return Error{value.errorText() + statesText(point.states)};
}
