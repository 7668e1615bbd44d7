#include "desk/plan/tag_plan.h"

#include <algorithm>
#include <functional>
#include <map>
#include <tuple>

namespace
{

using Tag = std::shared_ptr<const Point>;

const Address &addressOf(const Tag &tag)
{
    return tag->at.address;
}

// What one request may ask for together: tags of one station and area.
using GroupKey = std::tuple<int, Area>;
using Groups = std::map<GroupKey, std::vector<Tag>>;

bool isBefore(const Tag &left, const Tag &right)
{
    return std::make_tuple(addressOf(left).number, addressOf(left).bit) <
           std::make_tuple(addressOf(right).number, addressOf(right).bit);
}

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
    if (!typed->type)
        return typedItems(itemsOf(*address, registerKind), form);
    if (typed->count || (address->isBitArea() && !typed->type->isBit()))
        return Error{
            QStringLiteral("tag \"%1\": expected one value, and of %2 a bit").arg(text, address->areaName)};
    return typedItems(*address, *typed->type, 1, typed->order);
}

// Tags of each group in the order of their addresses.
Groups grouped(const QStringList &tags, ItemKind registerKind, ValueForm form, QStringList &skipped)
{
    Groups groups;
    for (const QString &text : tags) {
        const Result<TypedItems> tag = parseTag(text, registerKind, form);
        if (tag)
            groups[{tag->address.station, tag->address.area}].push_back(
                std::make_shared<const Point>(namelessPoint(*tag)));
        else
            skipped += tag.errorText();
    }
    for (auto &[key, group] : groups)
        std::sort(group.begin(), group.end(), isBefore);
    return groups;
}

using Position = std::vector<Tag>::const_iterator;

// Shows the tags in what is read from an offset on.
void show(Reading &reading, Position first, Position end)
{
    AreaRange range;
    range.first = reading.items.address.wireOffset();
    for (auto tag = first; tag != end; ++tag)
        reading.shown.push_back({*tag, 0, placeIn(range, (*tag)->at)});
}

// Bytes from the first tag on, as many as one request may need when every bit of them is used.
Reading bitReading(Position &tag, Position end)
{
    const Position firstTag = tag;
    const int first = std::min(addressOf(*tag).number, modbus::AddressSpace - modbus::ByteBits + 1);
    Reading reading;
    reading.items.address = addressOf(*tag);
    reading.items.kind = ByteItem;
    for (; tag != end && addressOf(*tag).number < first + modbus::MaxReadBits; ++tag)
        reading.items.count = (addressOf(*tag).number - first) / modbus::ByteBits + 1;
    const int excess = first - 1 + reading.items.count * modbus::ByteBits - modbus::AddressSpace;
    reading.items.address.number = first - std::max(excess, 0);
    show(reading, firstTag, tag);
    return reading;
}

// Registers that follow each other without a gap.
Reading registerReading(Position &tag, Position end)
{
    const Position firstTag = tag;
    const int first = addressOf(*tag).number;
    Reading reading;
    reading.items.address = addressOf(*tag);
    reading.items.address.bit = -1;
    reading.items.kind = WordItem;
    reading.items.count = 0;
    for (; tag != end && addressOf(*tag).number <= first + reading.items.count; ++tag) {
        const int position = addressOf(*tag).number - first;
        if (position >= modbus::MaxReadRegisters)
            break;
        reading.items.count = position + 1;
    }
    show(reading, firstTag, tag);
    return reading;
}

// Values of several registers need not lie a multiple of their size apart, and the driver knows the word
// order of some.
bool isReadAlone(const Tag &tag)
{
    return !addressOf(tag).isBitArea() && (tag->at.type.registers() > 1 || tag->at.type.isByte());
}

} // namespace

TagPlan planTags(const QStringList &tags, ItemKind registerKind, ValueForm form)
{
    TagPlan plan;
    for (auto &[key, group] : grouped(tags, registerKind, form, plan.skipped)) {
        std::stable_partition(group.begin(), group.end(), std::not_fn(isReadAlone));
        const auto alone = std::find_if(group.cbegin(), group.cend(), isReadAlone);
        const bool isBitArea = addressOf(group.front()).isBitArea();
        auto tag = group.cbegin();
        while (tag != alone)
            plan.readings.push_back(isBitArea ? bitReading(tag, alone) : registerReading(tag, alone));
        for (; tag != group.cend(); ++tag)
            plan.readings.push_back(readingsOf(*tag).front());
    }
    return plan;
}

std::vector<Reading> oneByOne(const Reading &reading)
{
    std::vector<Reading> readings;
    for (const Reading::Shown &shown : reading.shown)
        readings.push_back(readingsOf(shown.point).front());
    return readings;
}
