#include "apps/driverhost/commands/slave_options.h"

#include "tests/driverhost/support/host_program.h"
#include "tests/peers/raw_master.h"

#include <gtest/gtest.h>

#include <QRegularExpression>
#include <QTemporaryDir>

#include <csignal>

namespace
{

SlaveOptions parsed(const QStringList &arguments)
{
    CommandLine line({"slave", "", "", ""});
    line.addOptions(slaveCommandOptions());
    EXPECT_FALSE(line.parse(arguments));
    SlaveOptions options = slaveOptions(line);
    EXPECT_TRUE(line.isValid());
    return options;
}

// What the program says is wrong.
QString errorIn(const QStringList &arguments)
{
    const HostRun run = runHost(QStringList{"slave", "--port", "0"} + arguments);
    EXPECT_EQ(2, run.code);
    EXPECT_EQ("", run.out);
    return run.err.section('\n', 0, 0).remove("driverhost: ");
}

// A slave in a process of its own, as people start it.
class SlaveProcess
{
public:
    explicit SlaveProcess(const QStringList &arguments)
    {
        process.start(hostProgram(), QStringList{"slave", "--port", "0"} + arguments);
        waitUntil([this] {
            process.waitForReadyRead(10);
            return process.canReadLine();
        });
        firstLine = process.readLine();
        const QRegularExpression pattern("^listening on 127\\.0\\.0\\.1:(\\d+), Ctrl-C ends\n$");
        port = pattern.match(firstLine).captured(1).toUShort();
    }

    ~SlaveProcess()
    {
        process.kill();
        process.waitForFinished();
    }

    // The rest of what it writes once the signal has ended it.
    QString endWith(int signal)
    {
        ::kill(static_cast<pid_t>(process.processId()), signal);
        EXPECT_TRUE(process.waitForFinished(20000));
        EXPECT_EQ(QProcess::NormalExit, process.exitStatus());
        EXPECT_EQ(0, process.exitCode());
        return process.readAllStandardOutput();
    }

