#include "desk/items/readings.h"

#include "desk/items/item_data.h"
#include "desk/items/portions.h"

Reading readingOf(const Items &items, ValueForm form)
{
    Reading reading{items, {}};
    for (int i = 0; i < items.count; ++i) {
        const int offset = items.isRaw() ? -1 : items.addressOf(i).wireOffset();
        reading.shown.push_back({items.label(i), offset, items.kind, form, i});
    }
    return reading;
}

std::vector<Reading> readingsOf(const std::vector<Items> &all, ValueForm form)
{
    std::vector<Reading> readings;
    for (const Items &items : all) {
        for (const Items &portion : portionsOf(items))
            readings.push_back(readingOf(portion, form));
    }
    return readings;
}

QString labelOf(const Reading &reading)
{
    return reading.shown.empty() ? reading.items.label(0) : reading.shown.front().address;
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
