#include "apps/driverhost/commands/commands.h"

#include "apps/driverhost/commands/planned_job.h"
#include "apps/driverhost/console/point_options.h"
#include "apps/driverhost/watch/watch_options.h"
#include "desk/readings/value_readings.h"

namespace
{

const CommandLine::Texts Texts = {
    "watch",
    "[rtutcp://HOST:PORT/STATION|@NAME] ADDRESS[:TYPE[xCOUNT]][@ORDER]... | NAME...",
    "Reads the same values again and again. On a terminal a table is kept up to date in place: \"*\" marks "
    "what has\n"
    "changed, \"?\" what could not be read, with the last value and its age. Elsewhere every value is a "
    "line. Ctrl-C\n"
    "ends with statistics on standard error. The connection stays open and is opened again by the driver's "
    "rules.",
    "  driverhost watch rtutcp://192.168.0.10:502/1 HR100 HR101 DI17 --interval 0.5\n"
    "  driverhost watch HR100 --items 8 --duration 60 --format csv >log.csv\n"
    "  driverhost watch @boiler --points boiler.csv --wide --output log.csv --rotate day",
};

} // namespace

Job prepareWatch(const QStringList &arguments)
{
    CommandLine line(Texts);
    addWatchOptions(line);
    line.addOptions(itemOptions());
    line.addOptions(pointOptions());
    line.addOptions({itemCountOption(), formatOption()});
    line.addOptions(planOptions());
    line.addOptions(linkOptions());
    if (const std::optional<int> end = line.parse(arguments))
        return *end;

    const AddressedPoints addressed = addressedPoints(line);
    const WatchRun run = watchRunOn(addressed.link, watchRunOf(line));
    if (!line.isValid())
        return line.reportUsageError();
    return plannedJob(addressed.link, addressed.tags, valueReadingsOf(addressed.points), planOptionsOf(line),
                      [=](Session &session, const std::vector<Reading> &readings, Learnt &learnt) {
                          return watchReadings(session, readings, learnt, run);
                      });
}
