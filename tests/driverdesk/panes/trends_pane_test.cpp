#include "apps/driverdesk/panes/table.h"
#include "apps/driverdesk/trends/trends_pane.h"
#include "tests/driverdesk/support/point_rows.h"
#include "tests/peers/text_printing.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QComboBox>
#include <QDateTime>
#include <QFile>
#include <QMouseEvent>
#include <QTemporaryDir>
#include <QTest>
#include <qwt_plot_canvas.h>
#include <qwt_scale_div.h>

#include <cmath>

namespace
{

const double Gap = std::numeric_limits<double>::quiet_NaN();

class TrendsPaneTest : public testing::Test
{
protected:
    TrendsPaneTest()
    {
        book.setRows(rowsOfTable("name,address,type,unit\na,HR1,u16,bar\nb,HR2,u16,°C\n"));
        book.add(0);
        pane.resize(800, 500);
        pane.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&pane));
    }

    // How many pixels of the canvas have the colour of the first curve in a part of the width.
    int ink(double from, double to)
    {
        const QImage image = pane.plot()->canvas()->grab().toImage();
        const QColor wanted = TrendBook::colorOf(0);
        int count = 0;
        for (int x = int(image.width() * from); x < int(image.width() * to); ++x) {
            for (int y = 0; y < image.height(); ++y)
                count += QColor(image.pixel(x, y)) == wanted ? 1 : 0;
        }
        return count;
    }
    void show(double begin, double end)
    {
        pane.plot()->window().show(begin, end);
        pane.plot()->redraw();
    }

    TrendBook book{1000};
    TrendsPane pane{book};
};

} // namespace

TEST_F(TrendsPaneTest, DrawsNoLineThroughAGap)
{
    book.add({{0, 1000, 5}, {0, 2000, 5}, {0, 4000, Gap}, {0, 6000, 5}, {0, 7000, 5}});
    show(0, 8000);
    EXPECT_GT(ink(0.15, 0.24), 10);
    EXPECT_EQ(ink(0.3, 0.7), 0);
    EXPECT_GT(ink(0.76, 0.86), 10);
    book.setRows(rowsOfTable("name,address,type,unit\na,HR1,u16,bar\n"));
    book.add(0);
    book.add({{0, 1000, 5}, {0, 7000, 5}});
    show(0, 8000);
    EXPECT_GT(ink(0.3, 0.7), 50) << "without a failure there is a line";
}

TEST_F(TrendsPaneTest, HasAnAxisOnEachSide)
{
    EXPECT_FALSE(pane.plot()->axisEnabled(QwtPlot::yRight));
    book.add(1);
    EXPECT_TRUE(pane.plot()->axisEnabled(QwtPlot::yRight));
    book.add({{0, 1000, 5}, {0, 2000, 7}, {1, 1000, 100}, {1, 2000, 200}});
    show(0, 3000);
    EXPECT_LT(pane.plot()->axisScaleDiv(QwtPlot::yLeft).upperBound(), 10);
    EXPECT_GT(pane.plot()->axisScaleDiv(QwtPlot::yRight).upperBound(), 190);
}

TEST_F(TrendsPaneTest, IsMovedByKeys)
{
    TrendPlot &plot = *pane.plot();
    plot.setFocus();
    const double span = plot.window().span();
    QTest::keyClick(&plot, Qt::Key_Plus);
    EXPECT_LT(plot.window().span(), span);
    QTest::keyClick(&plot, Qt::Key_Left);
    EXPECT_FALSE(plot.window().isFollowing());
    QTest::keyClick(&plot, Qt::Key_Home);
    EXPECT_TRUE(plot.window().isFollowing());
    QTest::keyClick(&plot, Qt::Key_Space);
    EXPECT_TRUE(plot.isPaused());
    const double end = plot.window().end();
    QTest::qWait(20);
    plot.redraw();
    EXPECT_EQ(plot.window().end(), end) << "the picture stands still";
    QTest::keyClick(&plot, Qt::Key_Space);
    EXPECT_FALSE(plot.isPaused());
}

TEST_F(TrendsPaneTest, ShowsValuesAtTheCursor)
{
    book.add({{0, 1000, 5}, {0, 2000, 6}, {0, 3000, 7}});
    show(0, 4000);
    QTest::keyClick(pane.plot(), Qt::Key_Left, Qt::ShiftModifier);
    EXPECT_EQ(book.index(0, static_cast<int>(TrendColumn::AtCursor)).data().toString(),
              QStringLiteral("5 bar"));
    for (int i = 0; i < 5; ++i)
        QTest::keyClick(pane.plot(), Qt::Key_Right, Qt::ShiftModifier);
    EXPECT_EQ(book.index(0, static_cast<int>(TrendColumn::AtCursor)).data().toString(),
              QStringLiteral("6 bar"));
}

TEST_F(TrendsPaneTest, ZoomsIntoARectangle)
{
    book.add({{0, 1000, 0}, {0, 9000, 100}});
    show(0, 10000);
    QWidget *canvas = pane.plot()->canvas();
    const QPoint from(canvas->width() / 4, canvas->height() / 4);
    const QPoint to(canvas->width() / 2, canvas->height() / 2);
    QTest::mousePress(canvas, Qt::LeftButton, {}, from);
    QMouseEvent move(QEvent::MouseMove, to, canvas->mapToGlobal(to), Qt::NoButton, Qt::LeftButton, {});
    QApplication::sendEvent(canvas, &move);
    QTest::mouseRelease(canvas, Qt::LeftButton, {}, to);
    EXPECT_NEAR(pane.plot()->window().begin(), 2500, 300);
    EXPECT_NEAR(pane.plot()->window().end(), 5000, 300);
    ASSERT_TRUE(pane.plot()->window().values(0));
    EXPECT_LT(pane.plot()->window().values(0)->low, pane.plot()->window().values(0)->high);
}

TEST_F(TrendsPaneTest, SavesPictureAndValues)
{
    book.add({{0, 1000, 5}, {0, 2000, Gap}});
    show(0, 4000);
    const QTemporaryDir folder;
    ASSERT_TRUE(pane.savePicture(folder.filePath(QStringLiteral("t.png"))));
    EXPECT_GT(QImage(folder.filePath(QStringLiteral("t.png"))).width(), 300);
    ASSERT_TRUE(pane.saveValues(folder.filePath(QStringLiteral("t.csv"))));
    QFile file(folder.filePath(QStringLiteral("t.csv")));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll().count('\n'), 3);
    EXPECT_FALSE(pane.savePicture(folder.filePath(QStringLiteral("no/t.png"))));
    EXPECT_FALSE(pane.saveValues(folder.filePath(QStringLiteral("no/t.csv"))));
}

TEST_F(TrendsPaneTest, ChangesTheAxisByEnter)
{
    pane.list()->setCurrentIndex(book.index(0, 0));
    QTest::keyClick(pane.list(), Qt::Key_Return);
    EXPECT_TRUE(book.curves()[0].isRight);
}
