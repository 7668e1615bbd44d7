#include "desk/readings/value_readings.h"

#include "desk/items/range_items.h"

#include <utility>

namespace
{

bool isReadAsItIs(const TypedItems &typed)
{
    return typed.items.isRaw() || (typed.address.isBitArea() && typed.type.isByte());
}

Reading readingOf(const std::shared_ptr<const Point> &point, int index)
{
    const AreaRange range = rangeOf(point->at, index);
    Reading reading{itemsOf(range), {{point, index, placeIn(range, point->at, index)}}};
    reading.items.address.station = point->at.address.station;
    return reading;
}

} // namespace

std::vector<Reading> valueReadingsOf(std::vector<Point> points)
{
    std::vector<Reading> readings;
    readings.reserve(points.size());
    for (Point &each : points) {
        const auto point = std::make_shared<const Point>(std::move(each));
        if (isReadAsItIs(point->at)) {
            const std::vector<Reading> portions = readingsOf(point);
            readings.insert(readings.end(), portions.begin(), portions.end());
            continue;
        }
        for (int i = 0; i < point->at.count; ++i)
            readings.push_back(readingOf(point, i));
    }
    return readings;
}

std::optional<AreaRange> rangeOf(const Reading &reading, int linkStation)
{
    const Items &items = reading.items;
    const bool isBits = items.address.isBitArea() && items.kind == BitItem;
    const bool isWords = !items.address.isBitArea() && items.kind == WordItem;
    const int most = isBits ? modbus::MaxReadBits : modbus::MaxReadRegisters;
    if (items.isRaw() || !(isBits || isWords) || items.count > most)
        return std::nullopt;
    const int first = items.address.wireOffset();
    return AreaRange{stationOf(items, linkStation), items.address.area, first, first + items.count - 1};
}
