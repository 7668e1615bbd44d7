#include "desk/log/row_series.h"

#include "tests/peers/text_printing.h"

#include <gtest/gtest.h>

namespace
{

const TypedItems Word = *typedItems(*parseAddress(QStringLiteral("HR1")), *parseType(QStringLiteral("u16")));

// Values of one word with these names; without one a value is called by its address.
std::vector<Reading> readingsNamed(const QStringList &names)
{
    std::vector<Point> points;
    for (const QString &name : names) {
        points.push_back(namelessPoint(Word));
        points.back().name = name;
    }
    return readingsOf(points);
}

std::vector<ValueRow> rowsOf(const Reading &reading, const char *hex)
{
    std::vector<ValueRow> rows = ::rowsOf(reading, QByteArray::fromHex(hex), 1);
    for (ValueRow &row : rows)
        row.time = QStringLiteral("10:15");
    return rows;
}

} // namespace

TEST(RowSeries, GivesEachColumnATitleOfItsOwn)
{
    const std::vector<Reading> readings =
        readingsNamed({"level", "time", "level", "level", "level", QString()});
    RowSeries series(readings, {OutputFormat::Csv, true, {}});
    EXPECT_EQ(series.titles(), QStringLiteral("time,level,time:u16,level:u16,level (2),level (3),HR1"));
}

TEST(RowSeries, HasARowARound)
{
    const std::vector<Reading> readings = readingsNamed({"level"});
    RowSeries series(readings, {OutputFormat::Csv, true, 0.0});
    EXPECT_TRUE(series.endRound().isEmpty()) << "nothing was read";
    EXPECT_TRUE(series.add(0, rowsOf(readings[0], "0500")).isEmpty());
    EXPECT_EQ(series.endRound(), QStringList{QStringLiteral("10:15,5")});
    series.add(0, rowsOf(readings[0], "0500"));
    EXPECT_TRUE(series.endRound().isEmpty()) << "nothing has changed";
    series.add(0, failedRowsOf(readings[0], {QStringLiteral("no-reply"), QStringLiteral("Error")}, 1));
    EXPECT_EQ(series.endRound(), QStringList{QStringLiteral(",")});
    RowSeries none({}, {OutputFormat::Json, true, {}});
    none.add(0, {});
    EXPECT_EQ(none.titles(), QString());
}

TEST(RowSeries, HasALineAValueThatHasChanged)
{
    const std::vector<Reading> readings = readingsNamed({"level"});
    RowSeries series(readings, {OutputFormat::Text, false, 2.0});
    EXPECT_EQ(series.add(0, rowsOf(readings[0], "0500")).size(), 1);
    EXPECT_TRUE(series.add(0, rowsOf(readings[0], "0700")).isEmpty());
    EXPECT_EQ(series.add(0, rowsOf(readings[0], "0800")),
              QStringList{QStringLiteral("10:15  level  8  raw 8")});
    EXPECT_TRUE(series.endRound().isEmpty());
}
