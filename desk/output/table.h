#pragma once

#include <QStringList>

#include <vector>

/// Rows of cells, aligned in columns.
class Table
{
public:
    /// The columns' titles; those in \a rightAligned hold numbers.
    explicit Table(const QStringList &titles, const std::vector<int> &rightAligned = {});

    void addRow(const QStringList &cells);
    /// The titles and the rows, two spaces between columns, none at the end of a line.
    QStringList lines() const;

private:
    QString line(const QStringList &cells, const std::vector<int> &widths) const;

    std::vector<int> m_rightAligned;
    std::vector<QStringList> m_rows;
};
