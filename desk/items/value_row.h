#pragma once

#include "desk/items/value_form.h"

/// One value as it was read.
struct ValueRow {
    int station = 1;
    QString address; ///< as people write it
    int offset = -1; ///< zero-based, on the wire; -1 when not known
    ItemKind kind = WordItem;
    ValueForm form = ValueForm::Unsigned;
    quint32 value = 0;
    // Of values that are read again and again:
    QString time;
    qint64 latency = -1; ///< of the request, in microseconds
};

/// The value in its form.
inline QString valueText(const ValueRow &row)
{
    return formatValue(row.value, row.kind, row.form);
}
