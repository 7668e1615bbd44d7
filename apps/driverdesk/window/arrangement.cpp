#include "apps/driverdesk/panes/message_bar.h"
#include "apps/driverdesk/panes/points_pane.h"
#include "apps/driverdesk/panes/scrolled_widget.h"
#include "apps/driverdesk/panes/slave_pane.h"
#include "apps/driverdesk/panes/traffic_pane.h"
#include "apps/driverdesk/trends/line_pane.h"
#include "apps/driverdesk/trends/trends_pane.h"
#include "apps/driverdesk/window/main_window.h"
#include "apps/driverdesk/window/start_page.h"

#include <QDockWidget>
#include <QLabel>
#include <QLineEdit>
#include <QStackedWidget>
#include <QStatusBar>
#include <QVBoxLayout>

// Where the panes lie.

namespace
{

const int Gap = 4; // pixels beside a pane

} // namespace

void MainWindow::makePanes()
{
    auto *page = new StartPage(this);
    connect(page, &StartPage::openWanted, this, &MainWindow::askAndOpen);
    connect(page, &StartPage::workspaceWanted, this, &MainWindow::askForWorkspace);
    connect(page, &StartPage::demoWanted, this, [this] { openDemo(1); });
    // By itself, so that the points may be lower than it.
    m_center->addWidget(new ScrolledWidget(page, this));
    m_center->addWidget(m_pointsPane);
    auto *central = new QWidget(this);
    auto *column = new QVBoxLayout(central);
    column->setContentsMargins(Gap, Gap, Gap, 0);
    column->addWidget(m_message);
    column->addWidget(new ScrolledWidget(m_center, central), 1);
    setCentralWidget(central);
    setDockNestingEnabled(true);
    arrange();
    makeStatusBar();
}

// The reason of a failure can be long: it scrolls, so that it does not make the window wider.
void MainWindow::makeStatusBar()
{
    m_stateText->setReadOnly(true);
    m_stateText->setFrame(false);
    m_stateText->setAccessibleName(tr("State of the link"));
    QPalette palette;
    palette.setBrush(QPalette::Base, Qt::transparent);
    m_stateText->setPalette(palette);
    statusBar()->addWidget(m_stateText, 1);
    for (QLabel *label : {m_rateLabel, m_lockLabel}) {
        label->setTextInteractionFlags(Qt::TextSelectableByMouse);
        statusBar()->addPermanentWidget(label);
    }
}

// Trends at the left below the points, the others at the right of them, one over the other.
void MainWindow::arrange()
{
    QDockWidget *trends =
        addPane(m_trendsPane, QStringLiteral("trends"), tr("Trends"), Qt::BottomDockWidgetArea);
    QDockWidget *traffic =
        addPane(m_trafficPane, QStringLiteral("traffic"), tr("Traffic"), Qt::BottomDockWidgetArea);
    QDockWidget *line = addPane(m_linePane, QStringLiteral("line"), tr("Line"), Qt::BottomDockWidgetArea);
    QDockWidget *slave = addPane(m_slavePane, QStringLiteral("slave"), tr("Slave"), Qt::BottomDockWidgetArea);
    splitDockWidget(trends, traffic, Qt::Horizontal);
    tabifyDockWidget(traffic, line);
    tabifyDockWidget(line, slave);
    traffic->raise();
    resizeDocks({trends, traffic}, {1, 1}, Qt::Horizontal);
}

QDockWidget *MainWindow::addPane(QWidget *pane, const QString &name, const QString &title,
                                 Qt::DockWidgetArea area)
{
    pane->setContentsMargins(Gap, 0, Gap, 0);
    auto *dock = new QDockWidget(title, this);
    dock->setObjectName(name);
    dock->setWidget(new ScrolledWidget(pane, dock));
    addDockWidget(area, dock);
    m_docks.push_back(dock);
    return dock;
}

void MainWindow::showPanes()
{
    m_center->setCurrentWidget(m_pointsPane);
    for (QDockWidget *dock : m_docks)
        dock->show();
    // Where there is no room for two beside each other, they lie over each other.
    if (width() < fontMetrics().averageCharWidth() * 150)
        tabifyDockWidget(m_docks[1], m_docks[0]);
    m_docks[1]->raise();
    // Sizes count once all of it is laid out.
    QTimer::singleShot(0, this, [this] {
        resizeDocks({m_docks[0], m_docks[1]}, {width() * 2 / 5, width() * 3 / 5}, Qt::Horizontal);
        resizeDocks({m_docks[0], m_docks[1]}, {height() / 2, height() / 2}, Qt::Vertical);
    });
}

// The Tab key also goes to panes that lie below others.
void MainWindow::raiseFocused(QWidget *focus)
{
    for (QDockWidget *dock : m_docks) {
        if (dock->isAncestorOf(focus))
            dock->raise();
    }
}
