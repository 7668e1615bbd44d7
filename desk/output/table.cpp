#include "desk/output/table.h"

#include "drivers/qt/qt_lines.h"

#include <algorithm>

Table::Table(const QStringList &titles, const std::vector<int> &rightAligned) : m_rightAligned(rightAligned)
{
    addRow(titles);
}

void Table::addRow(const QStringList &cells)
{
    m_rows.push_back(cells);
}

QStringList Table::lines() const
{
    std::vector<int> widths;
    for (const QStringList &cells : m_rows) {
        widths.resize(std::max(widths.size(), static_cast<size_t>(cells.size())));
        for (int i = 0; i < cells.size(); ++i) {
            int &width = widths[static_cast<size_t>(i)];
            width = std::max(width, sizeOf(cells.at(i)));
        }
    }
    QStringList lines;
    for (const QStringList &cells : m_rows)
        lines += line(cells, widths);
    return lines;
}

QString Table::line(const QStringList &cells, const std::vector<int> &widths) const
{
    QString line;
    for (int i = 0; i < cells.size(); ++i) {
        const bool isRight =
            std::find(m_rightAligned.begin(), m_rightAligned.end(), i) != m_rightAligned.end();
        const int width = widths[static_cast<size_t>(i)];
        if (i > 0)
            line += QStringLiteral("  ");
        line += isRight ? cells.at(i).rightJustified(width) : cells.at(i).leftJustified(width);
    }
    while (line.endsWith(QLatin1Char(' ')))
        line.chop(1);
    return line;
}
