#include "apps/driverhost/commands/commands.h"

#include "apps/driverhost/console/link_options.h"
#include "apps/driverhost/console/messages.h"
#include "apps/driverhost/console/progress.h"
#include "apps/driverhost/console/stop_signal.h"
#include "desk/plan/range_scan.h"

namespace
{

const CommandLine::Texts Texts = {
    "scan",
    "[rtutcp://HOST:PORT/STATION] stations|HR|IR|DI|DO",
    "Finds which stations answer behind a gateway, or which addresses of an area a slave has. Gentle by "
    "default:\n"
    "one attempt each (--retries 0), 20 ms between requests (--delay), 300 ms for a reply "
    "(--timeout). Ctrl-C\n"
    "ends with what was found so far.",
    "  driverhost scan rtutcp://192.168.0.10:502 stations --from 1 --to 32\n"
    "  driverhost scan rtutcp://192.168.0.10:502/5 HR --from 1 --to 2000",
};

const int DefaultLastNumber = 1000;
const int GentleTimeout = 300;
const unsigned int GentleDelay = 20;

struct Limits {
    int first = 1;
    int last = 1;
};

int endOf(int code)
{
    return StopSignal::raised() ? Interrupted : code;
}

int scanStations(Session &session, const Limits &limits, const Items &probe)
{
    const StopSignal signal;
    session.channel().setCancelled(StopSignal::raised);
    QStringList lines;
    int absent = 0;
    int code = Success;
    {
        Progress progress(QStringLiteral("stations"), limits.last - limits.first + 1);
        for (int station = limits.first; station <= limits.last && !StopSignal::raised(); ++station) {
            progress.show(station - limits.first, QStringLiteral("%1 found").arg(lines.size()));
            Items items = probe;
            items.address.station = station;
            const bool isRead = session.read(items).has_value();
            if (StopSignal::raised())
                break;
            if (isRead) {
                lines += QStringLiteral("%1  answers").arg(station);
                continue;
            }
            const Failure failure = session.failure();
            const ExitCode failureCode = exitCodeOf(failure);
            if (failureCode == CannotConnect || failureCode == DatabaseError) {
                reportFailure(session, items.label(0));
                code = failureCode;
                break;
            }
            if (failure.isStationAbsent())
                ++absent;
            else if (failure.kind != FailureKind::NoReply)
                lines += QStringLiteral("%1  %2").arg(QString::number(station), failure.text);
        }
    }
    report(QStringLiteral("%1 stations answered").arg(lines.size()));
    if (absent > 0)
        report(QStringLiteral(
                   "for %1 more the gateway answered that they are not there (exception 0x0A or 0x0B)")
                   .arg(absent));
    return print(lines) ? endOf(code) : OutputClosed;
}

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

int scanRanges(Session &session, const Limits &limits, const Items &probe)
{
    const StopSignal signal;
    session.channel().setCancelled(StopSignal::raised);
    RangeScan scan(probe, [&](const Items &items) { return answerOf(session, items); });
    bool isComplete = false;
    {
        Progress progress(probe.address.areaName, limits.last - limits.first + 1);
        isComplete = scan.run(limits.first, limits.last, [&](int number) {
            progress.show(number - limits.first);
            return !StopSignal::raised();
        });
    }
    const bool hasFailed = !isComplete && !StopSignal::raised();
    if (hasFailed)
        reportFailure(session, scan.lastItems().label(0));
    const QStringList found = scan.found();
    report(
        QStringLiteral("%1 ranges found up to %2%3")
            .arg(QString::number(found.size()), probe.address.areaName, QString::number(scan.scannedTo())));
    return print(found) ? endOf(hasFailed ? exitCodeOf(session.failure()) : Success) : OutputClosed;
}

Items probeOf(CommandLine &line, const QString &what)
{
    Items probe;
    const bool isStations = what == QLatin1String("stations");
    const QString text = isStations ? line.text("probe") : what + QStringLiteral("1");
    const Result<Address> address = parseAddress(text);
    if (!address || (!isStations && address->number != 1)) {
        line.addError(isStations ? address.errorText()
                                 : QStringLiteral("\"%1\": expected stations, HR, IR, DI or DO").arg(what));
        return probe;
    }
    probe.address = *address;
    probe.kind = defaultKind(*address);
    return probe;
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
    const Items probe = probeOf(line, what);
    const int max = isStations ? modbus::MaxStation : modbus::AddressSpace;
    Limits limits;
    limits.first = line.number("from", 1, max);
    limits.last = isStations ? modbus::MaxStation : qMax(DefaultLastNumber, limits.first);
    if (line.isSet("to"))
        limits.last = line.number("to", limits.first, max);
    if (!line.isValid())
        return line.reportUsageError();

    return {link, {}, [=](Session &session) {
                return isStations ? scanStations(session, limits, probe) : scanRanges(session, limits, probe);
            }};
}
