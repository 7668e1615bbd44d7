#include "apps/driverhost/commands/commands.h"

#include "apps/driverhost/console/messages.h"
#include "apps/driverhost/runs/write_run.h"
#include "desk/project/needed_tags.h"

#include <climits>

namespace
{

const CommandLine::Texts Texts = {
    "write",
    "[rtutcp://HOST:PORT/STATION|@NAME] ADDRESS[:TYPE][@ORDER] VALUE... | NAME=VALUE...",
    "Writes values through the driver, from the address on. HR writes with function 16, FN6HR register by "
    "register\n"
    "with function 6, DO with function 15, FN5DO coil by coil with function 5; HR7.3 changes bits of "
    "registers.\n"
    "What does not fit the item is refused before anything is sent. NAME=VALUE and ADDRESS=VALUE may be "
    "given "
    "any number\n"
    "of times, and are written in their order.",
    "  driverhost write rtutcp://192.168.0.10:502/1 HR100 1234 -5 --verify\n"
    "  driverhost write HR20:f32@ABCD 3.5\n"
    "  driverhost write @boiler --points boiler.csv setpoint=21.5 mode=auto",
};

void checkBroadcast(const Items &items, CommandLine &line)
{
    const QString problem = problemWithBroadcast(items);
    if (line.isSet("verify"))
        line.addError(QStringLiteral("--verify reads, and nobody replies to station 0"));
    else if (line.isSet("retries") && line.number("retries", 0, INT_MAX) > 0)
        line.addError(
            QStringLiteral("--retries: a broadcast is sent once, since nobody replies to station 0"));
    else if (!problem.isEmpty())
        line.addError(problem);
}

int stationOf(const WriteRequest &request, const LinkSettings &link)
{
    return stationOf(request.point.at.items, link.channel.station);
}

} // namespace

Job prepareWrite(const QStringList &arguments)
{
    CommandLine line(Texts);
    line.addOptions(itemOptions());
    line.addOptions(pointOptions());
    line.addOptions({
        {QStringLiteral("rounded"), QStringLiteral("Round values to what their type can hold.")},
        {QStringLiteral("verify"), QStringLiteral("Read back what was written and compare.")},
        {QStringLiteral("dry-run"), QStringLiteral("Show the frames and send nothing.")},
        formatOption(),
    });
    line.addOptions(linkOptions());
    if (const std::optional<int> end = line.parse(arguments))
        return *end;

    QStringList words = line.words();
    LinkSettings link = linkSettings(line, words);
    const std::vector<WriteRequest> requests = writeRequests(words, line.isSet("rounded"), line);
    const bool isVerified = line.isSet("verify");
    const bool isDryRun = line.isSet("dry-run");
    if (isDryRun && isVerified)
        line.addError(QStringLiteral("--dry-run sends nothing that --verify could read back"));
    const OutputFormat format = formatOf(line);
    QStringList tags;
    for (const WriteRequest &request : requests) {
        const int station = stationOf(request, link);
        if (station == modbus::BroadcastStation) {
            checkBroadcast(request.point.at.items, line);
            link.channel.retries = 0;
        }
        tags += neededTags(request.point.at.items, station);
    }
    if (!line.isValid())
        return line.reportUsageError();
    return {link, tags, [=](Session &session) {
                if (isDryRun)
                    return showFrames(session, requests, format);
                for (const WriteRequest &request : requests) {
                    reportBroadcast(stationOf(request, link));
                    reportWritePortions(request.point.at);
                }
                return runWrites(session, requests, isVerified, format);
            }};
}
