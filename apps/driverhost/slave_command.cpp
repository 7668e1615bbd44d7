#include "slave_command.h"

#include "exit_codes.h"
#include "messages.h"
#include "slave/embedded_slave.h"
#include "stop_signal.h"
#include "target.h"

#include <QCoreApplication>
#include <QTextStream>

namespace
{

const CommandLine::Texts Texts = {
    "slave",
    "",
    "A Modbus slave that speaks RTU framing over TCP, to try things against: functions 1 to 6, 15 and 16 on\n"
    "65536 addresses of each area, all 0 at first. Ctrl-C ends it and prints what it did.\n"
    "\n"
    "The file of --values has lines such as\n"
    "  HR100 = 1 -2 0x1F     the address counts from 1; values from there on\n"
    "  2-DO1 = 1 0 1         of station 2 only\n"
    "  hole IR200..299       addresses that do not exist\n"
    "\n"
    "Faults of --fault; the number behind the colon may be left out:\n"
    "  silence               no reply\n"
    "  delay:MS              the reply comes so many milliseconds late\n"
    "  truncate:BYTES        only so many bytes of it\n"
    "  wrong-station:ID      in the name of another station\n"
    "  wrong-function:CODE   with another function\n"
    "  wrong-crc             one bit of the CRC is wrong\n"
    "  exception:CODE        refused, and not executed\n"
    "  junk-before:BYTES     noise in front of the reply\n"
    "  junk-after:BYTES      noise behind it\n"
    "  split:MS              one byte a segment, so many milliseconds apart\n"
    "  merge                 held back and sent in one segment with the next reply\n"
    "  double                twice in one segment\n"
    "  stale                 the reply before it comes once more, in front\n"
    "  echo                  the request comes back in front of the reply\n"
    "  reset, close          the connection is reset, or closed, instead\n"
    "  half-open             the connection stays up and nothing happens on it any more",
    "  driverhost slave --port 1502 --values plant.txt\n"
    "  driverhost slave --station 1-3 --latency 20 --fault silence=1% --fault truncate:4=1/10 --trace",
};

const int HighestStation = 247;
const int HighestFunction = 127;
const int HighestPort = 65535;
const int LongestLatency = 60 * 1000;

QCommandLineOption option(const char *name, const QString &description, const char *value,
                          const char *usual = "")
{
    const QString shown = qstrlen(usual) == 0 ? QString() : QStringLiteral(" (default %1)").arg(usual);
    return {QLatin1String(name), description + shown, QLatin1String(value), QLatin1String(usual)};
}

// Numbers and ranges of numbers: "1,3,5-7".
QList<int> numberList(CommandLine &line, const char *name, int highest)
{
    QList<int> numbers;
    const QString what = QStringLiteral("--") + QLatin1String(name);
    QString error;
    for (const QString &part : line.text(name).split(QLatin1Char(','))) {
        const auto first = parseNumber(what, part.section(QLatin1Char('-'), 0, 0), 1, highest, error);
        const auto last =
            parseNumber(what, part.section(QLatin1Char('-'), -1), first.value_or(1), highest, error);
        for (int number = first.value_or(1); number <= last.value_or(0); ++number)
            numbers.append(number);
    }
    if (!error.isEmpty())
        line.mistake(error);
    return numbers;
}

void readAddress(CommandLine &line, SlaveOptions &options)
{
    if (!options.address.setAddress(line.text("listen")))
        line.mistake(
            QStringLiteral("--listen \"%1\": expected an IPv4 or IPv6 address").arg(line.text("listen")));
    options.port = static_cast<quint16>(line.number("port", 0, HighestPort));
    options.stations = numberList(line, "station", HighestStation);
}

void readMemory(CommandLine &line, SlaveOptions &options)
{
    for (const QString &file : line.texts("values")) {
        QString error;
        if (!options.memory.loadFile(file, &error))
            line.mistake(error);
    }
    for (const QString &text : line.texts("hole")) {
        AreaRange hole;
        if (parseAreaRange(text, hole))
            options.memory.addHole(hole);
        else
            line.mistake(
                QStringLiteral("--hole \"%1\": expected addresses such as HR10 or 2-DO5..20").arg(text));
    }
}

void readLimits(CommandLine &line, SlaveOptions &options)
{
    const SlaveLimits protocol;
    options.limits.registers = line.number("max-registers", 1, protocol.registers);
    options.limits.bits = line.number("max-bits", 1, protocol.bits);
    const QList<int> functions = numberList(line, "functions", HighestFunction);
    options.functions = QSet<int>(functions.begin(), functions.end());
    options.latencyMs = line.number("latency", 0, LongestLatency);
}

void readFaults(CommandLine &line, SlaveOptions &options)
{
    options.faults.setSeed(static_cast<quint32>(line.number("seed", 0, INT_MAX)));
    for (const QString &text : line.texts("fault")) {
        QString error;
        if (!options.faults.add(text, &error))
            line.mistake(QStringLiteral("--fault: ") + error);
    }
    options.banner = line.text("banner").toUtf8();
}

int serve(const SlaveOptions &options)
{
    EmbeddedSlave slave(options);
    if (!slave.listen()) {
        complain(QStringLiteral("cannot listen on %1: %2")
                     .arg(endpointText(options.address.toString(), options.port), slave.errorString()));
        return OtherFailure;
    }
    StopSignal signal;
    QObject::connect(&signal, &StopSignal::stop, qApp, &QCoreApplication::quit);
    QTextStream output(stdout);
    output << "listening on " << endpointText(options.address.toString(), slave.port()) << ", Ctrl-C ends\n";
    output.flush();
    QCoreApplication::exec();
    output << describeCounts(slave.counts());
    return Success;
}

} // namespace

