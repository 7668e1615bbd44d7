#include "slave_command.h"

#include "exit_codes.h"
#include "slave/embedded_slave.h"
#include "stop_signal.h"
#include "target.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QTextStream>

namespace
{

const int HighestStation = 247;
const int HighestPort = 65535;
const int LongestLatency = 60 * 1000;

const char example[] =
    "A Modbus slave that speaks RTU framing over TCP: functions 1 to 6, 15 and 16 on 65536 addresses of\n"
    "each area, all 0 at first.\n"
    "\n"
    "  driverhost slave --port 1502 --values plant.txt --fault silence=1% --trace\n"
    "\n"
    "The file of --values has lines such as\n"
    "  HR100 = 1 -2 0x1F        one-based address, values from there on\n"
    "  2-DO1 = 1 0 1            of station 2 only\n"
    "  hole IR200..299          addresses that do not exist";

QString faultHelp()
{
    return QStringLiteral(
               "Spoil replies, a share of them (silence=1%) or every n-th (truncate:4=1/10). May be given "
               "several times. Faults: %1. Behind a colon: milliseconds for delay and split, bytes for "
               "truncate, junk-before and junk-after, the code for exception, what is put in for "
               "wrong-station "
               "and wrong-function.")
        .arg(allFaultNames().join(QLatin1String(", ")));
}

// Numbers and ranges of numbers: "1,3,5-7".
bool parseNumberList(const QString &what, const QString &text, int highest, QList<int> &numbers,
                     QString &error)
{
    numbers.clear();
    for (const QString &part : text.split(QLatin1Char(','))) {
        const auto first = parseNumber(what, part.section(QLatin1Char('-'), 0, 0), 1, highest, error);
        if (!first)
            return false;
        const auto last = parseNumber(what, part.section(QLatin1Char('-'), -1), *first, highest, error);
        if (!last)
            return false;
        for (int number = *first; number <= *last; ++number)
            numbers.append(number);
    }
    return true;
}

bool readNumber(const QCommandLineParser &parser, const QString &name, int lowest, int highest, int &number,
                QString &error)
{
    const auto parsed = parseNumber(QStringLiteral("--") + name, parser.value(name), lowest, highest, error);
    if (parsed)
        number = *parsed;
    return parsed.has_value();
}

bool readAddress(const QCommandLineParser &parser, SlaveOptions &options, QString &error)
{
    if (!options.address.setAddress(parser.value(QStringLiteral("listen")))) {
        error = QStringLiteral("--listen \"%1\": expected an IPv4 or IPv6 address")
                    .arg(parser.value(QStringLiteral("listen")));
        return false;
    }
    int port = 0;
    if (!readNumber(parser, QStringLiteral("port"), 0, HighestPort, port, error))
        return false;
    options.port = static_cast<quint16>(port);
    return parseNumberList(QStringLiteral("--station"), parser.value(QStringLiteral("station")),
                           HighestStation, options.stations, error);
}

bool readMemory(const QCommandLineParser &parser, SlaveOptions &options, QString &error)
{
    for (const QString &file : parser.values(QStringLiteral("values"))) {
        if (!options.memory.loadFile(file, &error))
            return false;
    }
    for (const QString &text : parser.values(QStringLiteral("hole"))) {
        AreaRange hole;
        if (!parseAreaRange(text, hole)) {
            error = QStringLiteral("--hole \"%1\": expected addresses such as HR10 or 2-DO5..20").arg(text);
            return false;
        }
        options.memory.addHole(hole);
    }
    return true;
}

bool readLimits(const QCommandLineParser &parser, SlaveOptions &options, QString &error)
{
    const SlaveLimits protocol;
    QList<int> functions;
    if (!readNumber(parser, QStringLiteral("max-registers"), 1, protocol.registers, options.limits.registers,
                    error) ||
        !readNumber(parser, QStringLiteral("max-bits"), 1, protocol.bits, options.limits.bits, error) ||
        !parseNumberList(QStringLiteral("--functions"), parser.value(QStringLiteral("functions")), 127,
                         functions, error))
        return false;
    options.functions = QSet<int>(functions.begin(), functions.end());
    return true;
}

bool readFaults(const QCommandLineParser &parser, SlaveOptions &options, QString &error)
{
    bool isNumber = false;
    const QString seed = parser.value(QStringLiteral("seed"));
    options.faults.setSeed(seed.toUInt(&isNumber));
    if (!isNumber) {
        error = QStringLiteral("--seed \"%1\": expected a whole number").arg(seed);
        return false;
    }
    for (const QString &text : parser.values(QStringLiteral("fault"))) {
        QString reason;
        if (!options.faults.add(text, &reason)) {
            error = QStringLiteral("--fault: ") + reason;
            return false;
        }
    }
    options.banner = parser.value(QStringLiteral("banner")).toUtf8();
    return readNumber(parser, QStringLiteral("latency"), 0, LongestLatency, options.latencyMs, error);
}

int fail(ExitCode code, const QString &reason)
{
    QTextStream(stderr) << "driverhost slave: " << reason << '\n';
    return code;
}

int serve(const SlaveOptions &options)
{
    EmbeddedSlave slave(options);
    if (!slave.listen())
        return fail(OtherFailure,
                    QStringLiteral("cannot listen on %1: %2")
                        .arg(endpointText(options.address.toString(), options.port), slave.errorString()));
    QTextStream output(stdout);
    output << "listening on " << endpointText(options.address.toString(), slave.port()) << ", Ctrl-C ends\n";
    output.flush();

    StopSignal signal;
    QObject::connect(&signal, &StopSignal::stop, qApp, &QCoreApplication::quit);
    QCoreApplication::exec();
    output << describeCounts(slave.counts());
    return Success;
}

} // namespace

