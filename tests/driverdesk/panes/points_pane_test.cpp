#include "apps/driverdesk/panes/message_bar.h"
#include "apps/driverdesk/panes/points_pane.h"
#include "apps/driverdesk/panes/table.h"
#include "tests/driverdesk/support/point_rows.h"
#include "tests/peers/text_printing.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QLineEdit>
#include <QMenu>
#include <QSignalSpy>
#include <QTest>

namespace
{

class PointsPaneTest : public testing::Test
{
protected:
    PointsPaneTest()
    {
        model.setRows(rowsOfTable("name,address,type,unit\nb,HR2,u16,bar\na,HR1,u16,bar\n"));
        auto snapshot = std::make_shared<Snapshot>();
        snapshot->rounds = 1;
        snapshot->interval = 1000;
        snapshot->samples.resize(2);
        for (PointSample &sample : snapshot->samples) {
            sample.text = QStringLiteral("7 bar");
            sample.number = 7;
            sample.readAt = 1000;
            sample.round = 0;
        }
        snapshot->samples[1].failure = QStringLiteral("CRC error");
        model.setSnapshot(snapshot, 1100);
        pane.fitColumns();
        pane.resize(1200, 400);
        pane.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&pane));
    }

    QString cell(int row, PointColumn column) const
    {
        return pane.table()->model()->index(row, static_cast<int>(column)).data().toString();
    }

    PointsModel model;
    PointsPane pane{model};
};

} // namespace

TEST_F(PointsPaneTest, FiltersWhileAPersonTypes)
{
    QTest::keyClicks(pane.filterEdit(), QStringLiteral("hr1"));
    ASSERT_EQ(pane.table()->model()->rowCount(), 1);
    EXPECT_EQ(cell(0, PointColumn::Name), QStringLiteral("a"));
    QTest::keyClick(pane.filterEdit(), Qt::Key_Backspace);
    EXPECT_EQ(pane.table()->model()->rowCount(), 2);
    pane.stateBox()->setCurrentText(QStringLiteral("failed"));
    ASSERT_EQ(pane.table()->model()->rowCount(), 1);
    EXPECT_EQ(cell(0, PointColumn::State), QStringLiteral("failed: CRC error"));
}

TEST_F(PointsPaneTest, AsksToWriteByEnterAndByDoubleClick)
{
    pane.table()->sortByColumn(static_cast<int>(PointColumn::Name), Qt::AscendingOrder);
    QSignalSpy wanted(&pane, &PointsPane::writeWanted);
    pane.table()->setCurrentIndex(pane.table()->model()->index(0, 0));
    QTest::keyClick(pane.table(), Qt::Key_Return);
    ASSERT_EQ(wanted.count(), 1);
    EXPECT_EQ(wanted.takeFirst().at(0).toInt(), 1) << "the row of the model, not of the table";
    const QPoint place = pane.table()->visualRect(pane.table()->model()->index(1, 4)).center();
    QTest::mouseClick(pane.table()->viewport(), Qt::LeftButton, {}, place);
    QTest::mouseDClick(pane.table()->viewport(), Qt::LeftButton, {}, place);
    ASSERT_EQ(wanted.count(), 1);
    EXPECT_EQ(wanted.takeFirst().at(0).toInt(), 0);
}

TEST_F(PointsPaneTest, CopiesWhatIsShown)
{
    for (int column = static_cast<int>(PointColumn::Offset); column < PointsModel::columns(); ++column)
        pane.table()->setColumnHidden(column, column != static_cast<int>(PointColumn::State));
    pane.table()->selectAll();
    QTest::keyClick(pane.table(), Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(), QStringLiteral("b\tHR2\tlive\na\tHR1\tfailed: CRC error"));
}

TEST_F(PointsPaneTest, ShowsAllOfAStateThatIsLong)
{
    pane.table()->setCurrentIndex(pane.table()->model()->index(1, 0));
    EXPECT_EQ(pane.wholeState(), QStringLiteral("a: failed: CRC error"));
}

TEST_F(PointsPaneTest, HidesColumnsAndRemembersThem)
{
    QMenu menu;
    pane.addColumnActions(&menu);
    ASSERT_EQ(menu.actions().size(), PointsModel::columns());
    menu.actions().at(static_cast<int>(PointColumn::Latency))->trigger();
    EXPECT_TRUE(pane.table()->isColumnHidden(static_cast<int>(PointColumn::Latency)));
    const QByteArray columns = pane.saveColumns();
    pane.table()->showColumn(static_cast<int>(PointColumn::Latency));
    pane.restoreColumns(columns);
    EXPECT_TRUE(pane.table()->isColumnHidden(static_cast<int>(PointColumn::Latency)));
}

TEST_F(PointsPaneTest, DrawsWhatIsNotLiveInGrey)
{
    const auto inkOf = [&](int row) {
        const QRect place = pane.table()->visualRect(pane.table()->model()->index(row, 0));
        const QImage image = pane.table()->viewport()->grab(place).toImage();
        int darkest = 255;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x)
                darkest = std::min(darkest, qGray(image.pixel(x, y)));
        }
        return darkest;
    };
    EXPECT_LT(inkOf(0) + 40, inkOf(1));
}

TEST(MessageBar, ShowsUntilItIsClosed)
{
    QWidget window;
    MessageBar bar(&window);
    EXPECT_EQ(bar.text(), QString());
    bar.showText(QStringLiteral("plant.csv:3: what was expected"));
    EXPECT_EQ(bar.text(), QStringLiteral("plant.csv:3: what was expected"));
    bar.hide();
    EXPECT_EQ(bar.text(), QString());
}
