#include "desk/items/item_kind.h"

namespace
{

struct NamedKind {
    const char *name;
    ItemKind kind;
};

const NamedKind NamedKinds[] = {{"bit", BitItem},          {"byte", ByteItem},   {"word", WordItem},
                                {"dword", DoubleWordItem}, {"block", BlockItem}, {"bit2", SecondBitItem}};

} // namespace

std::optional<ItemKind> kindNamed(const QString &name)
{
    for (const NamedKind &named : NamedKinds) {
        if (name == QLatin1String(named.name))
            return named.kind;
    }
    return std::nullopt;
}

QString nameOf(ItemKind kind)
{
    for (const NamedKind &named : NamedKinds) {
        if (kind == named.kind)
            return QLatin1String(named.name);
    }
    return QString::number(kind);
}

ItemKind defaultKind(const Address &address)
{
    return address.isBitArea() || address.bit >= 0 ? BitItem : WordItem;
}

bool isBitKind(ItemKind kind)
{
    return kind == BitItem || kind == SecondBitItem;
}

bool isByteKind(ItemKind kind)
{
    return kind == ByteItem || kind == BlockItem;
}

int widthOf(ItemKind kind)
{
    if (isBitKind(kind))
        return 1;
    if (isByteKind(kind))
        return modbus::ByteBits;
    return kind == DoubleWordItem ? 2 * modbus::RegisterBits : modbus::RegisterBits;
}
