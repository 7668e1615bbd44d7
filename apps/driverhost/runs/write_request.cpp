#include "apps/driverhost/runs/write_request.h"

namespace
{

QString problemWith(const Items &items)
{
    if (isInputArea(items.address.area))
        return QStringLiteral("%1 is an input and cannot be written").arg(items.address.areaName);
    if (items.address.isBitArea() && isByteKind(items.kind))
        return QStringLiteral("%1 is written bit by bit; expected the kind bit").arg(items.address.areaName);
    return {};
}

} // namespace

WriteRequest writeRequest(const QStringList &words, const ItemOptions &options, CommandLine &line)
{
    WriteRequest request;
    if (words.size() < 2) {
        line.addError(QStringLiteral("expected an address and at least one value"));
        return request;
    }
    ItemOptions itemOptions = options;
    itemOptions.count = words.size() - 1;
    request.items = itemsAt(words.first(), itemOptions, line);
    request.form = options.form;
    for (const QString &word : words.mid(1)) {
        const Result<quint32> value = parseValue(word, request.items.kind, options.form);
        if (!value)
            line.addError(value.errorText());
        request.values.push_back(value.valueOr(0));
    }
    const QString problem = request.items.isRaw() ? QString() : problemWith(request.items);
    if (!problem.isEmpty())
        line.addError(QStringLiteral("address \"%1\": %2").arg(words.first(), problem));
    return request;
}

// The driver ends at the first request that nobody answers: a broadcast is one request.
QString problemWithBroadcast(const Items &items)
{
    if (!items.isRaw() && !items.address.isBitArea() && isBitKind(items.kind))
        return QStringLiteral("bits of a register are read before they are written, and nobody replies to "
                              "station 0");
    if (items.address.areaName.startsWith(QLatin1String("FN")) && extentOf(items) > 1)
        return QStringLiteral("%1 takes a request for each item, and to station 0 only the first would be "
                              "sent; use %2")
            .arg(items.address.areaName, items.address.areaName.right(2));
    return {};
}
