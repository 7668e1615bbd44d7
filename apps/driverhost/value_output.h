#pragma once

#include "items.h"
#include "values.h"

#include <QStringList>

enum class OutputFormat { Text, Csv, Json };

/// "text", "csv", "json", in the order of the enumeration.
QStringList outputFormatNames();

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

/// Rows as lines of the format, aligned when it is text. CSV and text begin with a line of titles.
QStringList linesOf(const std::vector<ValueRow> &rows, OutputFormat format);

/// The same for rows with a time, which come one by one: the line of titles, empty when the format has none,
/// and the line of a row. Text is aligned for addresses of \a addressWidth characters.
QString seriesTitles(OutputFormat format);
QString seriesLine(const ValueRow &row, OutputFormat format, int addressWidth);

/// What the "value" column holds.
QString valueText(const ValueRow &row);

/// Writes lines to standard output at once; false when nobody reads it any more.
bool print(const QStringList &lines);
