#pragma once

#include "desk/output/fields.h"
#include "desk/readings/value_row.h"

/// Rows as lines of the format. CSV and text begin with a line of titles; text is aligned, and leaves out
/// what has failed. Where any of the rows has a name there are columns for what points have.
QStringList linesOf(const std::vector<ValueRow> &rows, OutputFormat format);

/// The same for rows with a time, which come one by one.
struct SeriesForm {
    OutputFormat format = OutputFormat::Text;
    bool hasNames = false; ///< whether there are columns for what points have
    int labelWidth = 0;    ///< characters to which text is aligned
};
/// The line of titles, empty when the format has none, and the line of a row.
QString seriesTitles(const SeriesForm &form);
QString seriesLine(const ValueRow &row, const SeriesForm &form);