    QProcess process;
    QString firstLine;
    quint16 port = 0;
};

TEST(SlaveCommand, Defaults)
{
    const SlaveOptions options = parsed({});
    const SlaveOptions defaults;
    EXPECT_EQ(QHostAddress("127.0.0.1"), options.address);
    EXPECT_EQ(1502, options.port);
    EXPECT_EQ(defaults.stations, options.stations);
    EXPECT_EQ(defaults.functions, options.functions);
    EXPECT_EQ(defaults.limits.registers, options.limits.registers);
    EXPECT_EQ(defaults.limits.bits, options.limits.bits);
    EXPECT_EQ(0, options.latencyMs);
    EXPECT_TRUE(options.gateway.banner.isEmpty());
    EXPECT_TRUE(options.memory.values().isEmpty());
    EXPECT_FALSE(options.trace);
}

TEST(SlaveCommand, TakesEveryOption)
{
    QTemporaryDir folder;
    QFile file(folder.filePath("values"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("HR1 = 5\n");
    file.close();

    SlaveOptions options = parsed({"--listen", "::1",         "--port",          "0",         "--station",
                                   "2,5-7",    "--values",    file.fileName(),   "--hole",    "HR10..20",
                                   "--hole",   "DO1",         "--max-registers", "16",        "--max-bits",
                                   "64",       "--functions", "1-4,6",           "--latency", "20",
                                   "--fault",  "silence=1/2", "--banner",        "hello",     "--seed",
                                   "9",        "--trace"});
    EXPECT_EQ(QHostAddress("::1"), options.address);
    EXPECT_EQ(0, options.port);
    EXPECT_EQ((QList<int>{2, 5, 6, 7}), options.stations);
    EXPECT_EQ(1, options.memory.values().size());
    EXPECT_TRUE(options.memory.isHole(2, Area::HoldingRegisters, 9, 9));
    EXPECT_TRUE(options.memory.isHole(2, Area::Coils, 0, 0));
    EXPECT_EQ(16, options.limits.registers);
    EXPECT_EQ(64, options.limits.bits);
    EXPECT_EQ((QSet<int>{1, 2, 3, 4, 6}), options.functions);
    EXPECT_EQ(20, options.latencyMs);
    EXPECT_EQ(Fault::None, options.faults.next().kind);
    EXPECT_EQ(Fault::Silence, options.faults.next().kind);
    EXPECT_EQ("hello", options.gateway.banner.toStdString());
    EXPECT_TRUE(options.trace);
}

TEST(SlaveCommand, TakesTheHabitsOfGateways)
{
    const GatewayHabits none = parsed({}).gateway;
    EXPECT_EQ(0, none.heartbeatMs);
    EXPECT_EQ(-1, none.slotHeldMs);
    EXPECT_EQ(0, none.idleCloseMs);
    const GatewayHabits some = parsed({"--banner", "hex:0102fF", "--heartbeat", "alive", "--one-connection",
                                       "0", "--idle-close", "500"})
                                   .gateway;
    EXPECT_EQ(QByteArray("\x01\x02\xFF"), some.banner);
    EXPECT_EQ("alive", some.heartbeat.toStdString());
    EXPECT_EQ(1000, some.heartbeatMs);
    EXPECT_EQ(0, some.slotHeldMs);
    EXPECT_EQ(500, some.idleCloseMs);
    EXPECT_EQ(29, parsed({"--heartbeat", "a", "--heartbeat-every", "29"}).gateway.heartbeatMs);
}

TEST(SlaveCommand, TheSeedReachesTheFaults)
{
    const auto draws = [](const char *seed) {
        SlaveOptions options = parsed({"--fault", "silence=50%", "--seed", QLatin1String(seed)});
        QList<int> kinds;
        for (int i = 0; i < 100; ++i)
            kinds.append(options.faults.next().kind);
        return kinds;
    };
    EXPECT_EQ(draws("3"), draws("3"));
    EXPECT_NE(draws("3"), draws("4"));
}

TEST(SlaveCommand, SaysWhatIsWrong)
{
    EXPECT_EQ("--listen \"everywhere\": expected an IPv4 or IPv6 address",
              errorIn({"--listen", "everywhere"}));
    EXPECT_EQ("--port \"65536\": expected a whole number from 0 to 65535", errorIn({"--port", "65536"}));
    EXPECT_EQ("--station \"0\": expected a whole number from 1 to 247", errorIn({"--station", "0"}));
    EXPECT_EQ("--station \"3\": expected a whole number from 5 to 247", errorIn({"--station", "5-3"}));
    EXPECT_EQ("--station \"\": expected a whole number from 1 to 247", errorIn({"--station", "1,"}));
    EXPECT_EQ("--max-registers \"126\": expected a whole number from 1 to 125",
              errorIn({"--max-registers", "126"}));
    EXPECT_EQ("--max-bits \"2001\": expected a whole number from 1 to 2000", errorIn({"--max-bits", "2001"}));
    EXPECT_EQ("--functions \"128\": expected a whole number from 1 to 127", errorIn({"--functions", "128"}));
    EXPECT_EQ("--latency \"soon\": expected a whole number from 0 to 60000", errorIn({"--latency", "soon"}));
    EXPECT_EQ("--hole \"HR\": expected addresses such as HR10 or 2-DO5..20", errorIn({"--hole", "HR"}));
    EXPECT_EQ("--seed \"x\": expected a whole number from 0 to 2147483647", errorIn({"--seed", "x"}));
    EXPECT_EQ("--fault: \"silence\" is not like silence=1% or truncate:4=1/10; =100% means always",
              errorIn({"--fault", "silence"}));
    EXPECT_EQ("--banner \"hex:012\": expected hex: and two digits a byte, such as hex:0102FF",
              errorIn({"--banner", "hex:012"}));
    EXPECT_TRUE(errorIn({"--heartbeat-every", "5"}).contains("--heartbeat"));
    EXPECT_EQ("\"more\" is no option", errorIn({"more"}));
    EXPECT_TRUE(errorIn({"--values", "/no/such/file"}).startsWith("/no/such/file: "));
    EXPECT_TRUE(errorIn({"--nonsense"}).contains("nonsense"));
}

TEST(SlaveCommand, HelpHasEveryOptionAndFault)
{
    const HostRun run = runHost({"slave", "--help"});
    EXPECT_EQ(0, run.code);
    for (const QCommandLineOption &option : slaveCommandOptions())
        EXPECT_TRUE(run.out.contains("--" + option.names().first())) << option.names().first().toStdString();
    const QString words = run.out.simplified();
    for (const QString &fault : allFaultNames())
        EXPECT_TRUE(words.contains(fault)) << fault.toStdString();
    EXPECT_TRUE(run.out.contains("Example:"));
}

TEST(SlaveCommand, ServesUntilASignalAndCounts)
{
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        SlaveProcess slave({"--station", "1,3", "--fault", "exception:6=1/2"});
        ASSERT_NE(0, slave.port) << slave.firstLine.toStdString();
        RawMaster master(slave.port);
        EXPECT_EQ("0306000100FF", master.ask("0306000100FF"));
        EXPECT_EQ("038306", master.ask("030300010001"));
        EXPECT_EQ("03030200FF", master.ask("030300010001"));
        EXPECT_EQ(
            "connections 1, requests 3 (broadcasts 0), exceptions 1, for other stations 0, bytes dropped "
            "0\nfaults: exception 1\n",
            slave.endWith(signal));
    }
}

TEST(SlaveCommand, TracesOnStandardError)
{
    SlaveProcess slave({"--trace"});
    RawMaster master(slave.port);
    EXPECT_EQ("010600010102", master.ask("010600010102"));
    slave.endWith(SIGINT);
    const QString trace = slave.process.readAllStandardError();
    EXPECT_TRUE(trace.contains(" < 01 06 00 01 01 02 58 5B  #1 station 1, write single register, HR2 "));
    EXPECT_TRUE(trace.contains(" > 01 06 00 01 01 02 58 5B  #1 station 1, write single register, HR2 "));
}

TEST(SlaveCommand, SaysThatThePortIsTaken)
{
    SlaveProcess slave({});
    const HostRun run = runHost({"slave", "--port", QString::number(slave.port)});
    EXPECT_EQ(1, run.code);
    EXPECT_TRUE(run.err.contains(QStringLiteral("cannot listen on 127.0.0.1:%1: ").arg(slave.port)));
}

TEST(SlaveCommand, CountsAsText)
{
    SlaveCounts counts;
    counts.connections = 1;
    counts.requests = 2;
    counts.broadcasts = 3;
    counts.exceptions = 4;
    counts.foreign = 5;
    counts.droppedBytes = 6;
    EXPECT_EQ(
        "connections 1, requests 2 (broadcasts 3), exceptions 4, for other stations 5, bytes dropped 6\n",
        describeCounts(counts));
    counts.faults[Fault::Silence] = 7;
    counts.faults[Fault::Reset] = 8;
    EXPECT_TRUE(describeCounts(counts).endsWith("\nfaults: silence 7, reset 8\n"));
}

} // namespace
