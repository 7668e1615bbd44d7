#include "apps/driverhost/console/wanted_options.h"

#include "apps/driverhost/console/point_options.h"

namespace
{

// A number below 0 is meant as one with a sign where nothing else is said.
Point withSign(Point point, const QString &expected)
{
    const ValueType &type = point.at.type;
    const bool isUntyped = !point.at.isTyped && type.meaning == Meaning::Unsigned;
    if (!isUntyped || !expected.startsWith(QLatin1Char('-')))
        return point;
    const Result<TypedItems> withSign = typedItems(point.at.address, ValueType{Meaning::Signed, type.bits});
    if (withSign)
        point.at = *withSign;
    return point;
}

QString problemWith(const Wanted &wanted, int station)
{
    const TypedItems &at = wanted.point.at;
    const QString label = labelOf(wanted.point);
    if (at.count != 1)
        return QStringLiteral("\"%1\": expected one value").arg(label);
    if (at.address.station >= 0 && at.address.station != station)
        return QStringLiteral("\"%1\": expected a value of station %2, which is examined")
            .arg(label)
            .arg(station);
    if (wanted.expected.isEmpty() || at.type.isText())
        return {};
    const bool isNumber = parseNumberText(wanted.expected).has_value();
    const Result<QByteArray> value = parsePointValue(wanted.point, wanted.expected, true);
    return isNumber || value ? QString() : value.errorText();
}

} // namespace

std::vector<Wanted> wantedValues(CommandLine &line, const QStringList &words, int station)
{
    const PointWords table(line, ItemOptions());
    std::vector<Wanted> all;
    for (const QString &word : words) {
        const QString place = word.section(QLatin1Char('='), 0, 0);
        const QString expected = word.section(QLatin1Char('='), 1);
        const Result<std::vector<Point>> points = table.find(place, ItemCounts());
        if (!points)
            line.addError(points.errorText());
        for (const Point &point : points.valueOr({}))
            all.push_back({withSign(point, expected), expected});
        if (expected.isEmpty() && word.contains(QLatin1Char('=')))
            line.addError(QStringLiteral("\"%1\": expected a value after the equals sign").arg(word));
    }
    // Of a table of several stations it is about one.
    for (const Point &point : words.isEmpty() ? table.all() : std::vector<Point>()) {
        if (point.at.address.station < 0 || point.at.address.station == station)
            all.push_back({point, QString()});
    }
    for (const Wanted &wanted : all) {
        const QString problem = problemWith(wanted, station);
        if (!problem.isEmpty())
            line.addError(problem);
    }
    return all;
}
