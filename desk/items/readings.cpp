#include "desk/items/readings.h"

#include "desk/items/item_data.h"
#include "desk/items/portions.h"

namespace
{

ValueRow rowOf(const Reading::Shown &shown, int station)
{
    ValueRow row;
    row.station = station;
    row.address = shown.address;
    row.offset = shown.offset;
    row.kind = shown.kind;
    row.form = shown.form;
    return row;
}

} // namespace

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
        rows.push_back(rowOf(shown, station));
        rows.back().value = valueAt(data, shown.kind, shown.position);
    }
    return rows;
}

std::vector<ValueRow> failedRowsOf(const Reading &reading, const RowFailure &failure, int station)
{
    std::vector<ValueRow> rows;
    for (const Reading::Shown &shown : reading.shown) {
        rows.push_back(rowOf(shown, station));
        rows.back().failure = failure;
    }
    return rows;
}
