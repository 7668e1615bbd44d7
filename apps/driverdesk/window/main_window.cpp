#include "apps/driverdesk/window/main_window.h"

#include "apps/driverdesk/demo/demo.h"
#include "apps/driverdesk/dialogs/write_dialog.h"
#include "apps/driverdesk/panes/message_bar.h"
#include "apps/driverdesk/panes/points_pane.h"
#include "apps/driverdesk/panes/slave_pane.h"
#include "apps/driverdesk/panes/traffic_pane.h"
#include "apps/driverdesk/trends/line_pane.h"
#include "apps/driverdesk/trends/trends_pane.h"
#include "apps/driverdesk/window/menus.h"
#include "apps/driverdesk/window/palettes.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDateTime>
#include <QDockWidget>
#include <QLabel>
#include <QLineEdit>
#include <QStackedWidget>

#include <algorithm>

namespace
{

const int DrainInterval = 100;   // milliseconds
const int RefreshInterval = 500; // of what ages, and of the slave's counts

} // namespace

MainWindow::MainWindow(QWidget *parent)
    : QMainWindow(parent),
      m_worker(m_feed),
      m_message(new MessageBar(this)),
      m_center(new QStackedWidget(this)),
      m_pointsPane(new PointsPane(m_points, this)),
      m_trendsPane(new TrendsPane(m_trends, this)),
      m_trafficPane(new TrafficPane(m_traffic, this)),
      m_linePane(new LinePane(m_line, this)),
      m_slavePane(new SlavePane(m_slave, this)),
      m_stateText(new QLineEdit(this)),
      m_rateLabel(new QLabel(this)),
      m_lockLabel(new QLabel(this))
{
    loadBuiltInFiles();
    setWindowTitle(tr("driverdesk"));
    makePanes();
    addMenus(*this);
    // Panes without anything in them would only be in the way.
    for (QDockWidget *dock : m_docks)
        dock->hide();
    connectPanes();
    setLocked(true);
    showStatus({});
    m_worker.start();
    connect(&m_drainTimer, &QTimer::timeout, this, &MainWindow::drain);
    m_drainTimer.start(DrainInterval);
}

MainWindow::~MainWindow()
{
    disconnect(qApp, nullptr, this, nullptr);
    // The panes look at the models until they are gone.
    delete m_writeDialog.data();
    for (QWidget *pane :
         std::initializer_list<QWidget *>{m_pointsPane, m_trendsPane, m_trafficPane, m_linePane, m_slavePane})
        delete pane;
}

void MainWindow::connectPanes()
{
    connect(qApp, &QApplication::focusChanged, this,
            [this](QWidget * /*before*/, QWidget *now) { raiseFocused(now); });
    connect(m_pointsPane, &PointsPane::writeWanted, this, &MainWindow::showWriteDialog);
    connect(m_pointsPane, &PointsPane::trendsWanted, this, &MainWindow::addTrends);
    connect(m_trendsPane, &TrendsPane::failed, this, &MainWindow::showMessage);
    connect(m_trafficPane, &TrafficPane::failed, this, &MainWindow::showMessage);
    connect(m_slavePane, &SlavePane::failed, this, &MainWindow::showMessage);
    connect(m_slavePane, &SlavePane::openWanted, this, &MainWindow::openSlave);
    connect(&m_trends, &TrendBook::curvesChanged, this,
            [this] { m_worker.setTrended(m_trends.trendedRows()); });
}

void MainWindow::start(const WindowOptions &options)
{
    setDark(options.isDark);
    if (options.isDemo)
        openDemo(options.seed);
    else if (!options.workspace.isEmpty())
        openWorkspace(options.workspace);
    else if (!options.ground.readings.empty())
        openGround(options);
}

bool MainWindow::open(const QStringList &arguments)
{
    const Result<WindowOptions> options = windowOptionsOf(arguments);
    if (!options) {
        showMessage(options.errorText());
        return false;
    }
    if (options->ground.readings.empty()) {
        showMessage(tr("Nothing to read: expected addresses, a table of points, or a project."));
        return false;
    }
    openGround(*options);
    return true;
}

void MainWindow::openGround(const WindowOptions &options)
{
    m_message->hide();
    delete m_writeDialog.data();
    m_opening = options.opening;
    std::vector<PointRow> rows = pointRowsOf(options.ground);
    m_ground = m_worker.open(options.ground);
    m_trends.setRows(rows);
    m_points.setRows(std::move(rows));
    m_traffic.clear();
    m_line.setReport({});
    m_pointsPane->fitColumns();
    if (m_center->currentWidget() != m_pointsPane)
        showPanes();
    m_pointsPane->setFocus();
    setReadingPaused(false);
    setWindowTitle(tr("%1 – driverdesk").arg(options.ground.title));
}

void MainWindow::openDemo(int seed)
{
    furnishDemo(m_slave, static_cast<quint32>(seed));
    const Result<> started = m_slave.start(0, {1});
    if (!started)
        return showMessage(started.errorText());
    if (!open(demoArguments(m_slave.port())))
        return;
    for (const QString &label : demoTrends())
        m_trends.addNamed(label);
    setWindowTitle(tr("Demo – driverdesk"));
}

