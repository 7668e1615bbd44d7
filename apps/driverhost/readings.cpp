#include "readings.h"

#include "messages.h"

Reading readingOf(const Items &items, ValueForm form)
{
    Reading reading{items, {}};
    const QString prefix =
        items.address.station < 0 ? QString() : QString::number(items.address.station) + QLatin1Char('-');
    for (int i = 0; i < items.count; ++i) {
        const int offset = items.isRaw() ? -1 : items.addressOf(i).wireOffset();
        reading.shown.push_back({prefix + items.label(i), offset, items.kind, form, i});
    }
    return reading;
}

std::vector<Reading> readingsOf(const std::vector<Items> &all, ValueForm form)
{
    std::vector<Reading> readings;
    for (const Items &items : all) {
        const std::vector<Items> requests = requestsFor(items);
        if (requests.size() > 1)
            tell(QStringLiteral("%1: %2 items are more than one request carries; reading them in %3 portions")
                     .arg(items.label(0), QString::number(items.count), QString::number(requests.size())));
        for (const Items &request : requests)
            readings.push_back(readingOf(request, form));
    }
    return readings;
}

std::vector<ValueRow> rowsOf(const Reading &reading, const QByteArray &data, int station)
{
    std::vector<ValueRow> rows;
    for (const Reading::Shown &shown : reading.shown) {
        const quint32 value = valueAt(data, shown.kind, shown.position);
        rows.push_back({station, shown.address, shown.offset, shown.kind, shown.form, value, {}, -1});
    }
    return rows;
}
