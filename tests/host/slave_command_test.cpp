#include "slave_command.h"

#include <gtest/gtest.h>

#include <QCommandLineParser>
#include <QTemporaryDir>

#include <ostream>

namespace
{

struct Parsed {
    bool isTaken = false;
    SlaveOptions options;
    QString error;
};

Parsed parse(const QStringList &arguments)
{
    QCommandLineParser parser;
    addSlaveOptions(parser);
    Parsed parsed;
    if (parser.parse(QStringList{"slave"} + arguments))
        parsed.isTaken = readSlaveOptions(parser, parsed.options, parsed.error);
    else
        parsed.error = parser.errorText();
    return parsed;
}

std::string errorOf(const QStringList &arguments)
{
    const Parsed parsed = parse(arguments);
    EXPECT_FALSE(parsed.isTaken);
    return parsed.error.toStdString();
}

TEST(SlaveCommand, Defaults)
{
    const Parsed parsed = parse({});
    ASSERT_TRUE(parsed.isTaken) << parsed.error.toStdString();
    const SlaveOptions usual;
    EXPECT_EQ(QHostAddress("127.0.0.1"), parsed.options.address);
    EXPECT_EQ(1502, parsed.options.port);
    EXPECT_EQ(usual.stations, parsed.options.stations);
    EXPECT_EQ(usual.functions, parsed.options.functions);
    EXPECT_EQ(usual.limits.registers, parsed.options.limits.registers);
    EXPECT_EQ(usual.limits.bits, parsed.options.limits.bits);
    EXPECT_EQ(0, parsed.options.latencyMs);
    EXPECT_TRUE(parsed.options.banner.isEmpty());
    EXPECT_TRUE(parsed.options.memory.values().isEmpty());
    EXPECT_FALSE(parsed.options.trace);
}

TEST(SlaveCommand, TakesEveryOption)
{
    QTemporaryDir folder;
    QFile file(folder.filePath("values"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("HR1 = 5\n");
    file.close();

    Parsed parsed = parse({"--listen", "::1",         "--port",          "0",         "--station",
                           "2,5-7",    "--values",    file.fileName(),   "--hole",    "HR10..20",
                           "--hole",   "DO1",         "--max-registers", "16",        "--max-bits",
                           "64",       "--functions", "1-4,6",           "--latency", "20",
                           "--fault",  "silence=1/2", "--banner",        "hello",     "--seed",
                           "9",        "--trace"});
    ASSERT_TRUE(parsed.isTaken) << parsed.error.toStdString();
    SlaveOptions &options = parsed.options;
    EXPECT_EQ(QHostAddress("::1"), options.address);
    EXPECT_EQ(0, options.port);
    EXPECT_EQ((QList<int>{2, 5, 6, 7}), options.stations);
    EXPECT_EQ(1, options.memory.values().size());
    EXPECT_TRUE(options.memory.isHole(2, SlaveArea::HoldingRegisters, 9, 9));
    EXPECT_TRUE(options.memory.isHole(2, SlaveArea::Coils, 0, 0));
    EXPECT_EQ(16, options.limits.registers);
    EXPECT_EQ(64, options.limits.bits);
    EXPECT_EQ((QSet<int>{1, 2, 3, 4, 6}), options.functions);
    EXPECT_EQ(20, options.latencyMs);
    EXPECT_EQ(Fault::None, options.faults.next().kind);
    EXPECT_EQ(Fault::Silence, options.faults.next().kind);
    EXPECT_EQ("hello", options.banner.toStdString());
    EXPECT_TRUE(options.trace);
}

TEST(SlaveCommand, TheSeedReachesTheFaults)
{
    const auto draws = [](const char *seed) {
        Parsed parsed = parse({"--fault", "silence=50%", "--seed", QLatin1String(seed)});
        QList<int> kinds;
        for (int i = 0; i < 100; ++i)
            kinds.append(parsed.options.faults.next().kind);
        return kinds;
    };
    EXPECT_EQ(draws("3"), draws("3"));
    EXPECT_NE(draws("3"), draws("4"));
}

TEST(SlaveCommand, SaysWhatIsWrong)
{
    EXPECT_EQ("--listen \"everywhere\": expected an IPv4 or IPv6 address",
              errorOf({"--listen", "everywhere"}));
    EXPECT_EQ("--port \"65536\": expected a whole number from 0 to 65535", errorOf({"--port", "65536"}));
    EXPECT_EQ("--station \"0\": expected a whole number from 1 to 247", errorOf({"--station", "0"}));
    EXPECT_EQ("--station \"3\": expected a whole number from 5 to 247", errorOf({"--station", "5-3"}));
    EXPECT_EQ("--station \"\": expected a whole number from 1 to 247", errorOf({"--station", "1,"}));
    EXPECT_EQ("--max-registers \"126\": expected a whole number from 1 to 125",
              errorOf({"--max-registers", "126"}));
    EXPECT_EQ("--max-bits \"2001\": expected a whole number from 1 to 2000", errorOf({"--max-bits", "2001"}));
    EXPECT_EQ("--functions \"128\": expected a whole number from 1 to 127", errorOf({"--functions", "128"}));
    EXPECT_EQ("--latency \"soon\": expected a whole number from 0 to 60000", errorOf({"--latency", "soon"}));
    EXPECT_EQ("--hole \"HR\": expected addresses such as HR10 or 2-DO5..20", errorOf({"--hole", "HR"}));
    EXPECT_EQ("--seed \"x\": expected a whole number", errorOf({"--seed", "x"}));
    EXPECT_EQ("--fault: \"silence\" is not like silence=1% or truncate:4=1/10",
              errorOf({"--fault", "silence"}));
    EXPECT_EQ("\"more\" is no option", errorOf({"more"}));
    EXPECT_NE(std::string::npos, errorOf({"--values", "/no/such/file"}).find("/no/such/file: "));
    EXPECT_FALSE(errorOf({"--nonsense"}).empty());
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
        describeCounts(counts).toStdString());
    counts.faults[Fault::Silence] = 7;
    counts.faults[Fault::Reset] = 8;
    EXPECT_TRUE(describeCounts(counts).endsWith("\nfaults: silence 7, reset 8\n"));
}

} // namespace
