#include "desk/points/csv_table.h"

#include "tests/peers/text_printing.h"

#include <gtest/gtest.h>

namespace
{

// The rows as "LINE:CELL|CELL", or what is wrong.
QStringList rowsOf(const char *text)
{
    const Result<CsvTable> table = parseCsv(QString::fromUtf8(text));
    if (!table)
        return {table.errorText()};
    QStringList rows;
    for (const CsvTable::Row &row : table->rows)
        rows += QStringLiteral("%1:%2").arg(QString::number(row.line), row.cells.join(QLatin1Char('|')));
    return rows;
}

} // namespace

TEST(CsvTable, IsTakenApart)
{
    const struct {
        const char *text;
        QStringList rows;
    } cases[] = {
        {"", {}},
        {"  a ,  b\n", {QStringLiteral("1:a|b")}},
        {"\"a\"  ,\" b \"", {QStringLiteral("1:a|b")}},
        {"\"say \"\"on\"\"\",b\n", {QStringLiteral("1:say \"on\"|b")}},
        {"\"two\nlines\",b\nc,d\n", {QStringLiteral("1:two\nlines|b"), QStringLiteral("3:c|d")}},
        {"a,b\r\rc,d\r", {QStringLiteral("1:a|b"), QStringLiteral("3:c|d")}},
        {"a;b,c;d\n", {QStringLiteral("1:a|b,c|d")}},
        {"a\tb\n\"c\"d\n",
         {QStringLiteral("2: expected a tab or the end of the line after the closing quote")}},
        {"a;b\n\"c\"d\n",
         {QStringLiteral("2: expected \";\" or the end of the line after the closing quote")}},
        {"a,b\n\"c\nd\n", {QStringLiteral("2: a quote is opened and never closed")}},
    };
    for (const auto &one : cases)
        EXPECT_EQ(rowsOf(one.text), one.rows) << one.text;
}

TEST(CsvTable, IsDecodedByItsMark)
{
    const struct {
        const char *hex;
        const char *text;
    } cases[] = {
        {"61C2B0", "a°"},       {"EFBBBF61C2B0", "a°"}, {"FFFE6100B000", "a°"},
        {"FEFF006100B0", "a°"}, {"61B0", "a°"},         {"61EFBFBD", "a\uFFFD"},
    };
    for (const auto &one : cases)
        EXPECT_EQ(decodedText(QByteArray::fromHex(one.hex)), QString::fromUtf8(one.text)) << one.hex;
}

TEST(CsvTable, CellsComeBack)
{
    const struct {
        const char *text;
        const char *cell;
    } cases[] = {
        {"plain text", "plain text"},
        {"a,b", "\"a,b\""},
        {"a;b", "\"a;b\""},
        {"a\tb", "\"a\tb\""},
        {"say \"on\"", "\"say \"\"on\"\"\""},
        {"two\nlines", "\"two\nlines\""},
    };
    for (const auto &one : cases) {
        EXPECT_EQ(csvCell(QLatin1String(one.text)), QLatin1String(one.cell));
        const Result<CsvTable> table = parseCsv(QLatin1String(one.cell) + QStringLiteral(",,;\n"));
        ASSERT_TRUE(table);
        EXPECT_EQ(table->rows.front().cells.front(), QLatin1String(one.text)) << one.cell;
    }
}
