#include "commands.h"

#include "link_options.h"
#include "messages.h"
#include "progress.h"
#include "range_scan.h"
#include "session.h"
#include "stop_signal.h"
#include "value_output.h"

namespace
{

const CommandLine::Texts Texts = {
    "scan",
    "[rtutcp://HOST:PORT/STATION] stations|HR|IR|DI|DO",
    "Finds which stations answer behind a gateway, or which addresses of an area a slave has. Gentle unless "
    "told\n"
    "otherwise: one attempt each (--retries 0), 20 ms between requests (--delay), 300 ms for a reply "
    "(--timeout). Ctrl-C\n"
    "ends with what was found so far.",
    "  driverhost scan rtutcp://192.168.0.10:502 stations --from 1 --to 32\n"
    "  driverhost scan rtutcp://192.168.0.10:502/5 HR --from 1 --to 2000",
};

const int HighestStation = 247;
const int HighestNumber = 65536;
const int UsualLastNumber = 1000;
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

// A gateway that answers in place of a station that it does not reach.
bool isAbsent(const QString &error)
{
    return error.startsWith(QLatin1String("exception code:0x0A"), Qt::CaseInsensitive) ||
           error.startsWith(QLatin1String("exception code:0x0B"), Qt::CaseInsensitive);
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
            const int failure = isRead ? Success : session.failure();
            if (StopSignal::raised())
                break;
            if (failure == CannotConnect || failure == DatabaseError) {
                tellFailure(session, items);
                code = failure;
                break;
            }
            if (!isRead && isAbsent(session.lastError())) {
                ++absent;
                continue;
            }
            if (isRead)
                lines += QStringLiteral("%1  answers").arg(station);
            else if (!session.lastError().startsWith(QLatin1String("PLC no response")))
                lines += QStringLiteral("%1  %2").arg(QString::number(station), session.lastError());
        }
    }
    tell(QStringLiteral("%1 stations answered").arg(lines.size()));
    if (absent > 0)
        tell(QStringLiteral(
                 "for %1 more the gateway answered that they are not there (exception 0x0A or 0x0B)")
                 .arg(absent));
    return print(lines) ? endOf(code) : OutputClosed;
}

int scanRanges(Session &session, const Limits &limits, const Items &probe)
{
    const StopSignal signal;
    session.channel().setCancelled(StopSignal::raised);
    RangeScan scan(session, probe);
    int code = Success;
    {
        Progress progress(probe.address.areaName, limits.last - limits.first + 1);
        code = scan.run(limits.first, limits.last, [&](int number) {
            progress.show(number - limits.first);
            return !StopSignal::raised();
        });
    }
    if (code != Success && !StopSignal::raised())
        tellFailure(session, scan.lastItems());
    const QStringList found = scan.found();
    tell(QStringLiteral("%1 ranges found up to %2%3")
             .arg(QString::number(found.size()), probe.address.areaName, QString::number(scan.scannedTo())));
    return print(found) ? endOf(code) : OutputClosed;
}

Items probeOf(CommandLine &line, const QString &what)
{
    Items probe;
    QString error;
    const bool isStations = what == QLatin1String("stations");
    const QString text = isStations ? line.text("probe") : what + QStringLiteral("1");
    const std::optional<Address> address = parseAddress(text, error);
    if (!address || (!isStations && address->number != 1)) {
        line.mistake(isStations ? error
                                : QStringLiteral("\"%1\": expected stations, HR, IR, DI or DO").arg(what));
        return probe;
    }
    probe.address = *address;
    probe.kind = usualKind(*address);
    return probe;
}

} // namespace

int runScan(const QStringList &arguments)
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
    if (!line.isSet("timeout"))
        link.channel.timeout = GentleTimeout;
    if (!line.isSet("retries"))
        link.channel.retries = 0;
    if (!line.isSet("delay"))
        link.channel.delay = GentleDelay;
    if (words.size() != 1)
        line.mistake(QStringLiteral("expected one thing to scan: stations, HR, IR, DI or DO"));
    const QString what = words.value(0);
    const bool isStations = what == QLatin1String("stations");
    const Items probe = probeOf(line, what);
    const int highest = isStations ? HighestStation : HighestNumber;
    Limits limits;
    limits.first = line.number("from", 1, highest);
    limits.last = isStations ? HighestStation : qMax(UsualLastNumber, limits.first);
    if (line.isSet("to"))
        limits.last = line.number("to", limits.first, highest);
    if (!line.isRight())
        return line.refuse();

    return runWithDriver(link, {}, [&](Session &session) {
        return isStations ? scanStations(session, limits, probe) : scanRanges(session, limits, probe);
    });
}
