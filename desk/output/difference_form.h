#pragma once

#include "desk/output/fields.h"
#include "desk/snapshot/comparison.h"

/// An address that differs from a snapshot.
struct DifferenceRow {
    Difference difference;
    QString result; ///< what became of putting it back; empty where nobody wanted to
};

/// The rows in a format for programs.
QStringList linesOf(const std::vector<DifferenceRow> &rows, bool hasResults, OutputFormat format);
