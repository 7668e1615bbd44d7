#include "apps/driverdesk/trends/thinned_points.h"
#include "apps/driverdesk/trends/trend_book.h"
#include "apps/driverdesk/trends/trend_window.h"
#include "tests/driverdesk/support/point_rows.h"
#include "tests/peers/text_printing.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace
{

const double Gap = std::numeric_limits<double>::quiet_NaN();

int gapsIn(const QVector<QPointF> &points)
{
    return int(std::count_if(points.begin(), points.end(),
                             [](const QPointF &point) { return std::isnan(point.y()); }));
}

} // namespace

TEST(TrendRing, KeepsTheLast)
{
    TrendRing ring(3);
    for (int i = 0; i < 5; ++i)
        ring.add(i, 10 * i);
    ASSERT_EQ(ring.size(), 3U);
    EXPECT_EQ(ring.at(0), QPointF(2, 20));
    EXPECT_EQ(ring.at(2), QPointF(4, 40));
    EXPECT_EQ(ring.firstAt(2.5), 1U);
    EXPECT_EQ(ring.firstAt(5), 3U);
    ring.add(1, 99);
    EXPECT_EQ(ring.at(2), QPointF(4, 40));
    ring.clear();
    EXPECT_EQ(ring.size(), 0U);
}

TEST(TrendRing, HasNoNumberInAGap)
{
    TrendRing ring(10);
    ring.add(1, 10);
    ring.add(2, Gap);
    ring.add(4, 40);
    EXPECT_TRUE(std::isnan(ring.numberAt(0)));
    EXPECT_EQ(ring.numberAt(1.5), 10);
    EXPECT_TRUE(std::isnan(ring.numberAt(3)));
    EXPECT_EQ(ring.numberAt(4), 40);
    EXPECT_TRUE(std::isnan(ring.numberAt(5)));
}

TEST(ThinnedPoints, AreAllWhereThereAreFew)
{
    TrendRing ring(100);
    for (int i = 0; i < 10; ++i)
        ring.add(i, i == 5 ? Gap : i);
    const QVector<QPointF> points = thinnedPoints(ring, 2, 8, 100);
    EXPECT_EQ(points.first(), QPointF(1, 1));
    EXPECT_EQ(points.last(), QPointF(8, 8));
    EXPECT_EQ(points.size(), 8);
    EXPECT_EQ(gapsIn(points), 1);
}

TEST(ThinnedPoints, KeepExtremesAndGaps)
{
    std::mt19937 random(7);
    TrendRing ring(TrendBook::HourAtTen);
    for (int i = 0; i < int(TrendBook::HourAtTen); ++i)
        ring.add(i, i == 20000 ? Gap : static_cast<double>(random() % 1000));
    ring.add(TrendBook::HourAtTen, 5000);
    ring.add(TrendBook::HourAtTen + 1, -5000);
    const int columns = 500;
    const QVector<QPointF> points = thinnedPoints(ring, 0, TrendBook::HourAtTen + 2, columns);
    EXPECT_LE(points.size(), 4 * columns + 10);
    EXPECT_GT(points.size(), columns);
    EXPECT_EQ(gapsIn(points), 1);
    double low = 0;
    double high = 0;
    double before = -1;
    for (const QPointF &point : points) {
        EXPECT_GE(point.x(), before);
        before = point.x();
        low = std::isnan(point.y()) ? low : std::min(low, point.y());
        high = std::isnan(point.y()) ? high : std::max(high, point.y());
    }
    EXPECT_EQ(low, -5000);
    EXPECT_EQ(high, 5000);
}

TEST(ThinnedPoints, AreNoneWhereNothingIs)
{
    TrendRing ring(10);
    EXPECT_TRUE(thinnedPoints(ring, 0, 10, 100).isEmpty());
    ring.add(5, 1);
    EXPECT_TRUE(thinnedPoints(ring, 10, 10, 100).isEmpty());
    EXPECT_TRUE(thinnedPoints(ring, 0, 10, 0).isEmpty());
    EXPECT_EQ(thinnedPoints(ring, 0, 10, 100).size(), 1);
}

