#include "apps/driverhost/commands/commands.h"

#include "apps/driverhost/console/item_options.h"
#include "apps/driverhost/console/link_options.h"
#include "apps/driverhost/runs/scan_ranges.h"
#include "apps/driverhost/runs/scan_stations.h"

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

// What a command line of `scan` asks for.
struct ScanRequest {
    bool isOfStations = false;
    Items probe;
    int first = 1;
    int last = 1;
};

void setProbe(ScanRequest &request, const AddressSpan &span)
{
    request.probe.address = span.first;
    request.probe.kind = defaultKind(span.first);
}

void readStations(CommandLine &line, ScanRequest &request)
{
    request.first = line.number("from", 1, modbus::MaxStation);
    request.last =
        line.isSet("to") ? line.number("to", request.first, modbus::MaxStation) : modbus::MaxStation;
    const Result<TypedItems> probe = itemsAt(line.text("probe"), ItemOptions(), ItemCounts());
    if (probe)
        request.probe = probe->items;
    else
        line.addError(probe.errorText());
}

void readArea(CommandLine &line, const QString &what, ScanRequest &request)
{
    request.first = line.number("from", 1, modbus::AddressSpace);
    request.last = line.isSet("to") ? line.number("to", request.first, modbus::AddressSpace)
                                    : qMax(DefaultLastNumber, request.first);
    const Result<AddressSpan> area = parseAddressSpan(what + QStringLiteral("1"));
    if (!area || area->isRange || area->first.number != 1)
        line.addError(
            QStringLiteral(
                "\"%1\": expected stations, an area such as HR, IR, DI or DO, or a range such as HR1..200")
                .arg(what));
    else
        setProbe(request, *area);
}

void readRange(CommandLine &line, const QString &what, ScanRequest &request)
{
    const Result<AddressSpan> span = parseAddressSpan(what);
    if (line.isSet("from") || line.isSet("to"))
        line.addError(QStringLiteral("\"%1\" says itself where it begins and ends").arg(what));
    if (!span) {
        line.addError(span.errorText());
        return;
    }
    setProbe(request, *span);
    request.probe.address.number = 1;
    request.first = span->first.number;
    request.last = span->last;
}

ScanRequest scanRequest(CommandLine &line, const QStringList &words)
{
    ScanRequest request;
    const QString what = words.value(0);
    if (words.size() != 1)
        line.addError(QStringLiteral("expected one thing to scan: stations, HR, IR, DI or DO"));
    request.isOfStations = what == QLatin1String("stations");
    if (request.isOfStations)
        readStations(line, request);
    else if (what.contains(QLatin1String("..")))
        readRange(line, what, request);
    else
        readArea(line, what, request);
    line.expectWith(request.isOfStations, "stations", {"probe", "after-silence", "passes"});
    if (request.isOfStations && line.isSet("station"))
        line.addError(QStringLiteral("--station: stations are all asked; --from and --to limit them"));
    return request;
}

LinkSettings gentleSettings(CommandLine &line, QStringList &words)
{
    LinkSettings link = linkSettings(line, words);
    if (!line.isGiven("timeout"))
        link.channel.timeout = GentleTimeout;
    if (!line.isGiven("retries"))
        link.channel.retries = 0;
    if (!line.isGiven("delay"))
        link.channel.delay = GentleDelay;
    return link;
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
    LinkSettings link = gentleSettings(line, words);
    const ScanRequest request = scanRequest(line, words);
    // Whether a late reply is the answer to this request or to an earlier one: the station is there.
    if (request.isOfStations && !line.isGiven("settle"))
        link.channel.settle.mode = SettleMode::Off;
    const OutputFormat format = formatOf(line);
    const int afterSilence = line.number("after-silence", 0, MaxAfterSilence);
    const int passes = line.number("passes", 1, 2);
    if (!line.isValid())
        return line.reportUsageError();
    return {link, {}, [=](Session &session) {
                if (request.isOfStations)
                    return scanStations(
                        session, {request.first, request.last, request.probe, afterSilence, passes, format});
                return scanRanges(session, {request.first, request.last, request.probe, format});
            }};
}
