#include "apps/driverhost/commands/commands.h"

#include "apps/driverhost/commands/planned_job.h"
#include "apps/driverhost/console/messages.h"
#include "apps/driverhost/console/point_options.h"
#include "apps/driverhost/runs/planned_run.h"
#include "apps/driverhost/runs/reading_run.h"
#include "desk/readings/value_readings.h"

namespace
{

const CommandLine::Texts Texts = {
    "read",
    "[rtutcp://HOST:PORT/STATION|@NAME] ADDRESS[:TYPE[xCOUNT]][@ORDER]... | NAME...",
    "Reads values through the driver. Addresses are HR100, FN6HR12 (holding registers), IR3 (input "
    "registers),\n"
    "DI17 (discrete inputs), DO5, FN5DO5 (coils) and HR7.3 (a bit of a register); numbers count from 1. "
    "2-HR100 is\n"
    "HR100 of station 2, HRSW10 a double word with its high word first. Types are bit, u8, u16, u32, u64, "
    "i8 to i64,\n"
    "f32, f64, hex, bin, bcd16, bcd32, bcd64 and str20; orders ABCD, CDAB, BADC, DCBA. With --points values "
    "are read by\n"
    "name. Values go to standard output, everything else to standard error.",
    "  driverhost read rtutcp://192.168.0.10:502/1 HR100 --count 4 --as hex\n"
    "  driverhost read rtutcp://192.168.0.10:502/1 HR5:f32@ABCD HR9:i16x4 HR20:str16\n"
    "  driverhost read @boiler --points boiler.csv 'pump*'",
};

int readAll(Session &session, const std::vector<Reading> &readings, OutputFormat format)
{
    InterruptibleRun run(session);
    ReadingRun values(session, readings);
    for (size_t i = 0; i < readings.size() && !run.isInterrupted(); ++i) {
        run.setLabel(labelOf(readings[i]));
        reportBroadcast(session.stationFor(readings[i].items));
        if (values.read(i))
            continue;
        values.fail({i});
        if (values.isHopeless()) {
            values.failOthers(i + 1);
            break;
        }
    }
    return values.finish(format, run);
}

} // namespace

Job prepareRead(const QStringList &arguments)
{
    CommandLine line(Texts);
    line.addOptions(itemOptions());
    line.addOptions(pointOptions());
    line.addOptions({itemCountOption({QStringLiteral("count")}), formatOption()});
    line.addOptions(planOptions());
    line.addOptions(linkOptions());
    if (const std::optional<int> end = line.parse(arguments))
        return *end;

    const AddressedPoints addressed = addressedPoints(line, "count");
    const OutputFormat format = formatOf(line);
    const PlanOptions plan = planOptionsOf(line);
    line.expectWith(addressed.hasTable, "--points", {"learnt", "ask-again", "no-fill", "one-by-one"});
    if (!line.isValid())
        return line.reportUsageError();
    if (!addressed.hasTable) {
        return {addressed.link, addressed.tags, [=](Session &session) {
                    reportPortions(addressed.points);
                    return readAll(session, readingsOf(addressed.points), format);
                }};
    }
    return plannedJob(addressed.link, addressed.tags, valueReadingsOf(addressed.points), plan,
                      [=](Session &session, const std::vector<Reading> &readings, Learnt &learnt) {
                          return readPlanned(session, readings, learnt, format, QStringLiteral("points"));
                      });
}