TEST(TrendWindow, FollowsZoomsAndPans)
{
    TrendWindow window;
    window.setSpan(1000);
    window.follow(5000);
    EXPECT_EQ(window.begin(), 4000);
    window.zoom(0.5, 4200);
    EXPECT_EQ(window.end(), 5000) << "the newest stays at the edge";
    EXPECT_EQ(window.span(), 500);
    EXPECT_TRUE(window.isFollowing());
    window.pan(-1);
    window.follow(6000);
    EXPECT_EQ(window.end(), 4500) << "who has panned is not taken away";
    window.zoom(2, 4250);
    EXPECT_EQ(window.begin(), 3750);
    EXPECT_EQ(window.end(), 4750);
    window.showValues(1, {0, 5});
    window.show(100, 300);
    EXPECT_EQ(window.begin(), 100);
    ASSERT_TRUE(window.values(1));
    EXPECT_FALSE(window.values(0));
    window.reset();
    window.follow(9000);
    EXPECT_EQ(window.end(), 9000);
    EXPECT_FALSE(window.values(1));
    window.setSpan(0);
    EXPECT_EQ(window.span(), TrendWindow::ShortestSpan);
}

TEST(TrendBook, PutsUnitsOnAxes)
{
    TrendBook book(10);
    book.setRows(
        rowsOfTable("name,address,type,unit\na,HR1,u16,bar\nb,HR2,u16,bar\nc,HR3,u16,°C\nd,HR4,str4,\n"));
    EXPECT_TRUE(book.addNamed(QStringLiteral("a")));
    EXPECT_TRUE(book.add(2));
    EXPECT_TRUE(book.add(1));
    EXPECT_FALSE(book.add(1)) << "it is there";
    EXPECT_FALSE(book.add(3)) << "a text is no number";
    EXPECT_FALSE(book.add(4));
    EXPECT_FALSE(book.addNamed(QStringLiteral("x")));
    ASSERT_EQ(book.curves().size(), 3U);
    EXPECT_FALSE(book.curves()[0].isRight);
    EXPECT_TRUE(book.curves()[1].isRight);
    EXPECT_FALSE(book.curves()[2].isRight);
    EXPECT_EQ(book.trendedRows(), (std::set<int>{0, 1, 2}));
    const QModelIndex axis = book.index(0, static_cast<int>(TrendColumn::Axis));
    EXPECT_TRUE(book.setData(axis, QStringLiteral("right"), Qt::EditRole));
    EXPECT_TRUE(book.curves()[0].isRight);
    book.remove({0, 2});
    EXPECT_EQ(book.trendedRows(), std::set<int>{2});
}

TEST(TrendBook, ShowsTheNewestAndTheCursor)
{
    TrendBook book(10);
    book.setRows(rowsOfTable("name,address,type,unit\na,HR1,u16,bar\n"));
    ASSERT_TRUE(book.add(0));
    book.add({{0, 1000, 1.5}, {0, 2000, Gap}, {0, 3000, 2.5}, {9, 3000, 7}});
    book.setCursor(1200);
    const auto text = [&](TrendColumn column) {
        return book.index(0, static_cast<int>(column)).data().toString();
    };
    EXPECT_EQ(text(TrendColumn::Now), QStringLiteral("2.5 bar"));
    EXPECT_EQ(text(TrendColumn::AtCursor), QStringLiteral("1.5 bar"));
    book.setCursor(2500);
    EXPECT_EQ(text(TrendColumn::AtCursor), QStringLiteral("–"));
    book.addGaps(4000);
    EXPECT_EQ(text(TrendColumn::Now), QStringLiteral("–"));
}

TEST(TrendBook, WritesGapsWithoutAValue)
{
    TrendBook book(10);
    book.setRows(rowsOfTable("name,address,type,unit\n\"a,b\",HR1,u16,bar\n"));
    ASSERT_TRUE(book.add(0));
    book.add({{0, 1000, 1.5}, {0, 2000, Gap}, {0, 3000, 2.5}});
    const QStringList lines = book.csvLines(1000, 2000);
    ASSERT_EQ(lines.size(), 3);
    EXPECT_EQ(lines.at(0), QStringLiteral("time,point,value,unit"));
    EXPECT_TRUE(lines.at(1).endsWith(QStringLiteral(",\"a,b\",1.5,bar"))) << lines.at(1).toStdString();
    EXPECT_TRUE(lines.at(2).endsWith(QStringLiteral(",\"a,b\",,bar"))) << lines.at(2).toStdString();
}
