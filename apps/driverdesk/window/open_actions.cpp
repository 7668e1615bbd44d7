#include "apps/driverdesk/window/main_window.h"

#include "apps/driverdesk/dialogs/open_dialog.h"
#include "apps/driverdesk/dialogs/write_dialog.h"
#include "apps/driverdesk/panes/points_pane.h"
#include "apps/driverdesk/trends/trends_pane.h"
#include "apps/driverdesk/workspace/recent_files.h"
#include "desk/targets/target_file.h"

#include <QDockWidget>
#include <QFileDialog>

// What a person opens and saves.

namespace
{

const char WorkspaceFilter[] = QT_TRANSLATE_NOOP("MainWindow", "Workspaces (*.driverdesk)");

QStringList targetNames()
{
    QStringList names;
    const Result<TargetFile> file = TargetFile::read(TargetFile::defaultPath());
    for (const QString &name : file ? file->names() : QStringList())
        names += QLatin1Char('@') + name;
    return names;
}

} // namespace

void MainWindow::askAndOpen()
{
    OpenDialog dialog(targetNames(), this);
    if (dialog.exec() == QDialog::Accepted)
        open(dialog.arguments());
}

void MainWindow::askForPoints()
{
    const QString path =
        QFileDialog::getOpenFileName(this, tr("Table of points"), {}, tr("Tables (*.csv);;All files (*)"));
    if (path.isEmpty())
        return;
    OpenDialog dialog(targetNames(), this);
    dialog.setPoints(path);
    if (dialog.exec() == QDialog::Accepted)
        open(dialog.arguments());
}

void MainWindow::askForProject()
{
    const QString path = QFileDialog::getOpenFileName(this, tr("Project database"), {}, tr("All files (*)"));
    if (path.isEmpty())
        return;
    OpenDialog dialog(targetNames(), this);
    dialog.setProject(path);
    if (dialog.exec() == QDialog::Accepted)
        open(dialog.arguments());
}

void MainWindow::askForWorkspace()
{
    const QString path = QFileDialog::getOpenFileName(this, tr("Open a workspace"), {}, tr(WorkspaceFilter));
    if (!path.isEmpty())
        openWorkspace(path);
}

void MainWindow::askAndSaveWorkspace()
{
    const QString path = QFileDialog::getSaveFileName(
        this, tr("Save the workspace"),
        m_workspacePath.isEmpty() ? QStringLiteral("desk.driverdesk") : m_workspacePath, tr(WorkspaceFilter));
    if (!path.isEmpty())
        saveWorkspaceTo(path);
}

bool MainWindow::openWorkspace(const QString &path)
{
    const Result<Workspace> workspace = readWorkspace(path);
    if (!workspace) {
        showMessage(workspace.errorText());
        RecentFiles().remove(path);
        emit recentChanged();
        return false;
    }
    m_workspacePath = path;
    RecentFiles().add(path);
    emit recentChanged();
    apply(*workspace);
    return true;
}

bool MainWindow::saveWorkspaceTo(const QString &path)
{
    const Result<> saved = saveWorkspace(path, workspaceNow());
    if (!saved) {
        showMessage(saved.errorText());
        return false;
    }
    m_workspacePath = path;
    RecentFiles().add(path);
    emit recentChanged();
    return true;
}

Workspace MainWindow::workspaceNow() const
{
    Workspace workspace;
    workspace.opening = m_opening;
    for (const TrendCurve &curve : m_trends.curves())
        workspace.curves.push_back({curve.label, curve.isRight, curve.isShown});
    workspace.trendSpan = m_trendsPane->span();
    workspace.geometry = saveGeometry();
    workspace.layout = saveState();
    workspace.columns = m_pointsPane->saveColumns();
    workspace.slave.isRunning = m_slave.isRunning();
    workspace.slave.port = m_slave.port();
    workspace.slave.faults = m_slave.faults().namesOn();
    workspace.slave.oneOf = m_slave.faults().oneOf();
    workspace.slave.values = m_slave.values().values();
    return workspace;
}

void MainWindow::apply(const Workspace &workspace)
{
    // First the slave: what is opened may be it.
    applySlave(workspace.slave);
    if (!workspace.opening.isEmpty() && !open(workspace.opening))
        return;
    for (const Workspace::Curve &curve : workspace.curves) {
        if (!m_trends.addNamed(curve.label))
            continue;
        const int row = m_trends.rowCount() - 1;
        m_trends.setData(m_trends.index(row, static_cast<int>(TrendColumn::Axis)),
                         curve.isRight ? QStringLiteral("right") : QStringLiteral("left"), Qt::EditRole);
        m_trends.setData(m_trends.index(row, 0), curve.isShown ? Qt::Checked : Qt::Unchecked,
                         Qt::CheckStateRole);
    }
    if (workspace.trendSpan > 0)
        m_trendsPane->setSpan(workspace.trendSpan);
    restoreGeometry(workspace.geometry);
    restoreState(workspace.layout);
    m_pointsPane->restoreColumns(workspace.columns);
}

void MainWindow::applySlave(const Workspace::Slave &slave)
{
    m_slave.stop();
    m_slave.values().setValues(slave.values);
    for (const QString &name : m_slave.faults().namesOn())
        m_slave.faults().setOn(name, false);
    for (const QString &name : slave.faults)
        m_slave.faults().setOn(name, true);
    m_slave.faults().setOneOf(slave.oneOf);
    if (!slave.isRunning)
        return;
    QList<int> stations{1};
    for (const SlaveValue &value : slave.values) {
        if (!stations.contains(value.station))
            stations += value.station;
    }
    const Result<> started = m_slave.start(slave.port, stations);
    if (!started)
        showMessage(started.errorText());
}
