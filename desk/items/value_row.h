#pragma once

#include "desk/items/value_form.h"

/// Why there is no value.
struct RowFailure {
    QString kind; ///< one word for programs
    QString text; ///< the driver's
};

/// One value as it was read, or why it could not be.
struct ValueRow {
    /// What an earlier round has read.
    struct Earlier {
        quint32 value = 0;
        QString time;
    };

    int station = 1;
    QString address; ///< as people write it
    int offset = -1; ///< zero-based, on the wire; -1 when not known
    ItemKind kind = WordItem;
    ValueForm form = ValueForm::Unsigned;
    quint32 value = 0; ///< no value when there is a failure
    std::optional<RowFailure> failure;
    // Of values that are read again and again:
    QString time;
    qint64 latency = -1;  ///< of the reply, in microseconds; -1 when none came
    qint64 duration = -1; ///< of the whole transaction, all attempts and pauses, in microseconds
    int attempts = 0;
    std::optional<Earlier> earlier; ///< only with a failure
};

/// The value in its form.
inline QString valueText(const ValueRow &row)
{
    return formatValue(row.value, row.kind, row.form);
}
