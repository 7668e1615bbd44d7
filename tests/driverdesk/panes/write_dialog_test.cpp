#include "apps/driverdesk/dialogs/write_dialog.h"
#include "tests/driverdesk/support/point_rows.h"
#include "tests/peers/text_printing.h"

#include <gtest/gtest.h>

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTest>

namespace
{

class WriteDialogTest : public testing::Test
{
protected:
    void open(const QByteArray &point)
    {
        dialog = std::make_unique<WriteDialog>(rowOfPoint(point), QStringLiteral("5 (live)"));
        QObject::connect(dialog.get(), &WriteDialog::ordered, [this](const WriteOrder &order) {
            orders.push_back(order);
            dialog->expect(orders.size());
        });
        dialog->show();
    }
    void type(const char *text)
    {
        dialog->valueBox()->clearEditText();
        QTest::keyClicks(dialog->valueBox()->lineEdit(), QLatin1String(text));
    }
    int writes() const
    {
        return int(std::count_if(orders.begin(), orders.end(),
                                 [](const WriteOrder &order) { return !order.isPreview; }));
    }

    std::unique_ptr<WriteDialog> dialog;
    std::vector<WriteOrder> orders;
};

} // namespace

TEST_F(WriteDialogTest, SendsNothingWhileItIsLocked)
{
    open("HR1,u16");
    type("12");
    EXPECT_FALSE(dialog->writeButton()->isEnabled());
    QTest::keyClick(dialog->valueBox()->lineEdit(), Qt::Key_Return);
    QTest::mouseClick(dialog->writeButton(), Qt::LeftButton);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !orders.empty(); }));
    EXPECT_EQ(writes(), 0) << "only the frames are asked for";
    EXPECT_TRUE(orders.front().isPreview);
    EXPECT_EQ(orders.front().value.toHex(), QByteArray("000c"));
}

TEST_F(WriteDialogTest, WritesByItsButtonAlone)
{
    open("HR1,u16");
    dialog->setLocked(false);
    type("12");
    QTest::keyClick(dialog->valueBox()->lineEdit(), Qt::Key_Return);
    EXPECT_EQ(writes(), 0) << "Enter sends nothing";
    QTest::mouseClick(dialog->writeButton(), Qt::LeftButton);
    ASSERT_EQ(writes(), 1);
    EXPECT_FALSE(dialog->writeButton()->isEnabled()) << "until it is known what came of it";
    WriteOutcome outcome;
    outcome.id = orders.size();
    outcome.isPreview = false;
    outcome.isGood = true;
    outcome.text = QStringLiteral("Written and verified: 12.");
    dialog->showOutcome(outcome);
    EXPECT_EQ(dialog->resultText(), QStringLiteral("✓ Written and verified: 12."));
    EXPECT_TRUE(dialog->writeButton()->isEnabled());
}

TEST_F(WriteDialogTest, RefusesWhatDoesNotFit)
{
    open("HR1,u16");
    dialog->setLocked(false);
    for (const char *text : {"65536", "-1", "x", ""}) {
        type(text);
        EXPECT_FALSE(dialog->writeButton()->isEnabled()) << text;
    }
    type("65535");
    EXPECT_TRUE(dialog->writeButton()->isEnabled());
}

TEST_F(WriteDialogTest, ShowsTheFramesOfTheLastOrderOnly)
{
    open("HR1,u16");
    type("1");
    ASSERT_TRUE(QTest::qWaitFor([&] { return orders.size() == 1; }));
    WriteOutcome outcome;
    outcome.isGood = true;
    outcome.frames = QStringList{"> 01 06"};
    outcome.id = 99;
    dialog->showOutcome(outcome);
    EXPECT_EQ(dialog->framesText()->toPlainText(), QString());
    outcome.id = 1;
    dialog->showOutcome(outcome);
    EXPECT_EQ(dialog->framesText()->toPlainText(), QStringLiteral("> 01 06"));
}

TEST_F(WriteDialogTest, ShowsWhyAWriteFailed)
{
    open("HR1,u16");
    dialog->setLocked(false);
    type("1");
    QTest::mouseClick(dialog->writeButton(), Qt::LeftButton);
    WriteOutcome outcome;
    outcome.id = orders.size();
    outcome.isPreview = false;
    outcome.text = QStringLiteral("Not written: PLC no response");
    outcome.advice = QStringLiteral("the cable");
    dialog->showOutcome(outcome);
    EXPECT_EQ(dialog->resultText(), QStringLiteral("⚠ Not written: PLC no response\nCheck: the cable"));
}

TEST_F(WriteDialogTest, HasSwitchesForBits)
{
    open("HR1,u16,,,,,0:ready;3:fault");
    ASSERT_EQ(dialog->switches().size(), 16U);
    EXPECT_EQ(dialog->switches()[3]->text(), QStringLiteral("3 fault"));
    type("8");
    EXPECT_TRUE(dialog->switches()[3]->isChecked());
    EXPECT_FALSE(dialog->switches()[0]->isChecked());
    QTest::mouseClick(dialog->switches()[0], Qt::LeftButton, {},
                      QPoint(5, dialog->switches()[0]->height() / 2));
    EXPECT_EQ(dialog->valueBox()->currentText(), QStringLiteral("9"));
}

TEST_F(WriteDialogTest, OffersTheNamesOfStates)
{
    open("HR1,u16,,,,,0=off;1=automatic");
    EXPECT_EQ(dialog->valueBox()->count(), 2);
    dialog->setLocked(false);
    type("automatic");
    EXPECT_TRUE(dialog->writeButton()->isEnabled());
}

TEST_F(WriteDialogTest, SaysThatAnInputCannotBeWritten)
{
    open("IR1,u16");
    dialog->setLocked(false);
    type("1");
    EXPECT_FALSE(dialog->writeButton()->isEnabled());
}
