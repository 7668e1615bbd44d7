#pragma once

#include "desk/items/value_row.h"
#include "desk/output/fields.h"

/// Rows as lines of the format. CSV and text begin with a line of titles; text is aligned, and leaves out
/// what has failed.
QStringList linesOf(const std::vector<ValueRow> &rows, OutputFormat format);

/// The same for rows with a time, which come one by one: the line of titles, empty when the format has none,
/// and the line of a row. Text is aligned for addresses of \a addressWidth characters.
QString seriesTitles(OutputFormat format);
QString seriesLine(const ValueRow &row, OutputFormat format, int addressWidth);
