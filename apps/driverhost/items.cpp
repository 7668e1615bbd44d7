#include "items.h"

#include "drivers/tools/bit_array.h"

#include <QRegularExpression>
#include <QStringList>

#include <algorithm>

namespace
{

const int AreaSize = 65536;
const int RegisterBits = 16;
const int ByteBits = 8;

// What the driver takes for the number of a text that may be anything.
int numberInRawText(const QString &text)
{
    static const QRegularExpression form(QStringLiteral("^(?:[Ff]..)?[A-Za-z]*(\\d+)"));
    bool isNumber = false;
    const uint number = form.match(text).captured(1).toUInt(&isNumber);
    return isNumber ? static_cast<int>((number - 1) % AreaSize + 1) : AreaSize;
}

// What one request carries. The driver would ask for 2008 bits; slaves need not answer more than 2000
// ("MODBUS Application Protocol V1.1b3", 6.1).
const int MostRegisters = 125;
const int MostBits = 2000;

struct NamedKind {
    const char *name;
    ItemKind kind;
};

const NamedKind NamedKinds[] = {{"bit", BitItem},          {"byte", ByteItem},   {"word", WordItem},
                                {"dword", DoubleWordItem}, {"block", BlockItem}, {"bit2", SecondBitItem}};

int mostInOneRequest(const Items &items)
{
    if (items.address.isBitArea())
        return isByteKind(items.kind) ? MostBits / ByteBits : MostBits;
    // Whole registers a portion, so that each begins at the same bit.
    if (isBitKind(items.kind))
        return (MostRegisters - 1) * RegisterBits;
    if (isByteKind(items.kind))
        return MostRegisters * 2;
    return items.kind == DoubleWordItem ? MostRegisters / 2 : MostRegisters;
}

QString problemWith(const Items &items)
{
    const Address &address = items.address;
    if (items.count < 1)
        return QStringLiteral("the count must be 1 or more");
    if (address.isBitArea() && !isBitKind(items.kind) && !isByteKind(items.kind))
        return QStringLiteral("%1 holds bits; expected the kind bit or byte").arg(address.areaName);
    if (!address.isBitArea() && isBitKind(items.kind) && address.bit < 0)
        return QStringLiteral("expected a bit behind the register, such as %1.0").arg(address.text());
    if (address.bit >= 0 && !isBitKind(items.kind))
        return QStringLiteral("a %1 has no bit number; expected the kind bit").arg(nameOf(items.kind));
    if (address.highWordFirst && items.kind != DoubleWordItem)
        return QStringLiteral("SW marks double words; expected the kind dword");
    if (address.wireOffset() + extentOf(items) > AreaSize)
        return QStringLiteral("%1 items of kind %2 end beyond %3%4")
            .arg(QString::number(items.count), nameOf(items.kind), address.areaName,
                 QString::number(AreaSize));
    return {};
}

} // namespace

qint64 extentOf(const Items &items)
{
    const qint64 count = items.count;
    if (items.address.isBitArea())
        return isByteKind(items.kind) ? count * ByteBits : count;
    if (isBitKind(items.kind))
        return (std::max(items.address.bit, 0) + count + RegisterBits - 1) / RegisterBits;
    if (isByteKind(items.kind))
        return (count + 1) / 2;
    return items.kind == DoubleWordItem ? count * 2 : count;
}

Address Items::addressOf(int index) const
{
    Address item = address;
    if (address.isBitArea()) {
        item.number += isByteKind(kind) ? index * ByteBits : index;
    } else if (isBitKind(kind)) {
        item.number += (address.bit + index) / RegisterBits;
        item.bit = (address.bit + index) % RegisterBits;
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
    QString text = addressOf(index).text();
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

ItemKind usualKind(const Address &address)
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

int stationOf(const Items &items, int usual)
{
    return items.address.station < 0 ? usual : items.address.station;
}

bool checkItems(const Items &items, QString &error)
{
    if (items.isRaw())
        return true;
    const QString problem = problemWith(items);
    if (problem.isEmpty())
        return true;
    error = QStringLiteral("address \"%1\": %2").arg(items.address.text(), problem);
    return false;
}

std::vector<Items> requestsFor(const Items &items)
{
    if (items.isRaw())
        return {items};
    std::vector<Items> requests;
    const int most = mostInOneRequest(items);
    for (int first = 0; first < items.count; first += most) {
        Items request = items;
        request.address = items.addressOf(first);
        request.count = std::min(most, items.count - first);
        requests.push_back(request);
    }
    return requests;
}

QStringList tagsFor(const Items &items, int station)
{
    if (!isByteKind(items.kind) || (!items.isRaw() && !items.address.isBitArea()))
        return {};
    QStringList areas;
    if (items.isRaw() || items.address.area == Area::Coils)
        areas += QStringLiteral("DO");
    if (items.isRaw() || items.address.area == Area::DiscreteInputs)
        areas += QStringLiteral("DI");
    const int first = items.isRaw() ? numberInRawText(items.rawText) : items.address.number;
    const int last = static_cast<int>(std::min<qint64>(first + qint64(items.count) * ByteBits - 1, AreaSize));
    QStringList tags;
    for (const QString &area : qAsConst(areas)) {
        for (int number = first; number <= last; ++number)
            tags += QStringLiteral("%1-%2%3").arg(QString::number(station), area, QString::number(number));
    }
    return tags;
}

quint32 valueAt(const QByteArray &data, ItemKind kind, int position)
{
    if (isBitKind(kind))
        return getBit(data, position) ? 1 : 0;
    const int size = GetSafeDataLen(CommunicatorCommand{kind, 1, QString()});
    quint32 value = 0;
    for (int byte = size - 1; byte >= 0; --byte)
        value = value << ByteBits | static_cast<unsigned char>(data.at(position * size + byte));
    return value;
}

std::vector<quint32> valuesIn(const QByteArray &data, const Items &items)
{
    std::vector<quint32> values;
    values.reserve(static_cast<size_t>(qMax(items.count, 0)));
    for (int i = 0; i < items.count; ++i)
        values.push_back(valueAt(data, items.kind, i));
    return values;
}

QByteArray dataOf(const std::vector<quint32> &values, ItemKind kind)
{
    const CommunicatorCommand command{kind, static_cast<int>(values.size()), QString()};
    QByteArray data(GetSafeDataLen(command), '\0');
    const int size = values.empty() ? 0 : data.size() / static_cast<int>(values.size());
    for (int i = 0; i < command.count; ++i) {
        const quint32 value = values[static_cast<size_t>(i)];
        if (isBitKind(kind)) {
            setBit(data, i, value != 0);
            continue;
        }
        for (int byte = 0; byte < size; ++byte)
            data[i * size + byte] = static_cast<char>(value >> (ByteBits * byte));
    }
    return data;
}
