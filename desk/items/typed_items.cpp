#include "desk/items/typed_items.h"

#include "drivers/tools/bit_array.h"

namespace
{

QString problemWith(const Address &address, const ValueType &type)
{
    const QString name = nameOf(type);
    if (address.isBitArea() && !type.isBit() && !type.isByte())
        return QStringLiteral("%1 holds bits; expected the type bit or u8, not %2")
            .arg(address.areaName, name);
    if (!address.isBitArea() && type.isBit() && address.bit < 0)
        return QStringLiteral("expected a bit after the register, such as %1.0").arg(address.text());
    if (address.bit >= 0 && !type.isBit())
        return QStringLiteral("a %1 has no bit number; expected the type bit").arg(name);
    if (address.highWordFirst && (type.isText() || type.registers() < 2))
        return QStringLiteral("SW marks values of several words; expected a type such as u32 or f64, not %1")
            .arg(name);
    return {};
}

Error at(const Address &address, const QString &problem)
{
    return {QStringLiteral("address \"%1\": %2").arg(address.text(), problem)};
}

Result<ByteOrder> orderOf(const Address &address, const ValueType &type, const QString &name)
{
    ByteOrder order = defaultOrder(type);
    order.isHighWordFirst = order.isHighWordFirst || address.highWordFirst;
    if (name.isEmpty())
        return order;
    Result<ByteOrder> named = parseOrder(name, type);
    if (!named || named->isHighWordFirst || !address.highWordFirst)
        return named;
    return Error{
        QStringLiteral("SW in the address says the high word first, and the order \"%1\" the low one")
            .arg(name)};
}

// Bytes as the driver has them: eight bits of an area, or the low byte of a register first.
bool isDriversByte(const Address &address, const ValueType &type, const ByteOrder &order)
{
    return type.isByte() && (address.isBitArea() || order.isLowByteFirst);
}

bool isDriversDoubleWord(const ValueType &type, const ByteOrder &order)
{
    return type.bits == 2 * modbus::RegisterBits && !type.isText() && !order.isLowByteFirst;
}

Items itemsOf(const TypedItems &typed)
{
    const Address &address = typed.address;
    Items items;
    items.address = address;
    items.address.highWordFirst = false;
    items.count = typed.count;
    if (typed.type.isBit()) {
        items.kind = BitItem;
    } else if (isDriversByte(address, typed.type, typed.order)) {
        items.kind = ByteItem;
    } else if (isDriversDoubleWord(typed.type, typed.order)) {
        items.kind = DoubleWordItem;
        items.address.highWordFirst = typed.order.isHighWordFirst;
    } else {
        items.kind = WordItem;
        items.count = typed.type.isByte() ? (typed.count + 1) / 2 : typed.count * typed.type.registers();
    }
    return items;
}

// What the driver has made of the registers: of a double word its low word is always the first.
ByteOrder orderInData(const TypedItems &typed)
{
    return typed.items.kind == DoubleWordItem ? ByteOrder() : typed.order;
}

} // namespace

QString TypedItems::typeText() const
{
    const bool isUsual = !isTyped || type.isBit() || order == defaultOrder(type);
    return isUsual ? kindName() : QStringLiteral("%1@%2").arg(kindName(), nameOf(order, type));
}

Address TypedItems::addressOf(int index) const
{
    if (isBitKind(items.kind) || isByteKind(items.kind))
        return items.addressOf(index);
    Address value = address;
    value.number += type.isByte() ? index / 2 : index * type.registers();
    return value;
}

QString TypedItems::label(int index) const
{
    if (items.isRaw())
        return items.label(index);
    if (!type.isByte() || address.isBitArea())
        return addressOf(index).label();
    const bool isLow = (index % 2 == 0) == order.isLowByteFirst;
    return addressOf(index).label() + (isLow ? QStringLiteral(" low") : QStringLiteral(" high"));
}

Result<TypedItems> typedItems(const Address &address, const ValueType &type, int count, const QString &order)
{
    const QString problem = problemWith(address, type);
    if (!problem.isEmpty())
        return at(address, problem);
    TypedItems typed;
    typed.address = address;
    typed.type = type;
    typed.count = count;
    const bool hasOrder = !type.isBit() && !address.isBitArea();
    if (!hasOrder && !order.isEmpty())
        return at(address, QStringLiteral("order \"%1\": bits have no order of bytes").arg(order));
    if (hasOrder) {
        const Result<ByteOrder> byteOrder = orderOf(address, type, order);
        if (!byteOrder)
            return at(address, byteOrder.errorText());
        typed.order = *byteOrder;
    }
    typed.isTyped = true;
    typed.items = itemsOf(typed);
    const Result<> check = checkItems(typed.items);
    if (!check)
        return check.error();
    return typed;
}

TypedItems typedItems(const Items &items, ValueForm form)
{
    TypedItems typed;
    typed.address = items.address;
    typed.items = items;
    typed.type = typeOf(items.kind, form);
    typed.order = defaultOrder(typed.type);
    typed.order.isHighWordFirst =
        typed.order.isHighWordFirst ||
        (items.kind == DoubleWordItem && (items.highWordFirst || items.address.highWordFirst));
    typed.count = items.count;
    return typed;
}

TypedItems partOf(const TypedItems &typed, int first, int count)
{
    TypedItems part = typed;
    part.address = typed.addressOf(first);
    part.count = count;
    const bool isPacked = typed.type.isByte() && typed.items.kind == WordItem;
    const int perValue = typed.items.kind == WordItem ? typed.type.registers() : 1;
    part.items.address = typed.items.addressOf(isPacked ? first / 2 : first * perValue);
    part.items.count = isPacked ? (count + 1) / 2 : count * perValue;
    return part;
}

Result<> checkWritable(const TypedItems &typed)
{
    if (!typed.type.isByte() || typed.address.isBitArea() || typed.count % 2 == 0)
        return {};
    return at(typed.address, QStringLiteral("%1 is half a register, and registers are written whole; "
                                            "expected an even count such as %1x%2")
                                 .arg(nameOf(typed.type))
                                 .arg(typed.count + 1));
}

QByteArray dataOf(const std::vector<QByteArray> &values, const TypedItems &typed)
{
    if (!isBitKind(typed.items.kind) && !isByteKind(typed.items.kind))
        return driverDataOf(registersOf(values, typed.type, orderInData(typed)));
    if (isByteKind(typed.items.kind)) {
        QByteArray data;
        for (const QByteArray &value : values)
            data += value;
        return data;
    }
    const int count = static_cast<int>(values.size());
    QByteArray data(modbus::bytesOfBits(count), '\0');
    for (int i = 0; i < count; ++i)
        setBit(data, i, values[static_cast<size_t>(i)].at(0) != 0);
    return data;
}
