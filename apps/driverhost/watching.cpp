#include "watching.h"

#include "messages.h"
#include "statistics.h"
#include "stop_signal.h"
#include "target.h"
#include "watch_view.h"

#include <QDateTime>
#include <QEventLoop>
#include <QTimer>

#include <algorithm>
#include <limits>

namespace
{

const int LongestInterval = 24 * 3600 * 1000;
const int MostRounds = 1000000000;

// Until the time comes or a signal asks to stop.
void waitFor(const StopSignal &signal, qint64 milliseconds)
{
    if (milliseconds <= 0 || StopSignal::raised())
        return;
    QEventLoop loop;
    QTimer timer;
    timer.setSingleShot(true);
    timer.setTimerType(Qt::PreciseTimer);
    QObject::connect(&timer, &QTimer::timeout, &loop, &QEventLoop::quit);
    QObject::connect(&signal, &StopSignal::stop, &loop, &QEventLoop::quit);
    timer.start(static_cast<int>(milliseconds));
    loop.exec();
}

class Watch
{
public:
    Watch(Session &session, const std::vector<Reading> &readings, const WatchSettings &settings)
        : m_session(session), m_readings(readings), m_settings(settings)
    {
    }

    int run();

private:
    bool readRound(WatchView &view);
    bool readOne(WatchView &view, size_t index);
    bool failOthers(WatchView &view, size_t first);
    std::vector<ValueRow> timedRows(const Reading &reading, const QByteArray &data) const;
    QString failureText(const Reading &reading);
    bool isStopped() const;
    bool isOver(int rounds) const;
    qint64 timeToNextRound() const;

    Session &m_session;
    const std::vector<Reading> &m_readings;
    const WatchSettings &m_settings;
    Statistics m_statistics;
    QElapsedTimer m_clock;
    int m_failure = Success;
    bool m_isUnconnected = false;
};

int Watch::run()
{
    const StopSignal signal;
    m_clock.start();
    bool isRead = true;
    {
        const std::unique_ptr<WatchView> view = makeWatchView(m_readings, m_settings);
        m_session.channel().setCancelled([&] {
            view->tick();
            return isStopped();
        });
        for (int rounds = 1;; ++rounds) {
            isRead = readRound(*view) && view->endRound();
            if (!isRead || isOver(rounds))
                break;
            waitFor(signal, timeToNextRound());
            if (isOver(rounds))
                break;
        }
    }
    m_session.channel().setCancelled(StopSignal::raised);
    for (const QString &line : m_statistics.lines(m_clock.elapsed()))
        tell(line);
    if (!isRead)
        return OutputClosed;
    return m_statistics.transactions() > m_statistics.failures() ? Success : m_failure;
}

bool Watch::readRound(WatchView &view)
{
    for (size_t i = 0; i < m_readings.size(); ++i) {
        if (!readOne(view, i))
            return false;
        // Without a connection the others would wait for one each, and in vain.
        if (m_isUnconnected && !failOthers(view, i + 1))
            return false;
        if (m_isUnconnected)
            break;
    }
    return true;
}

bool Watch::readOne(WatchView &view, size_t index)
{
    const Reading &reading = m_readings[index];
    const std::optional<QByteArray> data = m_session.read(reading.items);
    m_isUnconnected = !data && m_session.failure() == CannotConnect;
    if (data) {
        m_statistics.addSuccess(m_session.latencyMicroseconds());
        return view.add(index, timedRows(reading, *data));
    }
    // What was given up because the run is over is no failure of the slave.
    if (isStopped())
        return true;
    m_failure = m_session.failure();
    m_statistics.addFailure(m_session.lastError());
    return view.addFailure(index, failureText(reading));
}

bool Watch::failOthers(WatchView &view, size_t first)
{
    for (size_t i = first; i < m_readings.size(); ++i) {
        if (!view.addFailure(i, failureText(m_readings[i])))
            return false;
    }
    return true;
}

std::vector<ValueRow> Watch::timedRows(const Reading &reading, const QByteArray &data) const
{
    std::vector<ValueRow> rows = rowsOf(reading, data, m_session.stationFor(reading.items));
    const QString time = QDateTime::currentDateTime().toString(Qt::ISODateWithMs);
    for (ValueRow &row : rows) {
        row.time = time;
        row.latency = m_session.latencyMicroseconds();
    }
    return rows;
}

QString Watch::failureText(const Reading &reading)
{
    return reading.items.label(0) + QStringLiteral(": ") + m_session.lastError();
}

bool Watch::isStopped() const
{
    return StopSignal::raised() || (m_settings.duration > 0 && m_clock.elapsed() >= m_settings.duration);
}

bool Watch::isOver(int rounds) const
{
    return isStopped() || (m_settings.rounds > 0 && rounds >= m_settings.rounds);
}

// Rounds keep to their times; those that a long round has missed are left out.
qint64 Watch::timeToNextRound() const
{
    const qint64 now = m_clock.elapsed();
    const qint64 interval = m_settings.interval;
    const qint64 next = interval == 0 ? now : (now / interval + 1) * interval;
    return m_settings.duration > 0 ? std::min(next, m_settings.duration) - now : next - now;
}

} // namespace

QList<QCommandLineOption> watchOptions()
{
    return {
        {QStringLiteral("interval"), QStringLiteral("Seconds from one round to the next (default 1)."),
         QStringLiteral("SECONDS"), QStringLiteral("1")},
        {QStringLiteral("count"), QStringLiteral("End after so many rounds (default: none)."),
         QStringLiteral("N")},
        {QStringLiteral("duration"), QStringLiteral("End after so many seconds (default: none)."),
         QStringLiteral("SECONDS")},
    };
}

WatchSettings watchSettings(CommandLine &line, const LinkSettings &link)
{
    WatchSettings settings;
    settings.interval = line.milliseconds("interval", 0, LongestInterval);
    if (line.isSet("count"))
        settings.rounds = line.number("count", 1, MostRounds);
    if (line.isSet("duration"))
        settings.duration = line.milliseconds("duration", 1, std::numeric_limits<int>::max());
    settings.isTraced = link.trace;
    settings.title = watchTitle(link, settings);
    return settings;
}

QString watchTitle(const LinkSettings &link, const WatchSettings &settings)
{
    const double second = 1000;
    return QStringLiteral("rtutcp://%1/%2  every %3 s  Ctrl-C ends")
        .arg(endpointText(link.channel.host, link.channel.port), QString::number(link.channel.station),
             QString::number(settings.interval / second));
}

int watchReadings(Session &session, const std::vector<Reading> &readings, const WatchSettings &settings)
{
    return Watch(session, readings, settings).run();
}
