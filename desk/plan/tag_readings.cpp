#include "desk/plan/tag_readings.h"

#include "desk/readings/value_readings.h"

#include <algorithm>
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

bool isBefore(const Point &left, const Point &right)
{
    const auto placeOf = [](const Address &address) {
        return std::make_tuple(address.station, address.area, address.number, address.bit);
    };
    return placeOf(left.at.address) < placeOf(right.at.address);
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
    std::stable_sort(points.begin(), points.end(), isBefore);
    all.readings = valueReadingsOf(points);
    return all;
}
