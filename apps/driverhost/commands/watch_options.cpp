#include "apps/driverhost/commands/watch_options.h"

#include "apps/driverhost/commands/watch_view.h"
#include "apps/driverhost/console/exit_code.h"
#include "apps/driverhost/console/item_options.h"
#include "apps/driverhost/console/messages.h"
#include "apps/driverhost/console/stop_signal.h"
#include "desk/items/target.h"

#include <limits>

namespace
{

const int MaxInterval = 24 * 3600 * 1000;
const int MaxRounds = 1000000000;

QString titleOf(const LinkSettings &link, const WatchSettings &settings)
{
    return QStringLiteral("%1  every %2 s  Ctrl-C ends")
        .arg(targetText(link.target()), QString::number(settings.interval / 1000.0));
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
    const WatchPauses pauses{StopSignal::raised, [&](qint64 milliseconds) { signal.wait(milliseconds); }};
    WatchLoop loop(session, readings, run.settings, pauses);
    const bool isWanted = loop.run(*makeWatchView(readings, run));
    for (const QString &line : loop.statistics().lines(loop.milliseconds()))
        report(line);
    if (!isWanted)
        return OutputClosed;
    const bool isAnyRead = loop.statistics().transactions() > loop.statistics().failures();
    return isAnyRead || !loop.lastFailure() ? Success : exitCodeOf(*loop.lastFailure());
}
