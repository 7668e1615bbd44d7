#pragma once

#include "desk/log/change_filter.h"
#include "desk/output/output_form.h"
#include "desk/readings/readings.h"

/// How values that are read again and again become lines.
struct RowSeriesForm {
    OutputFormat format = OutputFormat::Text;
    bool isWide = false;            ///< a row a round, a column a value; not as text
    std::optional<double> deadband; ///< nothing but changes, of numbers by more than this
};

/// Makes lines of rows as they come.
class RowSeries
{
public:
    RowSeries(const std::vector<Reading> &readings, const RowSeriesForm &form);

    /// The line of titles; empty when the format has none.
    QString titles() const;
    /// The lines of what one reading has brought, or failed to bring.
    QStringList add(size_t reading, const std::vector<ValueRow> &rows);
    /// What lines there are at the end of a round.
    QStringList endRound();

private:
    Fields wideFields() const;

    RowSeriesForm m_form;
    SeriesForm m_lines;
    std::vector<size_t> m_first; // of each reading, counted over all values
    QStringList m_labels;        // of all values, each its own
    ChangeFilter m_filter;
    // Of a round:
    std::vector<ValueRow> m_rows;
    bool m_hasChanged = false;
};
