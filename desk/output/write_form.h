#pragma once

#include "desk/output/fields.h"
#include "desk/readings/value_row.h"

/// What became of one item that was to be written.
struct WrittenRow {
    ValueRow item; ///< its value is what is known of the slave; none with a failure
    PointValue wanted;
    bool isKnown = false; ///< whether the slave has confirmed the value, or given it back
    QString result; ///< "written", "verified", "different", "sent", "unconfirmed", "refused" or "not-sent"
};

/// The rows in a format for programs.
QStringList linesOf(const std::vector<WrittenRow> &rows, OutputFormat format);

/// One frame that would be sent.
struct FrameRow {
    int station = 0;
    QString bytes;
    QString meaning;
};

/// The frames in any format.
QStringList linesOf(const std::vector<FrameRow> &rows, OutputFormat format);
