#include "apps/driverdesk/dialogs/open_dialog.h"
#include "apps/driverdesk/dialogs/write_dialog.h"
#include "apps/driverdesk/panes/points_pane.h"
#include "apps/driverdesk/panes/table.h"
#include "apps/driverdesk/window/main_window.h"
#include "tests/peers/text_printing.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QDockWidget>
#include <QMenuBar>
#include <QScrollArea>
#include <QScrollBar>
#include <QSet>
#include <QStatusBar>
#include <QTabBar>
#include <QTest>

#include <algorithm>

// A screen of 1280 x 800 at 200 %: half as many pixels to draw on, or letters twice as large.

namespace
{

// What is left of a widget within all that is around it.
QSize seenOf(const QWidget &widget)
{
    QRect seen = widget.rect();
    for (const QWidget *around = &widget; !around->isWindow();) {
        seen.translate(around->pos());
        around = around->parentWidget();
        seen &= around->rect();
    }
    return seen.size();
}

struct Screen {
    const char *name;
    double letters;
    QSize size;
};

class SmallWindowTest : public testing::TestWithParam<Screen>
{
protected:
    SmallWindowTest()
    {
        QFont larger = fontBefore;
        larger.setPointSizeF(larger.pointSizeF() * GetParam().letters);
        QApplication::setFont(larger);
        window = std::make_unique<MainWindow>();
        window->resize(GetParam().size);
        window->show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(window.get()));
    }
    ~SmallWindowTest() override
    {
        window.reset();
        QApplication::setFont(fontBefore);
    }

    void openDemo()
    {
        window->openDemo(1);
        settle();
        EXPECT_TRUE(window->pointsPane()->isVisible());
    }
    // Until all is laid out: that takes some turns of the event loop.
    static void settle()
    {
        for (int turn = 0; turn < 10; ++turn)
            QApplication::processEvents();
    }
    bool fits() const
    {
        const QSize least = window->minimumSizeHint();
        return least.boundedTo(GetParam().size) == least && window->size() == GetParam().size;
    }
    // All of it, or so much of what is large that a person can go on with it.
    static bool isInSight(const QWidget &widget)
    {
        const QSize seen = seenOf(widget);
        return seen.width() >= widget.width() &&
               seen.height() >= std::min(widget.height(), 2 * widget.fontMetrics().height());
    }
    static bool isShown(const QWidget &widget)
    {
        return widget.isVisible() && seenOf(widget) == widget.size();
    }

    const QFont fontBefore = QApplication::font();
    std::unique_ptr<MainWindow> window;
};

} // namespace

TEST_P(SmallWindowTest, HasRoomForWhatIsFirstToDo)
{
    EXPECT_TRUE(fits()) << window->minimumSizeHint().width() << " x " << window->minimumSizeHint().height();
}

TEST_P(SmallWindowTest, HasRoomForAllPanesAndTheirTabs)
{
    openDemo();
    EXPECT_TRUE(fits()) << window->minimumSizeHint().width() << " x " << window->minimumSizeHint().height();
    int tabs = 0;
    for (const QTabBar *bar : window->findChildren<QTabBar *>()) {
        if (!bar->isVisible())
            continue;
        tabs += bar->count();
        for (int tab = 0; tab < bar->count(); ++tab)
            EXPECT_TRUE(bar->rect().contains(bar->tabRect(tab))) << tab;
        EXPECT_TRUE(isShown(*bar));
    }
    EXPECT_EQ(tabs, int(window->docks().size()));
    EXPECT_TRUE(isShown(*window->menuBar()));
    EXPECT_TRUE(isShown(*window->statusBar()));
    EXPECT_TRUE(isInSight(*window->pointsPane()->table()));
}

TEST_P(SmallWindowTest, ShowsWhatHasTheKeysInEachPane)
{
    openDemo();
    for (QDockWidget *dock : window->docks()) {
        dock->raise();
        dock->widget()->setFocus();
        settle();
        QSet<QWidget *> left;
        for (QWidget *widget : dock->widget()->findChildren<QWidget *>()) {
            if (widget->isVisible() && widget->isEnabled() && (widget->focusPolicy() & Qt::TabFocus) != 0 &&
                widget->focusProxy() == nullptr)
                left.insert(widget);
        }
        EXPECT_FALSE(left.isEmpty()) << dock->windowTitle().toStdString();
        // All around the window, so that the panes below are reached as well.
        const QWidget *first = QApplication::focusWidget();
        int steps = 0;
        do {
            QWidget *widget = QApplication::focusWidget();
            ASSERT_NE(widget, nullptr);
            EXPECT_TRUE(isInSight(*widget))
                << dock->windowTitle().toStdString() << ": " << widget->metaObject()->className();
            left.remove(widget);
            QTest::keyClick(widget, Qt::Key_Tab);
            settle();
        } while (QApplication::focusWidget() != first && ++steps < 100);
        for (const QWidget *widget : left)
            ADD_FAILURE() << dock->windowTitle().toStdString() << ": " << widget->metaObject()->className();
    }
}

TEST_P(SmallWindowTest, ScrollsWhatAPaneHasNoRoomFor)
{
    openDemo();
    for (QDockWidget *dock : window->docks()) {
        dock->raise();
        settle();
        const auto *area = qobject_cast<QScrollArea *>(dock->widget());
        ASSERT_NE(area, nullptr);
        EXPECT_TRUE(isShown(*area)) << dock->windowTitle().toStdString();
        const QSize pane = area->widget()->size();
        EXPECT_EQ(area->verticalScrollBar()->isVisible(), pane.height() > area->viewport()->height());
        EXPECT_EQ(area->horizontalScrollBar()->isVisible(), pane.width() > area->viewport()->width());
    }
}

TEST_P(SmallWindowTest, IsNoLargerForALongMessage)
{
    openDemo();
    window->showMessage(QStringLiteral("cannot be read ").repeated(10));
    settle();
    EXPECT_TRUE(fits()) << window->minimumSizeHint().width() << " x " << window->minimumSizeHint().height();
}

TEST_P(SmallWindowTest, ScrollsDialogsThatAreHigherThanItsScreen)
{
    openDemo();
    // Sixteen switches for the bits of the alarms.
    window->showWriteDialog(11);
    OpenDialog open({}, window.get());
    open.show();
    settle();
    for (const QWidget *dialog : std::initializer_list<QWidget *>{window->writeDialog(), &open}) {
        const QSize least = dialog->minimumSizeHint();
        EXPECT_EQ(least.boundedTo(GetParam().size), least)
            << dialog->windowTitle().toStdString() << ": " << least.width() << " x " << least.height();
    }
}

INSTANTIATE_TEST_SUITE_P(Screens, SmallWindowTest,
                         testing::Values(Screen{"HalfThePixels", 1, {640, 400}},
                                         Screen{"LargeLetters", 2, {1280, 800}}),
                         [](const auto &screen) { return std::string(screen.param.name); });
