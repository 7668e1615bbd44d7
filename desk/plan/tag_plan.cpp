#include "desk/plan/tag_plan.h"

#include <algorithm>
#include <functional>
#include <map>
#include <tuple>

namespace
{

struct Tag {
    QString text;
    Address address;
};

// What one request may ask for together: tags of one station and area.
using GroupKey = std::tuple<int, Area>;
using Groups = std::map<GroupKey, std::vector<Tag>>;

bool isBefore(const Tag &left, const Tag &right)
{
    return std::make_tuple(left.address.number, left.address.bit) <
           std::make_tuple(right.address.number, right.address.bit);
}

// Tags of each group in the order of their addresses.
Groups grouped(const QStringList &tags, QStringList &skipped)
{
    Groups groups;
    for (const QString &text : tags) {
        const Result<Address> address = parseAddress(text);
        if (address)
            groups[{address->station, address->area}].push_back({text, *address});
        else
            skipped += address.errorText();
    }
    for (auto &[key, group] : groups)
        std::sort(group.begin(), group.end(), isBefore);
    return groups;
}

using Position = std::vector<Tag>::const_iterator;

// Bytes from the first tag on, as many as one request may need when every bit of them is used.
Reading bitReading(Position &tag, Position end, ValueForm form)
{
    const int first = std::min(tag->address.number, modbus::AddressSpace - modbus::ByteBits + 1);
    Reading reading;
    reading.items.address = tag->address;
    reading.items.address.number = first;
    reading.items.kind = ByteItem;
    for (; tag != end && tag->address.number < first + modbus::MaxReadBits; ++tag) {
        const int position = tag->address.number - first;
        reading.items.count = position / modbus::ByteBits + 1;
        reading.shown.push_back({tag->text, tag->address.wireOffset(), BitItem, form, position});
    }
    const int excess = first - 1 + reading.items.count * modbus::ByteBits - modbus::AddressSpace;
    if (excess > 0) {
        reading.items.address.number -= excess;
        for (Reading::Shown &shown : reading.shown)
            shown.position += excess;
    }
    return reading;
}

// Registers that follow each other without a gap.
Reading registerReading(Position &tag, Position end, ValueForm form)
{
    const int first = tag->address.number;
    Reading reading;
    reading.items.address = tag->address;
    reading.items.address.bit = -1;
    reading.items.kind = WordItem;
    reading.items.count = 0;
    for (; tag != end && tag->address.number <= first + reading.items.count; ++tag) {
        const int position = tag->address.number - first;
        if (position >= modbus::MaxReadRegisters)
            break;
        const int bit = tag->address.bit;
        reading.items.count = position + 1;
        reading.shown.push_back({tag->text, tag->address.wireOffset(), bit < 0 ? WordItem : BitItem, form,
                                 bit < 0 ? position : position * modbus::RegisterBits + bit});
    }
    return reading;
}

// Double words need not lie an even number of registers apart, and the driver knows their word order.
Reading doubleWordReading(const Tag &tag, ValueForm form)
{
    Reading reading;
    reading.items.address = tag.address;
    reading.items.kind = DoubleWordItem;
    reading.shown.push_back({tag.text, tag.address.wireOffset(), DoubleWordItem, form, 0});
    return reading;
}

} // namespace

TagPlan planTags(const QStringList &tags, ItemKind registerKind, ValueForm form)
{
    TagPlan plan;
    for (auto &[key, group] : grouped(tags, plan.skipped)) {
        const auto isDouble = [&](const Tag &tag) {
            return !tag.address.isBitArea() && tag.address.bit < 0 &&
                   (registerKind == DoubleWordItem || tag.address.highWordFirst);
        };
        std::stable_partition(group.begin(), group.end(), std::not_fn(isDouble));
        const auto doubles = std::find_if(group.cbegin(), group.cend(), isDouble);
        const bool isBitArea = group.front().address.isBitArea();
        auto tag = group.cbegin();
        while (tag != doubles)
            plan.readings.push_back(isBitArea ? bitReading(tag, doubles, form)
                                              : registerReading(tag, doubles, form));
        for (; tag != group.cend(); ++tag)
            plan.readings.push_back(doubleWordReading(*tag, form));
    }
    return plan;
}

std::vector<Reading> oneByOne(const Reading &reading)
{
    std::vector<Reading> readings;
    for (const Reading::Shown &shown : reading.shown) {
        Reading single;
        single.items.address = parseAddress(shown.address).valueOr(reading.items.address);
        single.items.kind = shown.kind;
        single.shown = {shown};
        single.shown.front().position = 0;
        readings.push_back(single);
    }
    return readings;
}