void addSlaveOptions(QCommandLineParser &parser)
{
    parser.setApplicationDescription(QLatin1String(example));
    parser.addOptions({
        {QStringLiteral("listen"),
         QStringLiteral("Address to listen on (default 127.0.0.1; 0.0.0.0 is all)."),
         QStringLiteral("address"), QStringLiteral("127.0.0.1")},
        {{QStringLiteral("p"), QStringLiteral("port")},
         QStringLiteral("Port to listen on; 0 takes a free one (default 1502)."),
         QStringLiteral("number"),
         QStringLiteral("1502")},
        {{QStringLiteral("s"), QStringLiteral("station")},
         QStringLiteral("Stations that answer, each with a memory of its own, such as 1,5-7 (default 1)."),
         QStringLiteral("list"),
         QStringLiteral("1")},
        {QStringLiteral("values"), QStringLiteral("File with initial values and holes."),
         QStringLiteral("file")},
        {QStringLiteral("hole"),
         QStringLiteral("Addresses that do not exist, such as HR10..20; exception 2. Several times."),
         QStringLiteral("range")},
        {QStringLiteral("max-registers"),
         QStringLiteral("Most registers in one request; above, exception 3 (default 125)."),
         QStringLiteral("number"), QStringLiteral("125")},
        {QStringLiteral("max-bits"), QStringLiteral("Most bits in one request (default 2000)."),
         QStringLiteral("number"), QStringLiteral("2000")},
        {QStringLiteral("functions"),
         QStringLiteral("Functions that it knows; others get exception 1 (default 1-6,15,16)."),
         QStringLiteral("list"), QStringLiteral("1-6,15,16")},
        {QStringLiteral("latency"), QStringLiteral("Milliseconds that every reply takes (default 0)."),
         QStringLiteral("ms"), QStringLiteral("0")},
        {QStringLiteral("fault"), faultHelp(), QStringLiteral("rule")},
        {QStringLiteral("banner"), QStringLiteral("Text to send on every new connection."),
         QStringLiteral("text")},
        {QStringLiteral("seed"), QStringLiteral("Same seed, same faults (default 1)."),
         QStringLiteral("number"), QStringLiteral("1")},
        {QStringLiteral("trace"), QStringLiteral("Write every frame and what it means to standard error.")},
    });
}

bool readSlaveOptions(const QCommandLineParser &parser, SlaveOptions &options, QString &error)
{
    if (!parser.positionalArguments().isEmpty()) {
        error = QStringLiteral("\"%1\" is no option").arg(parser.positionalArguments().first());
        return false;
    }
    if (parser.isSet(QStringLiteral("trace")))
        options.trace = stderrTrace();
    return readAddress(parser, options, error) && readMemory(parser, options, error) &&
           readLimits(parser, options, error) && readFaults(parser, options, error);
}

QString describeCounts(const SlaveCounts &counts)
{
    QString text = QStringLiteral("connections %1, requests %2 (broadcasts %3), exceptions %4, "
                                  "for other stations %5, bytes dropped %6\n")
                       .arg(counts.connections)
                       .arg(counts.requests)
                       .arg(counts.broadcasts)
                       .arg(counts.exceptions)
                       .arg(counts.foreign)
                       .arg(counts.droppedBytes);
    QStringList faults;
    for (auto entry = counts.faults.begin(); entry != counts.faults.end(); ++entry)
        faults.append(QStringLiteral("%1 %2").arg(faultName(entry.key())).arg(entry.value()));
    if (!faults.isEmpty())
        text += QStringLiteral("faults: %1\n").arg(faults.join(QLatin1String(", ")));
    return text;
}

int runSlave(const QStringList &arguments)
{
    QCommandLineParser parser;
    addSlaveOptions(parser);
    const QCommandLineOption help = parser.addHelpOption();
    if (!parser.parse(QStringList{QStringLiteral("driverhost slave")} + arguments))
        return fail(UsageError, parser.errorText());
    if (parser.isSet(help)) {
        QTextStream(stdout) << parser.helpText();
        return Success;
    }
    SlaveOptions options;
    QString error;
    if (!readSlaveOptions(parser, options, error))
        return fail(UsageError, error);
    return serve(options);
}