void MainWindow::openSlave(quint16 port)
{
    QStringList arguments{
        QStringLiteral("rtutcp://127.0.0.1:%1/%2").arg(port).arg(m_slave.stations().first())};
    for (const SlaveValue &value : m_slave.values().values())
        arguments +=
            QStringLiteral("%1-%2%3").arg(value.station).arg(areaName(value.area)).arg(value.offset + 1);
    open(arguments);
}

void MainWindow::closeLink()
{
    m_worker.closeLink();
    m_trends.addGaps(QDateTime::currentMSecsSinceEpoch());
}

void MainWindow::showMessage(const QString &text)
{
    m_message->showText(text);
}

QString MainWindow::message() const
{
    return m_message->text();
}

void MainWindow::addTrends(const std::vector<int> &rows)
{
    for (const int row : rows) {
        if (m_trends.trendedRows().count(row) == 0 && !m_trends.add(row))
            return showMessage(tr("%1 is not drawn: it is no number, or there are %2 curves already.")
                                   .arg(labelOf(m_points.rows()[static_cast<size_t>(row)]))
                                   .arg(TrendBook::MaxCurves));
    }
}

void MainWindow::showWriteDialog(int row)
{
    delete m_writeDialog.data();
    const PointRow &point = m_points.rows()[static_cast<size_t>(row)];
    const PointView view = m_points.viewOf(row);
    m_writeDialog = new WriteDialog(point, tr("%1 (%2)").arg(view.valueText(), view.stateText()), this);
    m_writeDialog->setAttribute(Qt::WA_DeleteOnClose);
    m_writeDialog->setLocked(m_isLocked);
    connect(m_writeDialog, &WriteDialog::ordered, this,
            [this](const WriteOrder &order) { m_writeDialog->expect(m_worker.submit(order)); });
    connect(m_writeDialog, &WriteDialog::unlockWanted, this, [this] { setLocked(false); });
    m_writeDialog->open();
}

WriteDialog *MainWindow::writeDialog() const
{
    return m_writeDialog;
}

void MainWindow::setLocked(bool isLocked)
{
    m_isLocked = isLocked;
    m_lockLabel->setText(isLocked ? tr("Writing is locked") : tr("Writing is UNLOCKED"));
    if (m_writeDialog)
        m_writeDialog->setLocked(isLocked);
    emit lockChanged(isLocked);
}

void MainWindow::setReadingPaused(bool isPaused)
{
    m_isPaused = isPaused;
    m_worker.setPaused(isPaused);
    if (isPaused)
        m_trends.addGaps(QDateTime::currentMSecsSinceEpoch());
    emit pauseChanged(isPaused);
}

void MainWindow::setDark(bool isDark)
{
    applyPalette(isDark);
    emit darkChanged(isDark);
}

void MainWindow::drain()
{
    take(m_feed.take());
    const qint64 now = steadyNow();
    if (now - m_refreshedAt < RefreshInterval)
        return;
    m_refreshedAt = now;
    m_slavePane->refresh();
    if (!m_points.rows().empty())
        m_points.setNow(now);
}

void MainWindow::take(const Delivery &delivery)
{
    if (delivery.snapshot && delivery.snapshot->ground == m_ground) {
        m_points.setSnapshot(delivery.snapshot, steadyNow());
        showRate(*delivery.snapshot);
        m_refreshedAt = steadyNow();
        m_slavePane->refresh();
    }
    m_trends.add(delivery.trends);
    m_traffic.addMissed(delivery.lostTrace);
    if (!delivery.trace.isEmpty()) {
        m_traffic.add(delivery.trace);
        m_trafficPane->followEnd();
    }
    if (delivery.line) {
        m_linePane->showReport(*delivery.line);
        std::vector<int> stations;
        for (const auto &entry : delivery.line->counts.stations())
            stations.push_back(entry.first);
        m_trafficPane->setStations(stations);
    }
    for (const WriteOutcome &outcome : delivery.writes) {
        if (m_writeDialog)
            m_writeDialog->showOutcome(outcome);
    }
    if (delivery.status)
        showStatus(*delivery.status);
}

void MainWindow::showStatus(const LinkStatus &status)
{
    const QStringList names = {tr("closed"), tr("opening"), tr("connected"), tr("failing"), tr("not usable")};
    const QString &state = names.at(status.state);
    m_stateText->setText(status.text.isEmpty() ? state : tr("%1: %2").arg(state, status.text));
    m_stateText->setCursorPosition(0);
    if (status.state == LinkStatus::Unusable)
        showMessage(status.text);
}

void MainWindow::showRate(const Snapshot &snapshot)
{
    QString text = tr("%1 rounds").arg(snapshot.rounds);
    if (snapshot.roundTime >= 0)
        text += tr(", the last in %1").arg(durationText(snapshot.roundTime));
    m_rateLabel->setText(text);
}

void MainWindow::closeEvent(QCloseEvent *event)
{
    m_worker.stop();
    event->accept();
    emit closing();
}
