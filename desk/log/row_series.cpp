#include "desk/log/row_series.h"

#include <QJsonObject>
#include <QSet>

#include <algorithm>

namespace
{

const char TimeTitle[] = "time";

// What is called alike, by address and type.
QString distinctLabel(const Reading::Shown &shown, const QSet<QString> &others)
{
    QString label = labelOf(shown);
    if (others.contains(label) || label == QLatin1String(TimeTitle))
        label += QLatin1Char(':') + shown.point->at.kindName();
    for (int i = 2; others.contains(label); ++i)
        label = QStringLiteral("%1 (%2)").arg(labelOf(shown), QString::number(i));
    return label;
}

std::optional<double> numberOf(const ValueRow &row)
{
    return row.value.number.isDouble() ? std::optional<double>(row.value.number.toDouble()) : std::nullopt;
}

} // namespace

RowSeries::RowSeries(const std::vector<Reading> &readings, const RowSeriesForm &form)
    : m_form(form), m_filter(form.deadband.value_or(0))
{
    m_lines.format = form.format;
    QSet<QString> labels;
    for (const Reading &reading : readings) {
        m_first.push_back(static_cast<size_t>(m_labels.size()));
        for (const Reading::Shown &shown : reading.shown) {
            m_labels += distinctLabel(shown, labels);
            labels += m_labels.last();
            m_lines.labelWidth = std::max(m_lines.labelWidth, static_cast<int>(labelOf(shown).size()));
            m_lines.hasNames = m_lines.hasNames || !shown.point->name.isEmpty();
        }
    }
    m_rows.resize(static_cast<size_t>(m_labels.size()));
}

QString RowSeries::titles() const
{
    return m_form.isWide ? titleLine(wideFields(), m_form.format) : seriesTitles(m_lines);
}

QStringList RowSeries::add(size_t reading, const std::vector<ValueRow> &rows)
{
    QStringList lines;
    for (size_t i = 0; i < rows.size(); ++i) {
        const size_t index = m_first[reading] + i;
        const ValueRow &row = rows[i];
        const bool passes = !m_form.deadband || m_filter.passes(index, row.value.raw, numberOf(row));
        m_hasChanged = m_hasChanged || passes;
        m_rows[index] = row;
        if (passes && !m_form.isWide)
            lines += seriesLine(row, m_lines);
    }
    return lines;
}

QStringList RowSeries::endRound()
{
    const bool hasRow = m_form.isWide && m_hasChanged;
    m_hasChanged = false;
    return hasRow ? QStringList{fieldLine(wideFields(), m_form.format)} : QStringList();
}

// The time of a round is that of its first value. JSON has the values apart, where their names cannot meet
// others.
Fields RowSeries::wideFields() const
{
    Fields fields{{TimeTitle, m_rows.empty() ? QJsonValue() : QJsonValue(m_rows.front().time)}};
    QJsonObject values;
    for (int i = 0; i < m_labels.size(); ++i) {
        const ValueRow &row = m_rows[static_cast<size_t>(i)];
        values.insert(m_labels.at(i), row.failure ? QJsonValue() : row.value.number);
        if (m_form.format == OutputFormat::Csv)
            fields.push_back(Field::column(m_labels.at(i), row.value.text));
    }
    if (m_form.format == OutputFormat::Json)
        fields.push_back({"values", values});
    return fields;
}
