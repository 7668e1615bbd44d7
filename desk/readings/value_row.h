#pragma once

#include "desk/points/point.h"

/// Why there is no value.
struct RowFailure {
    QString kind;        ///< one word for programs
    QString text;        ///< the driver's
    QString advice = {}; ///< what to look at next
};

/// One value as it was read, or why it could not be.
struct ValueRow {
    /// What an earlier round has read.
    struct Earlier {
        PointValue value;
        QString time;
    };

    int station = 1;
    QString name;    ///< of the point; empty when it has none
    QString address; ///< as people write it
    int offset = -1; ///< zero-based, on the wire; -1 when not known
    QString kind;    ///< "word", or a type such as "f32"
    QString type;    ///< the same for people, with an order that is not the default, "f32@ABCD"
    QString unit;
    PointValue value; ///< empty when there is a failure
    std::optional<RowFailure> failure;
    // Of values that are read again and again:
    QString time;
    qint64 latency = -1;  ///< of the reply, in microseconds; -1 when none came
    qint64 duration = -1; ///< of the whole transaction, all attempts and pauses, in microseconds
    int attempts = 0;
    std::optional<Earlier> earlier; ///< only with a failure
};

/// What people call the row's value: its name, or its address.
inline QString labelOf(const ValueRow &row)
{
    return row.name.isEmpty() ? row.address : row.name;
}
