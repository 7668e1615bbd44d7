#include "desk/items/items.h"

#include "desk/items/number_text.h"

#include <algorithm>

namespace
{

QString problemWith(const Items &items)
{
    const Address &address = items.address;
    if (items.count < 1)
        return QStringLiteral("the count must be 1 or more");
    if (address.isBitArea() && !isBitKind(items.kind) && !isByteKind(items.kind))
        return QStringLiteral("%1 holds bits; expected the kind bit or byte").arg(address.areaName);
    if (!address.isBitArea() && isBitKind(items.kind) && address.bit < 0)
        return QStringLiteral("expected a bit after the register, such as %1.0").arg(address.text());
    if (address.bit >= 0 && !isBitKind(items.kind))
        return QStringLiteral("a %1 has no bit number; expected the kind bit").arg(nameOf(items.kind));
    if (address.highWordFirst && items.kind != DoubleWordItem)
        return QStringLiteral("SW marks double words; expected the kind dword");
    if (address.wireOffset() + extentOf(items) > modbus::AddressSpace)
        return QStringLiteral("%1 of kind %2 would end beyond %3%4")
            .arg(counted(items.count, "item"), nameOf(items.kind), address.areaName,
                 QString::number(modbus::AddressSpace));
    return {};
}

} // namespace

qint64 extentOf(const Items &items)
{
    const qint64 count = items.count;
    if (items.address.isBitArea())
        return isByteKind(items.kind) ? count * modbus::ByteBits : count;
    if (isBitKind(items.kind))
        return (std::max(items.address.bit, 0) + count + modbus::RegisterBits - 1) / modbus::RegisterBits;
    if (isByteKind(items.kind))
        return (count + 1) / 2;
    return items.kind == DoubleWordItem ? count * 2 : count;
}

Address Items::addressOf(int index) const
{
    Address item = address;
    if (address.isBitArea()) {
        item.number += isByteKind(kind) ? index * modbus::ByteBits : index;
    } else if (isBitKind(kind)) {
        item.number += (address.bit + index) / modbus::RegisterBits;
        item.bit = (address.bit + index) % modbus::RegisterBits;
    } else if (isByteKind(kind)) {
        item.number += index / 2;
    } else {
        item.number += kind == DoubleWordItem ? index * 2 : index;
    }
    return item;
}

QString Items::label(int index) const
{
    if (isRaw())
        return index == 0 ? rawText : QStringLiteral("%1 +%2").arg(rawText, QString::number(index));
    QString text = addressOf(index).label();
    if (!isByteKind(kind) || address.isBitArea())
        return text;
    return text + (index % 2 == 0 ? QStringLiteral(" low") : QStringLiteral(" high"));
}

CommunicatorCommand Items::command() const
{
    CommunicatorCommand command;
    command.dataType = kind;
    command.count = count;
    Address whole = address;
    whole.highWordFirst = whole.highWordFirst || highWordFirst;
    command.address = isRaw() ? rawText : whole.text();
    return command;
}

int stationOf(const Items &items, int linkStation)
{
    return items.address.station < 0 ? linkStation : items.address.station;
}

Result<int> countIn(const AddressSpan &span, int bits, const QString &name)
{
    const int size = span.last - span.first.number + 1;
    const int bitsOfOne = span.first.isBitArea() ? 1 : modbus::RegisterBits;
    if (size * bitsOfOne % bits == 0)
        return size * bitsOfOne / bits;
    return Error{QStringLiteral("\"%1..%2\": a %3 takes %4, and these are %5")
                     .arg(span.first.label(), QString::number(span.last), name,
                          counted(bits / bitsOfOne, span.first.isBitArea() ? "bit" : "register"),
                          QString::number(size))};
}

Result<> checkItems(const Items &items)
{
    const QString problem = items.isRaw() ? QString() : problemWith(items);
    if (problem.isEmpty())
        return {};
    return Error{QStringLiteral("address \"%1\": %2").arg(items.address.label(), problem)};
}
