#include "desk/project/needed_tags.h"

#include <QRegularExpression>

#include <algorithm>

namespace
{

// What the driver takes for the number of a text that may be anything.
int numberInRawText(const QString &text)
{
    static const QRegularExpression form(QStringLiteral("^(?:[Ff]..)?[A-Za-z]*(\\d+)"));
    bool isNumber = false;
    const uint number = form.match(text).captured(1).toUInt(&isNumber);
    return isNumber ? static_cast<int>((number - 1) % modbus::AddressSpace + 1) : modbus::AddressSpace;
}

} // namespace

QStringList neededTags(const Items &items, int station)
{
    if (!isByteKind(items.kind) || (!items.isRaw() && !items.address.isBitArea()))
        return {};
    QStringList areas;
    if (items.isRaw() || items.address.area == Area::Coils)
        areas += QStringLiteral("DO");
    if (items.isRaw() || items.address.area == Area::DiscreteInputs)
        areas += QStringLiteral("DI");
    const int first = items.isRaw() ? numberInRawText(items.rawText) : items.address.number;
    const int last = static_cast<int>(
        std::min<qint64>(first + qint64(items.count) * modbus::ByteBits - 1, modbus::AddressSpace));
    QStringList tags;
    for (const QString &area : qAsConst(areas)) {
        for (int number = first; number <= last; ++number)
            tags += QStringLiteral("%1-%2%3").arg(QString::number(station), area, QString::number(number));
    }
    return tags;
}
