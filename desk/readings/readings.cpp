#include "desk/readings/readings.h"

#include "desk/items/portions.h"

namespace
{

Reading readingOf(const std::shared_ptr<const Point> &point, const TypedItems &portion, int first)
{
    Reading reading{portion.items, {}};
    for (const ValuePlace &place : placesOf(portion))
        reading.shown.push_back({point, first++, place});
    return reading;
}

ValueRow rowOf(const Reading::Shown &shown, int station)
{
    const Point &point = *shown.point;
    ValueRow row;
    row.station = station;
    row.name = point.name;
    row.address = point.at.label(shown.index);
    row.offset = point.at.offsetOf(shown.index);
    row.kind = point.at.kindName();
    row.type = point.at.typeText();
    row.unit = point.unit;
    return row;
}

} // namespace

std::vector<Reading> readingsOf(const std::shared_ptr<const Point> &point)
{
    std::vector<Reading> readings;
    int first = 0;
    for (const TypedItems &portion : portionsOf(point->at)) {
        readings.push_back(readingOf(point, portion, first));
        first += portion.count;
    }
    return readings;
}

std::vector<Reading> readingsOf(const std::vector<Point> &points)
{
    std::vector<Reading> readings;
    for (const Point &point : points) {
        for (const Reading &reading : readingsOf(std::make_shared<const Point>(point)))
            readings.push_back(reading);
    }
    return readings;
}

Point namelessPoint(const TypedItems &typed)
{
    Point point;
    point.at = typed;
    return point;
}

QString labelOf(const Reading::Shown &shown)
{
    return shown.point->name.isEmpty() ? shown.point->at.label(shown.index) : shown.point->name;
}

QString labelOf(const Reading &reading)
{
    return reading.shown.empty() ? reading.items.label(0) : labelOf(reading.shown.front());
}

QString labelOf(const std::vector<const Reading *> &readings)
{
    if (readings.empty())
        return {};
    const QString first = labelOf(*readings.front());
    return readings.size() == 1 ? first : first + QStringLiteral(" and %1 more").arg(readings.size() - 1);
}

std::vector<ValueRow> rowsOf(const Reading &reading, const QByteArray &data, int station)
{
    std::vector<ValueRow> rows;
    for (const Reading::Shown &shown : reading.shown) {
        rows.push_back(rowOf(shown, station));
        rows.back().value = shownOf(*shown.point, valueAt(data, shown.place));
    }
    return rows;
}

std::vector<ValueRow> failedRowsOf(const Reading &reading, const RowFailure &failure, int station)
{
    std::vector<ValueRow> rows;
    for (const Reading::Shown &shown : reading.shown) {
        rows.push_back(rowOf(shown, station));
        rows.back().failure = failure;
    }
    return rows;
}
