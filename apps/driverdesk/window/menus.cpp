#include "apps/driverdesk/window/menus.h"

#include "apps/driverdesk/panes/points_pane.h"
#include "apps/driverdesk/panes/table.h"
#include "apps/driverdesk/window/main_window.h"
#include "apps/driverdesk/workspace/recent_files.h"

#include <QAction>
#include <QApplication>
#include <QDockWidget>
#include <QLineEdit>
#include <QMenuBar>
#include <QMessageBox>
#include <QToolBar>

namespace
{

QKeySequence withControl(int key)
{
    return QKeySequence(static_cast<int>(Qt::CTRL) + key);
}

// Makes the actions of one window.
class Menus
{
public:
    explicit Menus(MainWindow &window) : m_window(window) {}

    void addAll()
    {
        addFileMenu();
        addLinkMenu();
        addViewMenu();
        addHelpMenu();
        auto *bar = m_window.addToolBar(MainWindow::tr("Tools"));
        bar->setObjectName(QStringLiteral("tools"));
        bar->setToolButtonStyle(Qt::ToolButtonTextOnly);
        bar->addActions({m_open, m_save, m_pause, m_lock, m_write, m_trend});
    }

private:
    template <typename Function>
    QAction *add(QMenu *menu, const QString &text, const QKeySequence &keys, Function function)
    {
        QAction *action = menu->addAction(text);
        action->setShortcut(keys);
        QObject::connect(action, &QAction::triggered, &m_window, function);
        return action;
    }

    void addFileMenu();
    void addLinkMenu();
    void addViewMenu();
    void addHelpMenu();
    void fillRecent(QMenu *menu);
    void writeCurrent() const;

