#pragma once

#include "apps/driverdesk/models/line_model.h"
#include "apps/driverdesk/models/points_model.h"
#include "apps/driverdesk/models/traffic_model.h"
#include "apps/driverdesk/opening/window_options.h"
#include "apps/driverdesk/slave/moving_slave.h"
#include "apps/driverdesk/trends/trend_book.h"
#include "apps/driverdesk/worker/link_worker.h"
#include "apps/driverdesk/workspace/workspace.h"

#include <QMainWindow>
#include <QPointer>
#include <QTimer>

class LinePane;
class MessageBar;
class PointsPane;
class QAction;
class QDockWidget;
class QLabel;
class QLineEdit;
class QStackedWidget;
class SlavePane;
class TrafficPane;
class TrendsPane;
class WriteDialog;

/// The window: the panes on what is open, and the worker that reads it.
class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    explicit MainWindow(QWidget *parent = nullptr);
    ~MainWindow() override;

    /// Opens what the command line says.
    void start(const WindowOptions &options);
    /// Opens what arguments say in the place of what is open; what is wrong with them is shown.
    bool open(const QStringList &arguments);
    void openDemo(int seed);
    /// Opens what is shown of the embedded slave.
    void openSlave(quint16 port);
    bool openWorkspace(const QString &path);
    bool saveWorkspaceTo(const QString &path);
    void closeLink();
    /// Asks again at once for what was refused before.
    void askAgain() { m_worker.askAgain(); }

    void showMessage(const QString &text);
    /// What is shown of that; empty when it was closed.
    QString message() const;
    void showWriteDialog(int row);
    void addTrends(const std::vector<int> &rows);

    PointsModel &points() { return m_points; }
    TrendBook &trends() { return m_trends; }
    MovingSlave &slave() { return m_slave; }
    PointsPane *pointsPane() const { return m_pointsPane; }
    TrendsPane *trendsPane() const { return m_trendsPane; }
    TrafficPane *trafficPane() const { return m_trafficPane; }
    LinePane *linePane() const { return m_linePane; }
    SlavePane *slavePane() const { return m_slavePane; }
    /// The one that is open; none.
    WriteDialog *writeDialog() const;
    const std::vector<QDockWidget *> &docks() const { return m_docks; }
    const QString &workspacePath() const { return m_workspacePath; }

    bool isLocked() const { return m_isLocked; }
    bool isReadingPaused() const { return m_isPaused; }

    void askAndOpen();
    void askForPoints();
    void askForProject();
    void askForWorkspace();
    void askAndSaveWorkspace();
    void setLocked(bool isLocked);
    void setReadingPaused(bool isPaused);
    void setDark(bool isDark);

signals:
    void lockChanged(bool isLocked);
    void pauseChanged(bool isPaused);
    void darkChanged(bool isDark);
    void recentChanged();
    /// Nothing is left to be done but to end.
    void closing();

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    void makePanes();
    void makeStatusBar();
    void arrange();
    void showPanes();
    QDockWidget *addPane(QWidget *pane, const QString &name, const QString &title, Qt::DockWidgetArea area);
    void raiseFocused(QWidget *focus);
    void connectPanes();
    void openGround(const WindowOptions &options);
    void drain();
    void take(const Delivery &delivery);
    void showStatus(const LinkStatus &status);
    void showRate(const Snapshot &snapshot);
    Workspace workspaceNow() const;
    void apply(const Workspace &workspace);
    void applySlave(const Workspace::Slave &slave);

    Feed m_feed;
    LinkWorker m_worker;
    PointsModel m_points;
    TrafficModel m_traffic;
    LineModel m_line;
    TrendBook m_trends;
    MovingSlave m_slave;

    MessageBar *m_message;
    QStackedWidget *m_center;
    PointsPane *m_pointsPane;
    TrendsPane *m_trendsPane;
    TrafficPane *m_trafficPane;
    LinePane *m_linePane;
    SlavePane *m_slavePane;
    std::vector<QDockWidget *> m_docks;
    QPointer<WriteDialog> m_writeDialog;
    QLineEdit *m_stateText;
    QLabel *m_rateLabel;
    QLabel *m_lockLabel;
    QTimer m_drainTimer;

    QStringList m_opening;
    QString m_workspacePath;
    int m_ground = 0;
    qint64 m_refreshedAt = 0;
    bool m_isLocked = true;
    bool m_isPaused = false;
};
