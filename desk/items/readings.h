#pragma once

#include "desk/items/items.h"
#include "desk/items/value_row.h"

/// One request to the driver, and the values that are shown of what it brings. These need not be the items
/// that were asked for: bits of a project are read as bytes and shown one by one.
struct Reading {
    struct Shown {
        QString address;
        int offset = -1; ///< on the wire; -1 when not known
        ItemKind kind = WordItem;
        ValueForm form = ValueForm::Unsigned;
        int position = 0; ///< in items of its kind from the beginning of the data
    };

    Items items;
    std::vector<Shown> shown;
};

/// Shows every item, with its station where the address names one.
Reading readingOf(const Items &items, ValueForm form);
/// The readings of all items, in portions that one request each can carry.
std::vector<Reading> readingsOf(const std::vector<Items> &all, ValueForm form);

/// What messages call the reading: the first address that its table shows.
QString labelOf(const Reading &reading);

/// What the data that the driver read for \a reading shows. It came from \a station.
std::vector<ValueRow> rowsOf(const Reading &reading, const QByteArray &data, int station);
/// The same values as rows that say why there are none.
std::vector<ValueRow> failedRowsOf(const Reading &reading, const RowFailure &failure, int station);
