#include "desk/plan/tag_readings.h"

#include "desk/readings/value_readings.h"

#include <algorithm>
#include <numeric>
#include <tuple>

namespace
{

Items itemsOf(const Address &address, ItemKind registerKind)
{
    Items items;
    items.address = address;
    const bool isRegister = !address.isBitArea() && address.bit < 0;
    items.kind = !isRegister ? BitItem : address.highWordFirst ? DoubleWordItem : registerKind;
    return items;
}

// A tag is one value; a text may say its type.
Result<TypedItems> parseTag(const QString &text, ItemKind registerKind, ValueForm form)
{
    const Result<TypedText> typed = parseTypedText(text);
    const Result<Address> address = typed ? parseAddress(typed->address) : Result<Address>(typed.error());
    if (!address)
        return address.error();
    if (typed->type && (typed->count || (address->isBitArea() && !typed->type->isBit())))
        return Error{
            QStringLiteral("tag \"%1\": expected one value, and of %2 a bit").arg(text, address->areaName)};
    if (typed->type)
        return typedItems(*address, *typed->type, 1, typed->order);
    const Items items = itemsOf(*address, registerKind);
    const Result<> check = checkItems(items);
    if (!check)
        return check.error();
    return typedItems(items, form);
}

bool isBefore(const Address &left, const Address &right)
{
    const auto placeOf = [](const Address &address) {
        return std::make_tuple(address.station, address.area, address.number, address.bit);
    };
    return placeOf(left) < placeOf(right);
}

// Points are large, so that their numbers are sorted.
std::vector<Point> inOrder(std::vector<Point> points)
{
    std::vector<size_t> order(points.size());
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(), [&](size_t left, size_t right) {
        return isBefore(points[left].at.address, points[right].at.address);
    });
    std::vector<Point> sorted;
    sorted.reserve(points.size());
    for (const size_t point : order)
        sorted.push_back(std::move(points[point]));
    return sorted;
}

} // namespace

TagReadings tagReadingsOf(const QStringList &tags, ItemKind registerKind, ValueForm form)
{
    TagReadings all;
    std::vector<Point> points;
    points.reserve(static_cast<size_t>(tags.size()));
    for (const QString &text : tags) {
        const Result<TypedItems> tag = parseTag(text, registerKind, form);
        if (tag)
            points.push_back(namelessPoint(*tag));
        else
            all.skipped += tag.errorText();
    }
    all.readings = valueReadingsOf(inOrder(std::move(points)));
    return all;
}
