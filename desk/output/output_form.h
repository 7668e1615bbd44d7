#pragma once

#include "desk/items/value_row.h"

#include <QStringList>

#include <vector>

enum class OutputFormat { Text, Csv, Json };

/// "text", "csv", "json", in the order of the enumeration.
QStringList outputFormatNames();

/// Rows as lines of the format, aligned when it is text. CSV and text begin with a line of titles.
QStringList linesOf(const std::vector<ValueRow> &rows, OutputFormat format);

/// The same for rows with a time, which come one by one: the line of titles, empty when the format has none,
/// and the line of a row. Text is aligned for addresses of \a addressWidth characters.
QString seriesTitles(OutputFormat format);
QString seriesLine(const ValueRow &row, OutputFormat format, int addressWidth);
