#include "desk/points/csv_table.h"

#include "drivers/qt/qt_lines.h"

#include <algorithm>

namespace
{

const QChar Quote = QLatin1Char('"');

QChar separatorOf(const QString &text)
{
    const QString titles = text.section(QLatin1Char('\n'), 0, 0);
    QChar best = QLatin1Char(',');
    for (const QChar separator : {QLatin1Char(';'), QLatin1Char('\t')}) {
        if (titles.count(separator) > titles.count(best))
            best = separator;
    }
    return best;
}

class CsvReader
{
public:
    explicit CsvReader(const QString &text) : m_text(text) { m_table.separator = separatorOf(text); }

    Result<CsvTable> read()
    {
        while (m_at < m_text.size()) {
            readRow();
            if (!m_problem.isEmpty())
                return Error{m_problem};
        }
        return m_table;
    }

private:
    void readRow()
    {
        CsvTable::Row row{m_line, {}};
        do
            row.cells += readCell();
        while (takes(m_table.separator));
        const bool isEmpty = std::all_of(row.cells.begin(), row.cells.end(),
                                         [](const QString &cell) { return cell.isEmpty(); });
        if (!isEmpty)
            m_table.rows.push_back(row);
        if (m_at < m_text.size() && !takesLineEnd())
            fail(m_line, QStringLiteral("expected %1 or the end of the line after the closing quote")
                             .arg(separatorName()));
    }

    QString readCell()
    {
        while (peek() == QLatin1Char(' '))
            ++m_at;
        return peek() == Quote ? readQuoted() : readPlain();
    }

    QString readPlain()
    {
        const int first = m_at;
        while (m_at < m_text.size() && peek() != m_table.separator && !isLineEnd(peek()))
            ++m_at;
        return m_text.mid(first, m_at - first).trimmed();
    }

    QString readQuoted()
    {
        const int firstLine = m_line;
        QString cell;
        for (++m_at; m_at < m_text.size(); ++m_at) {
            const QChar next = peek();
            if (next == Quote && m_text.mid(m_at + 1, 1) != Quote) {
                ++m_at;
                while (peek() == QLatin1Char(' '))
                    ++m_at;
                return cell.trimmed();
            }
            if (next == Quote)
                ++m_at;
            if (next == QLatin1Char('\n'))
                ++m_line;
            cell += next;
        }
        fail(firstLine, QStringLiteral("a quote is opened and never closed"));
        return cell;
    }

    bool takes(QChar expected)
    {
        if (peek() != expected)
            return false;
        ++m_at;
        return true;
    }

    bool takesLineEnd()
    {
        const bool isReturn = takes(QLatin1Char('\r'));
        const bool isEnd = takes(QLatin1Char('\n')) || isReturn;
        if (isEnd)
            ++m_line;
        return isEnd;
    }

    static bool isLineEnd(QChar c) { return c == QLatin1Char('\n') || c == QLatin1Char('\r'); }
    QChar peek() const { return m_at < m_text.size() ? m_text.at(m_at) : QChar(); }

    QString separatorName() const
    {
        return m_table.separator == QLatin1Char('\t') ? QStringLiteral("a tab")
                                                      : QStringLiteral("\"%1\"").arg(m_table.separator);
    }

    void fail(int line, const QString &problem)
    {
        m_problem = QStringLiteral("%1: %2").arg(QString::number(line), problem);
        m_at = sizeOf(m_text);
    }

    QString m_text;
    CsvTable m_table;
    QString m_problem;
    int m_at = 0;
    int m_line = 1;
};

} // namespace

QString decodedText(const QByteArray &bytes)
{
    if (bytes.startsWith("\xFF\xFE") || bytes.startsWith("\xFE\xFF"))
        return QString::fromUtf16(reinterpret_cast<const char16_t *>(bytes.constData()), sizeOf(bytes) / 2);
    const QString text = QString::fromUtf8(bytes);
    const bool isUtf8 = !text.contains(QChar(QChar::ReplacementCharacter)) || bytes.contains("\xEF\xBF\xBD");
    return isUtf8 ? text : QString::fromLatin1(bytes);
}

Result<CsvTable> parseCsv(const QString &text)
{
    return CsvReader(text).read();
}

QString csvCell(const QString &text)
{
    const QString special = QStringLiteral(",;\t\"\r\n");
    const bool isPlain = std::none_of(text.begin(), text.end(), [&](QChar c) { return special.contains(c); });
    return isPlain ? text : Quote + QString(text).replace(Quote, QStringLiteral("\"\"")) + Quote;
}
