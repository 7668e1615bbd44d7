#include "apps/driverhost/commands/commands.h"

#include "apps/driverhost/console/interruptible_run.h"
#include "apps/driverhost/console/item_options.h"
#include "apps/driverhost/console/link_options.h"
#include "apps/driverhost/console/messages.h"
#include "apps/driverhost/runs/scan_stations.h"
#include "apps/driverhost/terminal/progress.h"
#include "desk/items/number_text.h"
#include "desk/output/scan_form.h"
#include "desk/output/summary.h"
#include "desk/plan/range_scan.h"

namespace
{

const CommandLine::Texts Texts = {
    "scan",
    "[rtutcp://HOST:PORT/STATION|@NAME] stations|HR|IR|DI|DO",
    "Finds which stations answer behind a gateway, or which addresses of an area a slave has. Gentle by "
    "default:\n"
    "one attempt each (--retries 0), 20 ms between requests (--delay), 600 ms for a reply "
    "(--timeout). Ctrl-C\n"
    "ends with what was found so far.",
    "  driverhost scan rtutcp://192.168.0.10:502 stations --from 1 --to 32\n"
    "  driverhost scan rtutcp://192.168.0.10:502/5 HR --from 1 --to 2000",
};

const int DefaultLastNumber = 1000;
// Some slaves and gateways need half a second to get over a request that was not for them.
const int GentleTimeout = 600;
const int MaxAfterSilence = 60000;
const unsigned int GentleDelay = 20;

struct Limits {
    int first = 1;
    int last = 1;
};

// What a slave's answer says about a range. Exception 3 may mean "too many at once"; with the others named
// here the addresses make no difference.
RangeAnswer answerOf(Session &session, const Items &items)
{
    if (session.read(items))
        return RangeAnswer::There;
    const Failure failure = session.failure();
    if (failure.kind != FailureKind::Exception || failure.isStationAbsent() ||
        failure.exception == modbus::IllegalFunction || failure.exception == modbus::ServerDeviceBusy)
        return RangeAnswer::None;
    return failure.exception == modbus::IllegalDataValue ? RangeAnswer::TooMany : RangeAnswer::Missing;
}

int printRanges(Session &session, const RangeScan &scan, OutputFormat format, bool isInterrupted)
{
    QStringList lines;
    if (format == OutputFormat::Text) {
        lines = scan.found();
    } else {
        std::vector<RangeRow> rows;
        for (const RangeScan::Range &range : scan.ranges())
            rows.push_back(
                {session.stationFor(scan.lastItems()), scan.textOf(range), range.first, range.last});
        lines = linesOf(rows, format);
    }
    if (format == OutputFormat::Json)
        lines +=
            summaryLine(session.counts(), {{QStringLiteral("found"), static_cast<int>(scan.ranges().size())},
                                           {QStringLiteral("scanned_to"), scan.scannedTo()},
                                           {QStringLiteral("interrupted"), isInterrupted}});
    return lines.isEmpty() || print(lines) ? Success : OutputClosed;
}

int scanRanges(Session &session, const Limits &limits, const Items &probe, OutputFormat format)
{
    RangeScan scan(probe, [&](const Items &items) { return answerOf(session, items); });
    Progress progress(probe.address.areaName, limits.last - limits.first + 1);
    InterruptibleRun run(session, [&](const QString &wait) { progress.showNote(wait); });
    const bool isComplete = scan.run(limits.first, limits.last, [&](int number) {
        progress.show(number - limits.first);
        return !run.isInterrupted();
    });
    int code = scan.ranges().empty() ? ExceptionReply : Success;
    if (run.isInterrupted()) {
        reportError(QStringLiteral("interrupted"));
    } else if (!isComplete) {
        reportFailure(session, scan.lastItems().label(0));
        code = exitCodeOf(session.failure());
    }
    report(QStringLiteral("%1 found up to %2%3")
               .arg(counted(static_cast<qint64>(scan.ranges().size()), "range"), probe.address.areaName,
                    QString::number(scan.scannedTo())));
    report(countsText(session.counts().total()));
    const int printed = printRanges(session, scan, format, run.isInterrupted());
    return printed == Success ? run.endOf(code) : printed;
}

Items probeOf(CommandLine &line, const QString &what)
{
    const bool isStations = what == QLatin1String("stations");
    const QString text = isStations ? line.text("probe") : what + QStringLiteral("1");
    const Result<TypedItems> probe = itemsAt(text, ItemOptions(), ItemCounts());
    if (probe && (isStations || probe->address.number == 1))
        return probe->items;
    line.addError(isStations ? probe.errorText()
                             : QStringLiteral("\"%1\": expected stations, HR, IR, DI or DO").arg(what));
    return {};
}

} // namespace

Job prepareScan(const QStringList &arguments)
{
    CommandLine line(Texts);
    line.addOptions({
        {QStringLiteral("from"), QStringLiteral("First station or address (default 1)."), QStringLiteral("N"),
         QStringLiteral("1")},
        {QStringLiteral("to"), QStringLiteral("Last station (default 247) or address (default 1000)."),
         QStringLiteral("N")},
        {QStringLiteral("probe"),
         QStringLiteral("What to read from stations (default HR1); an exception is an answer."),
         QStringLiteral("ADDRESS"), QStringLiteral("HR1")},
        {QStringLiteral("after-silence"),
         QStringLiteral("Milliseconds from a request to a station that did not answer to the next request "
                        "(default 600)."),
         QStringLiteral("MS"), QStringLiteral("600")},
        {QStringLiteral("passes"),
         QStringLiteral(
             "How often to go through the stations: 1, or 2 for a slow second time when the first has "
             "found little (default 2)."),
         QStringLiteral("N"), QStringLiteral("2")},
        formatOption(),
    });
    line.addOptions(linkOptions());
    if (const std::optional<int> end = line.parse(arguments))
        return *end;

    QStringList words = line.words();
    LinkSettings link = linkSettings(line, words);
    if (!line.isGiven("timeout"))
        link.channel.timeout = GentleTimeout;
    if (!line.isGiven("retries"))
        link.channel.retries = 0;
    if (!line.isGiven("delay"))
        link.channel.delay = GentleDelay;
    if (words.size() != 1)
        line.addError(QStringLiteral("expected one thing to scan: stations, HR, IR, DI or DO"));
    const QString what = words.value(0);
    const bool isStations = what == QLatin1String("stations");
    // Whether a late reply is the answer to this request or to an earlier one: the station is there.
    if (isStations && !line.isGiven("settle"))
        link.channel.settle.mode = SettleMode::Off;
    const Items probe = probeOf(line, what);
    const int max = isStations ? modbus::MaxStation : modbus::AddressSpace;
    Limits limits;
    limits.first = line.number("from", 1, max);
    limits.last = isStations ? modbus::MaxStation : qMax(DefaultLastNumber, limits.first);
    if (line.isSet("to"))
        limits.last = line.number("to", limits.first, max);
    const OutputFormat format = formatOf(line);
    StationScanOptions options{limits.first, limits.last, probe, 0, 0, format};
    options.afterSilence = line.number("after-silence", 0, MaxAfterSilence);
    options.passes = line.number("passes", 1, 2);
    if (!line.isValid())
        return line.reportUsageError();

    return {link, {}, [=](Session &session) {
                return isStations ? scanStations(session, options)
                                  : scanRanges(session, limits, probe, format);
            }};
}
