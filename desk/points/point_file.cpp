#include "desk/points/point_file.h"

#include "desk/points/csv_table.h"
#include "desk/points/point_row.h"
#include "desk/readable_file.h"

#include <algorithm>
#include <map>

namespace
{

QString titleOf(Column column)
{
    return columnTitles().at(static_cast<int>(column));
}

class TableReader
{
public:
    PointTable read(const CsvTable &table)
    {
        if (table.rows.empty()) {
            fail(1, QStringLiteral("expected a row of titles: ") + columnTitles().join(QStringLiteral(", ")));
            return m_table;
        }
        readTitles(table.rows.front());
        if (!m_table.problems.isEmpty())
            return m_table;
        for (auto row = table.rows.begin() + 1; row != table.rows.end(); ++row)
            readPoint(*row);
        return m_table;
    }

private:
    void readTitles(const CsvTable::Row &row)
    {
        for (int i = 0; i < row.cells.size(); ++i) {
            const QString title = row.cells.at(i).toLower();
            const int known = int(columnTitles().indexOf(title));
            if (title.isEmpty())
                continue;
            if (known < 0)
                fail(row.line, QStringLiteral("column %1: title \"%2\": expected one of %3")
                                   .arg(QString::number(i + 1), row.cells.at(i),
                                        columnTitles().join(QStringLiteral(", "))));
            else if (!m_positions.emplace(static_cast<Column>(known), i).second)
                fail(row.line, QStringLiteral("column %1: there is a column %2 already")
                                   .arg(QString::number(i + 1), title));
        }
        for (const Column needed : {Column::Name, Column::Address}) {
            if (m_positions.count(needed) == 0)
                fail(row.line, QStringLiteral("expected a column %1").arg(titleOf(needed)));
        }
    }

    void readPoint(const CsvTable::Row &row)
    {
        PointCells cells;
        for (const auto &[column, position] : m_positions)
            cells[column] = row.cells.value(position);
        std::vector<RowProblem> problems;
        Point point = pointOf(cells, problems);
        for (const RowProblem &problem : problems)
            failAt(row.line, problem.column, problem.text);
        point.line = row.line;
        const auto [first, isNew] = m_lines.emplace(point.name, row.line);
        if (!isNew)
            failAt(row.line, Column::Name,
                   QStringLiteral("\"%1\": expected a new name; it stands in line %2 already")
                       .arg(point.name, QString::number(first->second)));
        for (int i = 0; i < row.cells.size(); ++i) {
            if (!row.cells.at(i).isEmpty() && !hasTitle(i))
                fail(row.line, QStringLiteral("column %1: \"%2\" stands below no title")
                                   .arg(QString::number(i + 1), row.cells.at(i)));
        }
        if (problems.empty())
            m_table.points.push_back(point);
    }

    bool hasTitle(int position) const
    {
        return std::any_of(m_positions.begin(), m_positions.end(),
                           [position](const auto &titled) { return titled.second == position; });
    }

    void failAt(int line, Column column, const QString &problem)
    {
        fail(line, QStringLiteral("column %1 (%2): %3")
                       .arg(QString::number(m_positions[column] + 1), titleOf(column), problem));
    }

    void fail(int line, const QString &problem)
    {
        m_table.problems += QStringLiteral("%1: %2").arg(QString::number(line), problem);
    }

    std::map<Column, int> m_positions;
    std::map<QString, int> m_lines; // of the names
    PointTable m_table;
};

} // namespace

PointTable parsePoints(const QByteArray &csv)
{
    const Result<CsvTable> table = parseCsv(decodedText(csv));
    if (!table)
        return {{}, {table.errorText()}};
    return TableReader().read(*table);
}

Result<std::vector<Point>> readPointFile(const QString &path)
{
    const Result<QByteArray> contents = contentsOf(path);
    if (!contents)
        return contents.error();
    const PointTable table = parsePoints(*contents);
    if (table.problems.isEmpty())
        return table.points;
    QStringList lines = table.problems;
    for (QString &line : lines)
        line.prepend(path + QLatin1Char(':'));
    return Error{lines.join(QLatin1Char('\n'))};
}
