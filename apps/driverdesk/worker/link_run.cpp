#include "apps/driverdesk/worker/link_run.h"

#include "apps/driverdesk/worker/write_run.h"
#include "apps/driverhost/console/interruptible_run.h"
#include "desk/learning/learnt_file.h"
#include "desk/startup/beside_database.h"
#include "desk/startup/link_project.h"
#include "desk/startup/plugin_file.h"
#include "desk/time_text.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

namespace
{

// Milliseconds between two publications.
const qint64 PublishInterval = 100;
// Microseconds after which a reading is given up for something urgent.
const qint64 LongWait = 300000;

QString databasePath()
{
    return QCoreApplication::applicationDirPath() + QStringLiteral("/compile/database/database");
}

// The driver looks beside the running program, so what lies there is replaced.
Result<> layDatabase(const Ground &ground)
{
    const QString path = databasePath();
    if (!QDir().mkpath(QFileInfo(path).path()))
        return Error{QStringLiteral("no folder can be made for %1").arg(path)};
    QFile::remove(path);
    return makeLinkProject(ground.link, ground.tags, path);
}

Result<QString> pluginFor(const LinkSettings &link)
{
    const QString inherited = inheritedPlugin();
    return link.plugin.isEmpty() && !inherited.isEmpty() ? Result<QString>(inherited)
                                                         : findPlugin(link.plugin);
}

} // namespace

LinkRun::LinkRun(Feed &feed, Wishes wishes) : m_feed(feed), m_wishes(std::move(wishes)) {}

void LinkRun::open(const Ground &ground, int number)
{
    close();
    m_ground = ground;
    m_snapshot = Snapshot();
    m_snapshot.ground = number;
    m_snapshot.interval = ground.interval;
    m_latencies = LatencyClasses();
    m_durations = Durations();
    m_firstRows.clear();
    int rows = 0;
    for (const Reading &reading : m_ground.readings) {
        m_firstRows.push_back(rows);
        rows += int(reading.shown.size());
    }
    m_snapshot.samples.resize(static_cast<size_t>(rows));

    const Result<> laid = layDatabase(m_ground);
    if (!laid)
        return tellStatus(LinkStatus::Unusable, laid.errorText());
    const Result<QString> plugin = pluginFor(m_ground.link);
    if (!plugin)
        return tellStatus(LinkStatus::Unusable, plugin.errorText());
    Result<Learnt> learnt = learntFor(m_ground.plan, m_ground.readings, m_ground.link.channel.station);
    if (!learnt)
        return tellStatus(LinkStatus::Unusable, learnt.errorText());
    m_learnt = *std::move(learnt);
    const Result<> recording = beginRecording();
    if (!recording)
        return tellStatus(LinkStatus::Unusable, recording.errorText());
    m_ground.link.trace = [this, sink = m_ground.link.trace](const QString &line) {
        m_feed.putTrace(line);
        if (sink)
            sink(line);
    };
    auto session = std::make_unique<Session>(*plugin, m_ground.link);
    // The plug-in's own object may have loaded another project.
    if (!session->driver().renew())
        return tellStatus(LinkStatus::Unusable, session->errorString());
    m_session = std::move(session);
    m_session->channel().setCancelled([this] { return tick(); });
    m_planned = std::make_unique<PlannedReadings>(*m_session, m_ground.readings, m_learnt);
    m_busy.begin(m_session->channel().now());
    m_nextRoundAt = steadyNow();
    m_isNew = true;
    tellStatus(LinkStatus::Opening, {});
}

LinkRun::~LinkRun()
{
    close();
}

Result<> LinkRun::beginRecording()
{
    const LinkSettings &link = m_ground.link;
    m_recorder = std::make_unique<Recorder>(link.recordFile, link.channel.device, link.channel.retries);
    Result<> opened = m_recorder->open();
    if (opened && m_recorder->isRecording())
        m_ground.link.record = [this](const kit::Recording &recording) { m_recorder->add(recording); };
    return opened;
}

void LinkRun::noteTrouble(const Result<> &result)
{
    if (!result)
        m_feed.putTrace(traceEvent(QDateTime::currentDateTime(), result.errorText()));
}

// What was learnt and recorded outlives the link.
void LinkRun::close()
{
    if (m_session && !m_ground.plan.learntFile.isEmpty())
        noteTrouble(writeLearntFile(m_ground.plan.learntFile, m_learnt));
    if (m_session && m_recorder->isRecording())
        noteTrouble(m_recorder->write());
    m_planned.reset();
    m_session.reset();
    tellStatus(LinkStatus::Closed, {});
}

void LinkRun::forgetRefusals()
{
    for (auto &[station, facts] : m_learnt)
        facts.forgetRefusals();
    m_nextRoundAt = steadyNow();
}

void LinkRun::setInterval(int milliseconds)
{
    m_ground.interval = milliseconds;
    m_snapshot.interval = milliseconds;
    m_nextRoundAt = std::min(m_nextRoundAt, steadyNow() + milliseconds);
}

void LinkRun::write(const WriteOrder &order)
{
    if (m_session) {
        m_session->setRepeatsRefused(true);
        m_feed.put(carryOut(*m_session, order));
        if (!order.isPreview)
            countCommand();
    } else {
        WriteOutcome outcome;
        outcome.id = order.id;
        outcome.isPreview = order.isPreview;
        outcome.text = QStringLiteral("Nothing is open.");
        m_feed.put(outcome);
    }
    // What was written shows at once.
    if (!order.isPreview)
        m_nextRoundAt = steadyNow();
}

