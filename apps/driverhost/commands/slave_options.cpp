#include "apps/driverhost/commands/slave_options.h"

#include "apps/driverhost/console/link_options.h"
#include "desk/items/number_text.h"
#include "desk/items/target.h"

#include <climits>

namespace
{

const int MaxLatency = 60 * 1000;
const int MaxHabitTime = 3600 * 1000;

QCommandLineOption option(const char *name, const QString &description, const char *value,
                          const QString &defaultText = {})
{
    const QString shown =
        defaultText.isEmpty() ? QString() : QStringLiteral(" (default %1)").arg(defaultText);
    return {QLatin1String(name), description + shown, QLatin1String(value), defaultText};
}

// Numbers and ranges of numbers: "1,3,5-7".
QList<int> numberList(CommandLine &line, const char *name, int max)
{
    QList<int> numbers;
    const QString what = QStringLiteral("--") + QLatin1String(name);
    for (const QString &part : line.text(name).split(QLatin1Char(','))) {
        const Result<int> first = parseNumber(what, part.section(QLatin1Char('-'), 0, 0), 1, max);
        const Result<int> last = parseNumber(what, part.section(QLatin1Char('-'), -1), first.valueOr(1), max);
        if (!first || !last)
            line.addError(first ? last.errorText() : first.errorText());
        for (int number = first.valueOr(1); number <= last.valueOr(0); ++number)
            numbers.append(number);
    }
    return numbers;
}

void readAddress(CommandLine &line, SlaveOptions &options)
{
    if (!options.address.setAddress(line.text("listen")))
        line.addError(
            QStringLiteral("--listen \"%1\": expected an IPv4 or IPv6 address").arg(line.text("listen")));
    options.port = static_cast<quint16>(line.number("port", 0, MaxPort));
    options.stations = numberList(line, "station", modbus::MaxStation);
}

void readMemory(CommandLine &line, SlaveOptions &options)
{
    for (const QString &file : line.texts("values")) {
        const Result<> loaded = options.memory.loadFile(file);
        if (!loaded)
            line.addError(loaded.errorText());
    }
    for (const QString &text : line.texts("hole")) {
        const Result<AreaRange> hole = parseAreaRange(text);
        if (hole)
            options.memory.addHole(*hole);
        else
            line.addError(QStringLiteral("--hole ") + hole.errorText());
    }
}

void readLimits(CommandLine &line, SlaveOptions &options)
{
    const SlaveLimits protocol;
    options.limits.registers = line.number("max-registers", 1, protocol.registers);
    options.limits.bits = line.number("max-bits", 1, protocol.bits);
    const QList<int> functions = numberList(line, "functions", modbus::MaxFunction);
    options.functions = QSet<int>(functions.begin(), functions.end());
    const QSet<int> known = SlaveOptions().functions;
    for (const int function : functions) {
        if (!known.contains(function))
            line.addError(
                QStringLiteral("--functions: this slave has no function %1; it has 1 to 6, 8, 15 and 16")
                    .arg(function));
    }
    options.latencyMs = line.number("latency", 0, MaxLatency);
}

void readFaults(CommandLine &line, SlaveOptions &options)
{
    options.faults.setSeed(static_cast<quint32>(line.number("seed", 0, INT_MAX)));
    for (const QString &text : line.texts("fault")) {
        const Result<> added = options.faults.add(text);
        if (!added)
            line.addError(QStringLiteral("--fault: ") + added.errorText());
    }
    line.expectWith(line.isSet("fault"), "--fault", {"seed"});
}

// Text, or bytes in hexadecimal digits: "hex:0102FF".
QByteArray bytesOf(CommandLine &line, const char *name)
{
    const QString text = line.text(name);
    const QLatin1String hex("hex:");
    if (!text.startsWith(hex))
        return text.toUtf8();
    const QByteArray digits = text.mid(hex.size()).toLatin1();
    QByteArray bytes = QByteArray::fromHex(digits);
    if (bytes.isEmpty() || bytes.toHex() != digits.toLower())
        line.addError(QStringLiteral("--%1 \"%2\": expected hex: and two digits a byte, such as hex:0102FF")
                          .arg(QLatin1String(name), text));
    return bytes;
}

void readGateway(CommandLine &line, SlaveOptions &options)
{
    options.gateway.banner = bytesOf(line, "banner");
    options.gateway.heartbeat = bytesOf(line, "heartbeat");
    line.expectWith(line.isSet("heartbeat"), "--heartbeat", {"heartbeat-every"});
    options.gateway.heartbeatMs =
        line.isGiven("heartbeat") ? line.number("heartbeat-every", 1, MaxHabitTime) : 0;
    if (line.isGiven("one-connection"))
        options.gateway.slotHeldMs = line.number("one-connection", 0, MaxHabitTime);
    if (line.isGiven("idle-close"))
        options.gateway.idleCloseMs = line.number("idle-close", 1, MaxHabitTime);
}

} // namespace