    MainWindow &m_window;
    QAction *m_open = nullptr;
    QAction *m_save = nullptr;
    QAction *m_pause = nullptr;
    QAction *m_lock = nullptr;
    QAction *m_write = nullptr;
    QAction *m_trend = nullptr;
};

void Menus::addFileMenu()
{
    MainWindow *window = &m_window;
    QMenu *menu = window->menuBar()->addMenu(MainWindow::tr("&File"));
    m_open = add(menu, MainWindow::tr("&Open…"), QKeySequence::Open, [=] { window->askAndOpen(); });
    add(menu, MainWindow::tr("Open a table of &points…"), Qt::CTRL + Qt::SHIFT + Qt::Key_P,
        [=] { window->askForPoints(); });
    add(menu, MainWindow::tr("Open a pro&ject…"), Qt::CTRL + Qt::SHIFT + Qt::Key_J,
        [=] { window->askForProject(); });
    add(menu, MainWindow::tr("&Demo"), withControl(Qt::Key_D), [=] { window->openDemo(1); });
    add(menu, MainWindow::tr("&Close the link"), withControl(Qt::Key_W), [=] { window->closeLink(); });
    menu->addSeparator();
    add(menu, MainWindow::tr("Open a wor&kspace…"), Qt::CTRL + Qt::SHIFT + Qt::Key_O,
        [=] { window->askForWorkspace(); });
    m_save = add(menu, MainWindow::tr("&Save the workspace"), QKeySequence::Save, [=] {
        if (window->workspacePath().isEmpty())
            window->askAndSaveWorkspace();
        else
            window->saveWorkspaceTo(window->workspacePath());
    });
    add(menu, MainWindow::tr("Save the workspace &as…"), Qt::CTRL + Qt::SHIFT + Qt::Key_S,
        [=] { window->askAndSaveWorkspace(); });
    QMenu *recent = menu->addMenu(MainWindow::tr("&Recent workspaces"));
    fillRecent(recent);
    QObject::connect(window, &MainWindow::recentChanged, recent, [=] { Menus(*window).fillRecent(recent); });
    menu->addSeparator();
    add(menu, MainWindow::tr("&Quit"), QKeySequence::Quit, [=] { window->close(); });
}

void Menus::fillRecent(QMenu *menu)
{
    MainWindow *window = &m_window;
    menu->clear();
    const QStringList paths = RecentFiles().paths();
    for (const QString &path : paths)
        menu->addAction(path, window, [=] { window->openWorkspace(path); });
    menu->setEnabled(!paths.isEmpty());
}

void Menus::addLinkMenu()
{
    MainWindow *window = &m_window;
    QMenu *menu = window->menuBar()->addMenu(MainWindow::tr("&Link"));
    m_pause = add(menu, MainWindow::tr("&Pause reading"), withControl(Qt::Key_P),
                  [=](bool isOn) { window->setReadingPaused(isOn); });
    m_pause->setCheckable(true);
    QObject::connect(window, &MainWindow::pauseChanged, m_pause, &QAction::setChecked);
    add(menu, MainWindow::tr("&Ask again for what was refused"), QKeySequence::Refresh,
        [=] { window->askAgain(); });
    m_lock = add(menu, MainWindow::tr("&Lock writing"), withControl(Qt::Key_L),
                 [=](bool isOn) { window->setLocked(isOn); });
    m_lock->setCheckable(true);
    m_lock->setChecked(true);
    QObject::connect(window, &MainWindow::lockChanged, m_lock, &QAction::setChecked);
    m_write = add(menu, MainWindow::tr("&Write…"), withControl(Qt::Key_Return),
                  [=] { Menus(*window).writeCurrent(); });
    m_trend = add(menu, MainWindow::tr("Show in &trends"), withControl(Qt::Key_T),
                  [=] { window->addTrends(window->pointsPane()->selectedRows()); });
}

void Menus::writeCurrent() const
{
    const std::vector<int> rows = m_window.pointsPane()->selectedRows();
    if (rows.empty())
        m_window.showMessage(MainWindow::tr("Nothing is selected: expected a point to write."));
    else
        m_window.showWriteDialog(rows.front());
}

void Menus::addViewMenu()
{
    MainWindow *window = &m_window;
    QMenu *menu = window->menuBar()->addMenu(MainWindow::tr("&View"));
    add(menu, MainWindow::tr("&Points"), withControl(Qt::Key_1),
        [=] { window->pointsPane()->table()->setFocus(); });
    int key = Qt::Key_2;
    for (QDockWidget *dock : window->docks()) {
        add(menu, dock->windowTitle(), withControl(key++), [=] {
            dock->show();
            dock->raise();
            dock->widget()->setFocus();
        });
    }
    menu->addSeparator();
    for (QDockWidget *dock : window->docks()) {
        QAction *toggle = dock->toggleViewAction();
        toggle->setText(MainWindow::tr("Show %1").arg(dock->windowTitle()));
        menu->addAction(toggle);
    }
    add(menu, MainWindow::tr("&Filter"), QKeySequence::Find,
        [=] { window->pointsPane()->filterEdit()->setFocus(); });
    window->pointsPane()->addColumnActions(menu->addMenu(MainWindow::tr("&Columns of the points")));
    QAction *dark = add(menu, MainWindow::tr("&Dark"), {}, [=](bool isOn) { window->setDark(isOn); });
    dark->setCheckable(true);
    QObject::connect(window, &MainWindow::darkChanged, dark, &QAction::setChecked);
}

void Menus::addHelpMenu()
{
    MainWindow *window = &m_window;
    QMenu *menu = window->menuBar()->addMenu(MainWindow::tr("&Help"));
    add(menu, MainWindow::tr("&Keys"), QKeySequence::HelpContents, [=] {
        QMessageBox box(
            QMessageBox::NoIcon, MainWindow::tr("Keys"),
            MainWindow::tr("Ctrl+1 to Ctrl+5: the panes. Tab: on within a pane.\n"
                           "Points: Enter writes, Ctrl+T draws, Ctrl+C copies, Ctrl+F filters.\n"
                           "Trends: + and – zoom, the arrows pan, with Shift they move the cursor, Space "
                           "pauses, Home shows all up to now.\n"
                           "Tables of values: F2 edits, Space switches.\n"
                           "Ctrl+L locks and unlocks writing, Ctrl+P pauses reading, Escape closes a "
                           "message."),
            QMessageBox::Ok, window);
        box.setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
        box.exec();
    });
    add(menu, MainWindow::tr("&About"), {}, [=] {
        QMessageBox::about(
            window, MainWindow::tr("driverdesk"),
            MainWindow::tr("driverdesk %1, a window on slaves that speak Modbus RTU framing over TCP.\n"
                           "MIT licence. Curves are drawn with Qwt.")
                .arg(QApplication::applicationVersion()));
    });
}

} // namespace

void addMenus(MainWindow &window)
{
    Menus(window).addAll();
}
