#include "apps/driverhost/watch/watch_options.h"

#include "apps/driverhost/console/exit_code.h"
#include "apps/driverhost/console/item_options.h"
#include "apps/driverhost/console/messages.h"
#include "apps/driverhost/console/stop_signal.h"
#include "apps/driverhost/watch/log_view.h"
#include "apps/driverhost/watch/value_summaries.h"
#include "apps/driverhost/watch/watch_listeners.h"
#include "apps/driverhost/watch/watch_view.h"
#include "desk/items/target.h"
#include "desk/output/stray_text.h"
#include "desk/output/summary.h"
#include "desk/points/scaling.h"

#include <QElapsedTimer>
#include <QFileInfo>

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

QString summaryOf(const Session &session, const WatchLoop &loop, const ValueSummaries &values)
{
    const Statistics &statistics = loop.statistics();
    return summaryLine(session.counts(),
                       {{QStringLiteral("rounds"), loop.rounds()},
                        {QStringLiteral("seconds"), static_cast<double>(loop.milliseconds()) / 1000},
                        {QStringLiteral("transactions"), static_cast<qint64>(statistics.transactions())},
                        {QStringLiteral("failed"), static_cast<qint64>(statistics.failures())},
                        {QStringLiteral("latency_ms"), quantilesObject(statistics.latencies())},
                        {QStringLiteral("transaction_ms"), quantilesObject(statistics.durations())},
                        {QStringLiteral("values"), values.objects()}});
}

// Where a run has no end of its own, Ctrl-C is its end.
bool isCutShort(const WatchSettings &settings)
{
    return StopSignal::raised() && (settings.rounds > 0 || settings.duration > 0);
}

int finish(const Session &session, const WatchLoop &loop, const ValueSummaries &values, const WatchRun &run)
{
    for (const QString &line : values.lines() + loop.statistics().lines(loop.milliseconds()) +
                                   countsLines(session.counts()) + strayLines(session.channel()))
        report(line);
    if (loop.statistics().failures() > 0 && values.isWhole())
        report(QStringLiteral("no value was missed: what was refused was asked for again in parts"));
    if (run.form.format == OutputFormat::Json && !print({summaryOf(session, loop, values)}))
        return OutputClosed;
    if (isCutShort(run.settings))
        return Interrupted;
    const bool isAnyRead = loop.statistics().transactions() > loop.statistics().failures();
    return isAnyRead || !loop.lastFailure() ? Success : exitCodeOf(*loop.lastFailure());
}

// What its name says, or a table.
OutputFormat formatOfFile(const QString &path)
{
    static const QStringList ofJson{QStringLiteral("json"), QStringLiteral("jsonl"),
                                    QStringLiteral("ndjson")};
    return ofJson.contains(QFileInfo(path).suffix().toLower()) ? OutputFormat::Json : OutputFormat::Csv;
}

std::optional<double> deadbandOf(CommandLine &line)
{
    if (!line.isSet("on-change"))
        return std::nullopt;
    const std::optional<double> deadband = parseNumberText(line.text("on-change"));
    if (!deadband || *deadband < 0)
        line.addError(
            QStringLiteral("--on-change \"%1\": expected a number, 0 or above").arg(line.text("on-change")));
    return deadband.value_or(0);
}

std::optional<WatchLog> logOf(CommandLine &line, const RowSeriesForm &form)
{
    if (line.isSet("rotate") && !line.isSet("output"))
        line.addError(QStringLiteral("--rotate goes with --output"));
    if (!line.isSet("output"))
        return std::nullopt;
    WatchLog log{line.text("output"), form, {}};
    if (!line.isSet("format"))
        log.form.format = formatOfFile(log.path);
    if (log.form.format == OutputFormat::Text)
        line.addError(QStringLiteral("--output keeps csv or json, not text"));
    if (log.path.isEmpty())
        line.addError(QStringLiteral("--output: expected the name of a file"));
    if (line.isSet("rotate")) {
        const Result<LogRotation> rotation = parseLogRotation(line.text("rotate"));
        if (!rotation)
            line.addError(QStringLiteral("--rotate ") + rotation.errorText());
        log.rotation = rotation.valueOr({});
    }
    return log;
}

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
        {QStringLiteral("output"),
         QStringLiteral(
             "Keep what is read in FILE, after what is there: csv, or json where its name or --format "
             "says so."),
         QStringLiteral("FILE")},
        {QStringLiteral("rotate"),
         QStringLiteral(
             "With --output: begin a new file each day, or when one has a size such as 500k, 10M or 1G; "
             "the old one gets the time in its name."),
         QStringLiteral("day|SIZE")},
        {QStringLiteral("on-change"),
         QStringLiteral(
             "No lines but of values that have changed, of numbers by more than DEADBAND (0 when it is "
             "left out)."),
         QStringLiteral("DEADBAND")},
        {QStringLiteral("wide"),
         QStringLiteral("One row a round with a column for each value, as csv or json.")},
    };
}

} // namespace

void addWatchOptions(CommandLine &line)
{
    line.addOptions(watchOptions());
    line.setImplied("on-change", QStringLiteral("0"));
}

WatchRun watchRunOf(CommandLine &line)
{
    WatchRun run;
    run.settings.interval = line.milliseconds("interval", 0, MaxInterval);
    if (line.isSet("count"))
        run.settings.rounds = line.number("count", 1, MaxRounds);
    if (line.isSet("duration"))
        run.settings.duration = line.milliseconds("duration", 1, std::numeric_limits<int>::max());
    run.form.format = formatOf(line);
    run.form.deadband = deadbandOf(line);
    run.form.isWide = line.isSet("wide");
    run.log = logOf(line, run.form);
    if (run.form.isWide && !line.isSet("format"))
        run.form.format = OutputFormat::Csv;
    if (run.form.isWide && run.form.format == OutputFormat::Text)
        line.addError(QStringLiteral("--wide is for csv and json"));
    return run;
}

WatchRun watchRunOn(const LinkSettings &link, WatchRun run)
{
    run.isTraced = bool(link.trace);
    run.title = titleOf(link, run.settings);
    return run;
}

int watchReadings(Session &session, const std::vector<Reading> &readings, Learnt &learnt, const WatchRun &run)
{
    const StopSignal signal;
    ValueSummaries values(readings);
    WatchListeners listeners;
    listeners.add(&values);
    std::optional<LogView> log;
    if (run.log) {
        log.emplace(readings, *run.log);
        const Result<> opened = log->open();
        if (!opened) {
            reportError(opened.errorText());
            return OtherFailure;
        }
        listeners.add(&*log);
    }
    std::unique_ptr<WatchListener> view = makeWatchView(session, readings, run, log ? &*log : nullptr);
    listeners.add(view.get());
    const WatchPauses pauses{StopSignal::raised,
                             [&](qint64 milliseconds) { waitAndTick(signal, milliseconds, listeners); }};
    WatchLoop loop(session, readings, learnt, run.settings, pauses);
    const bool isWanted = loop.run(listeners);
    // It may have had the whole terminal.
    view.reset();
    const bool isAllKept = !log || log->finish();
    if (!isWanted)
        return OutputClosed;
    const int code = finish(session, loop, values, run);
    return code == Success && !isAllKept ? OtherFailure : code;
}