QList<QCommandLineOption> slaveCommandOptions()
{
    const SlaveLimits protocol;
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
        option("max-registers", QStringLiteral("Maximum of registers in one request; above: exception 3"),
               "NUMBER", QString::number(protocol.registers)),
        option("max-bits", QStringLiteral("Maximum of bits in one request"), "NUMBER",
               QString::number(protocol.bits)),
        option("functions", QStringLiteral("Functions that it knows; others: exception 1"), "LIST",
               "1-6,8,15,16"),
        option("latency", QStringLiteral("Milliseconds that every reply takes"), "MS", "0"),
        option("fault",
               QStringLiteral(
                   "Spoil a share of the replies (silence=1%) or every n-th (truncate:4=1/10). May be "
                   "given several times."),
               "RULE"),
        option("banner", QStringLiteral("Text to send on every new connection, or bytes as hex:0102FF."),
               "TEXT"),
        option("heartbeat", QStringLiteral("The same, to send again and again."), "TEXT"),
        option("heartbeat-every", QStringLiteral("Milliseconds between heartbeats"), "MS", "1000"),
        option("one-connection",
               QStringLiteral(
                   "Take one connection at a time, and none for so many milliseconds after it has ended."),
               "MS"),
        option("idle-close",
               QStringLiteral("Close connections on which nothing has come for so many milliseconds."), "MS"),
        option("seed", QStringLiteral("Same seed, same faults"), "NUMBER", "1"),
        {QStringLiteral("trace"), QStringLiteral("Show every frame and what it means on standard error.")},
    };
}

SlaveOptions slaveOptions(CommandLine &line)
{
    SlaveOptions options;
    if (!line.words().isEmpty())
        line.addError(QStringLiteral("\"%1\" is no option").arg(line.words().first()));
    readAddress(line, options);
    readMemory(line, options);
    readLimits(line, options);
    readFaults(line, options);
    readGateway(line, options);
    options.trace = traceOf(line);
    return options;
}

QString describeCounts(const SlaveCounts &counts)
{
    const QString rejected =
        counts.rejected > 0 ? QStringLiteral(" (and %1 rejected)").arg(counts.rejected) : QString();
    QString text = QStringLiteral("connections %1%7, requests %2 (broadcasts %3), exceptions %4, "
                                  "for other stations %5, bytes dropped %6\n")
                       .arg(counts.connections)
                       .arg(counts.requests)
                       .arg(counts.broadcasts)
                       .arg(counts.exceptions)
                       .arg(counts.foreign)
                       .arg(counts.droppedBytes)
                       .arg(rejected);
    QStringList faults;
    for (auto entry = counts.faults.begin(); entry != counts.faults.end(); ++entry)
        faults.append(QStringLiteral("%1 %2").arg(faultName(entry.key())).arg(entry.value()));
    if (!faults.isEmpty())
        text += QStringLiteral("faults: %1\n").arg(faults.join(QLatin1String(", ")));
    return text;
}