QList<QCommandLineOption> slaveCommandOptions()
{
    return {
        option("listen", QStringLiteral("Address to listen on; 0.0.0.0 is all"), "ADDRESS", "127.0.0.1"),
        option("port", QStringLiteral("Port to listen on; 0 takes a free one"), "NUMBER", "1502"),
        option("station",
               QStringLiteral("Stations that answer, each with a memory of its own, such as 1,5-7"), "LIST",
               "1"),
        option("values", QStringLiteral("File with initial values and holes."), "FILE"),
        option("hole",
               QStringLiteral("Addresses that do not exist, such as HR10..20: exception 2. May be given "
                              "several times."),
               "RANGE"),
        option("max-registers", QStringLiteral("Most registers in one request; above: exception 3"), "NUMBER",
               "125"),
        option("max-bits", QStringLiteral("Most bits in one request"), "NUMBER", "2000"),
        option("functions", QStringLiteral("Functions that it knows; others: exception 1"), "LIST",
               "1-6,15,16"),
        option("latency", QStringLiteral("Milliseconds that every reply takes"), "MS", "0"),
        option("fault",
               QStringLiteral(
                   "Spoil a share of the replies (silence=1%) or every n-th (truncate:4=1/10). May be "
                   "given several times."),
               "RULE"),
        option("banner", QStringLiteral("Text to send on every new connection."), "TEXT"),
        option("seed", QStringLiteral("Same seed, same faults"), "NUMBER", "1"),
        {QStringLiteral("trace"), QStringLiteral("Tell every frame and what it means on standard error.")},
    };
}

SlaveOptions slaveOptions(CommandLine &line)
{
    SlaveOptions options;
    if (!line.words().isEmpty())
        line.mistake(QStringLiteral("\"%1\" is no option").arg(line.words().first()));
    readAddress(line, options);
    readMemory(line, options);
    readLimits(line, options);
    readFaults(line, options);
    if (line.isSet("trace"))
        options.trace = stderrTrace();
    return options;
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
    CommandLine line(Texts);
    line.addOptions(slaveCommandOptions());
    if (const std::optional<int> end = line.parse(arguments))
        return *end;
    const SlaveOptions options = slaveOptions(line);
    return line.isRight() ? serve(options) : line.refuse();
}
