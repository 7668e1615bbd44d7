#include "apps/driverdesk/dialogs/open_dialog.h"
#include "apps/driverdesk/opening/window_options.h"
#include "apps/driverdesk/panes/slave_pane.h"
#include "apps/driverdesk/panes/table.h"
#include "apps/driverdesk/panes/traffic_pane.h"
#include "apps/driverdesk/trends/line_pane.h"
#include "desk/wire/rtu_frame.h"
#include "desk/wire/trace.h"
#include "tests/peers/text_printing.h"

#include <gtest/gtest.h>

#include <QCheckBox>
#include <QComboBox>
#include <QFile>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QSignalSpy>
#include <QSpinBox>
#include <QTemporaryDir>
#include <QTest>

namespace
{

QString lineOf(const char *hex, const char *meaning)
{
    return traceLine(QDateTime::currentDateTime(), FrameDirection::Sent, withCrc(QByteArray::fromHex(hex)),
                     QLatin1String(meaning));
}

} // namespace

TEST(TrafficPane, FiltersPausesAndSavesAsATrace)
{
    TrafficModel model;
    TrafficPane pane(model);
    pane.show();
    pane.setStations({1, 2});
    const QStringList lines{lineOf("010300000001", "first"), lineOf("020100000001", "second")};
    model.add(lines);
    pane.followEnd();
    pane.functionBox()->setCurrentText(QStringLiteral("function 1"));
    ASSERT_EQ(pane.table()->model()->rowCount(), 1);
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("trace.txt"));
    ASSERT_TRUE(pane.save(path));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(QString::fromUtf8(file.readAll()), lines.at(1) + QLatin1Char('\n'));
    EXPECT_FALSE(pane.save(folder.filePath(QStringLiteral("no/folder/trace"))));
    pane.functionBox()->setCurrentIndex(0);
    pane.pauseBox()->setChecked(true);
    model.add(lines);
    EXPECT_EQ(pane.table()->model()->rowCount(), 2);
    pane.failuresBox()->setChecked(true);
    EXPECT_EQ(pane.table()->model()->rowCount(), 0);
}

TEST(TrafficPane, ShowsTheWholeLineThatIsSelected)
{
    TrafficModel model;
    TrafficPane pane(model);
    const QString line = lineOf("010300000001", "a long meaning");
    model.add({line});
    pane.table()->setCurrentIndex(pane.table()->model()->index(0, 0));
    EXPECT_EQ(pane.wholeLine(), line);
}

TEST(LinePane, SaysHowBusyTheLineIs)
{
    LineModel model;
    LinePane pane(model);
    pane.show();
    LineReport report;
    report.busyShare = 0.256;
    report.recentBusyShare = 0.5;
    report.median = 1500;
    report.ninetyFifth = 20000;
    report.ninetyNinth = 30000;
    pane.showReport(report);
    for (const char *text : {"25.6 %", "50.0 %", "median 1.50 ms", "20 ms", "30 ms"})
        EXPECT_TRUE(pane.summary().contains(QLatin1String(text))) << text;
}

TEST(SlavePane, StartsEditsAndSwitches)
{
    MovingSlave slave;
    SlavePane pane(slave);
    pane.show();
    pane.portBox()->setValue(0);
    QTest::mouseClick(pane.startButton(), Qt::LeftButton);
    ASSERT_TRUE(slave.isRunning());
    EXPECT_EQ(pane.portBox()->value(), slave.port());
    QTest::keyClicks(pane.rangeEdit(), QStringLiteral("HR5..6"));
    QTest::keyClick(pane.rangeEdit(), Qt::Key_Return);
    EXPECT_EQ(pane.table()->model()->rowCount(), 2);
    const QModelIndex value = pane.table()->model()->index(1, static_cast<int>(SlaveColumn::Value));
    pane.table()->setCurrentIndex(value);
    QTest::keyClick(pane.table(), Qt::Key_F2);
    auto *editor = pane.table()->findChild<QLineEdit *>();
    ASSERT_NE(editor, nullptr);
    editor->selectAll();
    QTest::keyClicks(editor, QStringLiteral("77"));
    QTest::keyClick(editor, Qt::Key_Return);
    EXPECT_TRUE(QTest::qWaitFor([&] { return slave.values().values()[1].value == 77; }));
    pane.faultList()->setCurrentIndex(pane.faultList()->model()->index(0, 0));
    QTest::keyClick(pane.faultList(), Qt::Key_Space);
    EXPECT_EQ(slave.faults().namesOn(), QStringList{QStringLiteral("silence")});
    pane.oneOfBox()->setValue(9);
    EXPECT_EQ(slave.faults().oneOf(), 9);
    QTest::mouseClick(pane.startButton(), Qt::LeftButton);
    EXPECT_FALSE(slave.isRunning());
}

TEST(SlavePane, SaysWhatIsWrong)
{
    MovingSlave slave;
    SlavePane pane(slave);
    QSignalSpy failed(&pane, &SlavePane::failed);
    QTest::keyClicks(pane.rangeEdit(), QStringLiteral("nothing"));
    QTest::keyClick(pane.rangeEdit(), Qt::Key_Return);
    ASSERT_EQ(failed.count(), 1);
    EXPECT_TRUE(failed.takeFirst().at(0).toString().contains(QStringLiteral("nothing")));
}

TEST(OpenDialog, SaysWhatTheCommandLineWould)
{
    OpenDialog dialog({});
    dialog.setTarget(QStringLiteral("rtutcp://h:1502/3"));
    dialog.addressesEdit()->setText(QStringLiteral("HR1 \"pump 1\""));
    EXPECT_EQ(dialog.arguments(), (QStringList{"rtutcp://h:1502/3", "--interval", "1", "HR1", "pump 1"}));
    dialog.accept();
    EXPECT_TRUE(dialog.problem().contains(QStringLiteral("pump 1"))) << dialog.problem().toStdString();
    EXPECT_NE(dialog.result(), int(QDialog::Accepted));
    dialog.addressesEdit()->clear();
    dialog.accept();
    EXPECT_TRUE(dialog.problem().startsWith(QStringLiteral("Nothing to read")));
    dialog.addressesEdit()->setText(QStringLiteral("HR1"));
    dialog.accept();
    EXPECT_EQ(dialog.result(), int(QDialog::Accepted));
    EXPECT_TRUE(windowOptionsOf(dialog.arguments()));
}
