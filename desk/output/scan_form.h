#pragma once

#include "desk/output/fields.h"

/// What a scan has found, in formats for programs.

struct StationRow {
    int station = 0;
    QString result;  ///< "answers", "refuses", "disturbed" or "echo"
    QString failure; ///< one word; empty when the station answers
    QString error;   ///< the driver's text
};
QStringList linesOf(const std::vector<StationRow> &rows, OutputFormat format);

/// Addresses that a slave has, numbers counting from 1.
struct RangeRow {
    int station = 0;
    QString address; ///< "HR1..10"
    int first = 0;
    int last = 0;
};
QStringList linesOf(const std::vector<RangeRow> &rows, OutputFormat format);