void LinkRun::readRound()
{
    const qint64 beganAt = steadyNow();
    m_isReading = true;
    const bool isWhole = m_planned->readRound(*this) && !m_session->channel().isCancelled();
    if (isWhole) {
        ++m_snapshot.rounds;
        m_snapshot.roundTime = steadyNow() - beganAt;
        m_planned->explore();
        m_nextRoundAt = std::max(beganAt + m_ground.interval, steadyNow());
    } else {
        m_nextRoundAt = steadyNow();
    }
    m_isReading = false;
    m_isNew = true;
}

bool LinkRun::add(size_t reading, const QByteArray &data)
{
    const std::vector<Reading::Shown> &shown = m_ground.readings[reading].shown;
    for (size_t i = 0; i < shown.size(); ++i) {
        const Point &point = *shown[i].point;
        addSample(m_firstRows[reading] + int(i), shownOf(point, valueAt(data, shown[i].place)), point.unit);
    }
    tellStatus(LinkStatus::Good, {});
    publish();
    return !m_wishes.isUrgent();
}

void LinkRun::addSample(int row, const PointValue &value, const QString &unit)
{
    PointSample &sample = m_snapshot.samples[static_cast<size_t>(row)];
    const CommandRecord &command = m_session->lastCommand();
    sample.text = value.withUnit(unit);
    sample.raw = value.raw;
    sample.number = value.number.toDouble(std::numeric_limits<double>::quiet_NaN());
    sample.limit = value.limit;
    sample.readAt = steadyNow();
    sample.round = m_snapshot.rounds;
    sample.failure.clear();
    sample.latency = command.latency();
    sample.attempts = command.attempts();
    noteTrend(row, sample.number);
    m_isNew = true;
}

bool LinkRun::addFailure(const std::vector<size_t> &readings, const Failure &failure)
{
    addGaps(readings, failure);
    m_feed.putTrace(traceEvent(QDateTime::currentDateTime(), failure.text));
    tellStatus(LinkStatus::Failing, failure.text);
    publish();
    return !m_wishes.isUrgent();
}

// Refused before, and so of a slave that answers.
bool LinkRun::addNotAsked(const std::vector<size_t> &readings, const Failure &failure)
{
    addGaps(readings, failure);
    return !m_wishes.isUrgent();
}

void LinkRun::addGaps(const std::vector<size_t> &readings, const Failure &failure)
{
    for (const size_t reading : readings) {
        for (size_t i = 0; i < m_ground.readings[reading].shown.size(); ++i)
            addGap(m_firstRows[reading] + int(i), failure);
    }
}

void LinkRun::addGap(int row, const Failure &failure)
{
    PointSample &sample = m_snapshot.samples[static_cast<size_t>(row)];
    sample.failure = failure.text;
    sample.latency = -1;
    sample.attempts = m_session->lastCommand().attempts();
    ++sample.errors;
    noteTrend(row, std::numeric_limits<double>::quiet_NaN());
    m_isNew = true;
}

void LinkRun::noteTrend(int row, double number)
{
    if (m_trended.count(row) > 0)
        m_feed.put(TrendSample{row, QDateTime::currentMSecsSinceEpoch(), number});
}

void LinkRun::addCommand(bool /*isRead*/)
{
    countCommand();
}

void LinkRun::countCommand()
{
    const CommandRecord &command = m_session->lastCommand();
    m_busy.add(command.beganAt(), command.beganAt() + command.duration());
    if (command.latency() > 0) {
        m_latencies.add(command.latency());
        m_durations.add(command.latency());
    }
}

// Called many times a second while something is waited for.
bool LinkRun::tick()
{
    const qint64 now = steadyNow();
    if (now - m_statusAt > PublishInterval) {
        const QString wait = waitText(*m_session);
        if (!wait.isEmpty())
            tellStatus(m_status.state, wait);
        publish();
    }
    return isToBeGivenUp();
}

// A reply that is given up costs the time after which the line is settled, so a short wait is sat out.
bool LinkRun::isToBeGivenUp() const
{
    if (m_wishes.isStopped())
        return true;
    const qint64 waited = m_session->channel().now() - m_session->lastCommand().beganAt();
    return m_isReading && waited > LongWait && m_wishes.isUrgent();
}

std::optional<qint64> LinkRun::publish()
{
    if (!m_isNew || !m_session)
        return std::nullopt;
    const qint64 dueAt = m_publishedAt + PublishInterval;
    if (steadyNow() < dueAt)
        return dueAt;
    m_publishedAt = steadyNow();
    m_isNew = false;
    m_feed.put(std::make_shared<const Snapshot>(m_snapshot));
    m_feed.put(report());
    return std::nullopt;
}

LineReport LinkRun::report() const
{
    LineReport report;
    const qint64 now = m_session->channel().now();
    report.counts = m_session->counts();
    report.latencies = m_latencies;
    report.median = m_durations.quantile(0.5);
    report.ninetyFifth = m_durations.quantile(0.95);
    report.ninetyNinth = m_durations.quantile(0.99);
    report.busyShare = m_busy.share(now);
    report.recentBusyShare = m_busy.recentShare(now);
    return report;
}

void LinkRun::tellStatus(LinkStatus::State state, const QString &text)
{
    m_statusAt = steadyNow();
    if (m_status.state == state && m_status.text == text)
        return;
    m_status = {state, text};
    m_feed.put(m_status);
}
