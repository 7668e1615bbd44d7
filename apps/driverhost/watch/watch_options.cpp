#include "apps/driverhost/watch/watch_options.h"

#include "apps/driverhost/console/exit_code.h"
#include "apps/driverhost/console/item_options.h"
#include "apps/driverhost/console/messages.h"
#include "apps/driverhost/console/stop_signal.h"
#include "apps/driverhost/watch/watch_view.h"
#include "desk/items/target.h"
#include "desk/output/summary.h"

#include <QElapsedTimer>

#include <algorithm>
#include <limits>

namespace
{

const int MaxInterval = 24 * 3600 * 1000;
const int MaxRounds = 1000000000;
const qint64 TickInterval = 100; // milliseconds

QString titleOf(const LinkSettings &link, const WatchSettings &settings)
{
    return QStringLiteral("%1  every %2 s  Ctrl-C ends")
        .arg(targetText(link.target()), QString::number(settings.interval / 1000.0));
}

// What is shown has to grow old also while nothing is read.
void waitAndTick(const StopSignal &signal, qint64 milliseconds, WatchListener &view)
{
    QElapsedTimer clock;
    clock.start();
    for (qint64 left = milliseconds; left > 0 && !StopSignal::raised();
         left = milliseconds - clock.elapsed()) {
        signal.wait(std::min(left, TickInterval));
        view.tick();
    }
}

QJsonObject quantilesObject(const Durations &durations)
{
    return {{QStringLiteral("min"), millisecondsValue(durations.quantile(0))},
            {QStringLiteral("median"), millisecondsValue(durations.quantile(0.5))},
            {QStringLiteral("p99"), millisecondsValue(durations.quantile(0.99))},
            {QStringLiteral("max"), millisecondsValue(durations.quantile(1))}};
}

QString summaryOf(const Session &session, const WatchLoop &loop)
{
    const Statistics &statistics = loop.statistics();
    return summaryLine(session.counts(),
                       {{QStringLiteral("rounds"), loop.rounds()},
                        {QStringLiteral("seconds"), static_cast<double>(loop.milliseconds()) / 1000},
                        {QStringLiteral("transactions"), static_cast<qint64>(statistics.transactions())},
                        {QStringLiteral("failed"), static_cast<qint64>(statistics.failures())},
                        {QStringLiteral("latency_ms"), quantilesObject(statistics.latencies())},
                        {QStringLiteral("transaction_ms"), quantilesObject(statistics.durations())}});
}

// Where a run has no end of its own, Ctrl-C is its end.
bool isCutShort(const WatchSettings &settings)
{
    return StopSignal::raised() && (settings.rounds > 0 || settings.duration > 0);
}

int finish(const Session &session, const WatchLoop &loop, const WatchRun &run)
{
    for (const QString &line : loop.statistics().lines(loop.milliseconds()) + countsLines(session.counts()))
        report(line);
    if (run.format == OutputFormat::Json && !print({summaryOf(session, loop)}))
        return OutputClosed;
    if (isCutShort(run.settings))
        return Interrupted;
    const bool isAnyRead = loop.statistics().transactions() > loop.statistics().failures();
    return isAnyRead || !loop.lastFailure() ? Success : exitCodeOf(*loop.lastFailure());
}

} // namespace

QList<QCommandLineOption> watchOptions()
{
    return {
        {QStringLiteral("interval"),
         QStringLiteral("Seconds from the beginning of a round to the next; 0: no pause (default 1)."),
         QStringLiteral("SECONDS"), QStringLiteral("1")},
        {QStringLiteral("count"), QStringLiteral("End after so many rounds (default: none)."),
         QStringLiteral("N")},
        {QStringLiteral("duration"), QStringLiteral("End after so many seconds (default: none)."),
         QStringLiteral("SECONDS")},
    };
}

WatchRun watchRunOf(CommandLine &line)
{
    WatchRun run;
    run.settings.interval = line.milliseconds("interval", 0, MaxInterval);
    if (line.isSet("count"))
        run.settings.rounds = line.number("count", 1, MaxRounds);
    if (line.isSet("duration"))
        run.settings.duration = line.milliseconds("duration", 1, std::numeric_limits<int>::max());
    run.format = formatOf(line);
    return run;
}

WatchRun watchRunOn(const LinkSettings &link, WatchRun run)
{
    run.isTraced = bool(link.trace);
    run.title = titleOf(link, run.settings);
    return run;
}

int watchReadings(Session &session, const std::vector<Reading> &readings, const WatchRun &run)
{
    const StopSignal signal;
    std::unique_ptr<WatchListener> view = makeWatchView(session, readings, run);
    const WatchPauses pauses{StopSignal::raised,
                             [&](qint64 milliseconds) { waitAndTick(signal, milliseconds, *view); }};
    WatchLoop loop(session, readings, run.settings, pauses);
    const bool isWanted = loop.run(*view);
    // It may have had the whole terminal.
    view.reset();
    return isWanted ? finish(session, loop, run) : OutputClosed;
}
