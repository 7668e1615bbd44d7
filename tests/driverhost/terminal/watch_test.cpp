#include "desk/live/statistics.h"
#include "desk/live/watched_value.h"
#include "tests/driverhost/support/pty_program.h"
#include "tests/driverhost/support/slave_test.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

#include <csignal>

namespace
{

const int Patience = 30000;

// The line of an address on the screen.
QString lineOf(const Screen &screen, const QString &address)
{
    for (const QString &line : screen.lines()) {
        if (line.startsWith(address + QLatin1Char(' ')))
            return line;
    }
    return {};
}

bool shows(const Screen &screen, const QString &address, const QString &pattern)
{
    return QRegularExpression(pattern).match(lineOf(screen, address)).hasMatch();
}

ValueRow wordRow(int value)
{
    ValueRow row;
    row.value.text = QString::number(value);
    row.value.raw = row.value.text;
    row.value.number = value;
    return row;
}

} // namespace

class WatchTest : public SlaveTest
{
protected:
    QStringList arguments(const QString &rest) const
    {
        return (QStringLiteral("watch ") + target() + QLatin1Char(' ') + rest)
            .split(QLatin1Char(' '), Qt::SkipEmptyParts);
    }
};

TEST_F(WatchTest, WritesLinesWhereThereIsNoTerminal)
{
    setHoldingRegister(0, 11);
    const HostRun run = host(QStringLiteral("watch TARGET HR1 DI3 --interval 0.02 --count 3"));
    EXPECT_EQ(run.code, 0);
    const QStringList lines = run.out.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    ASSERT_EQ(lines.size(), 6);
    const QRegularExpression form(QStringLiteral(
        "^\\d{4}-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\d\\.\\d{3}[-+]\\d\\d:\\d\\d  (HR1  11|DI3  0)$"));
    for (const QString &line : lines)
        EXPECT_TRUE(form.match(line).hasMatch()) << line.toStdString();
    EXPECT_FALSE(run.out.contains(QChar(0x1b)));
    EXPECT_TRUE(run.err.contains(QLatin1String("6 transactions"))) << run.err.toStdString();
    EXPECT_TRUE(
        QRegularExpression(QStringLiteral("latency min [0-9.]+ ms, median [0-9.]+ ms, p99 [0-9.]+ ms, max"))
            .match(run.err)
            .hasMatch());
    EXPECT_EQ(slave.counts().connections, 1u);
}

TEST_F(WatchTest, WritesCsvAndJson)
{
    const QStringList csv = host(QStringLiteral("watch TARGET HR1 --interval 0 --count 2 --format csv"))
                                .out.split(QLatin1Char('\n'));
    EXPECT_EQ(csv.value(0),
              QStringLiteral("time,station,address,offset,kind,value,latency_ms,"
                             "transaction_ms,attempts,failure,error,last_value,last_time,stale"));
    EXPECT_EQ(csv.value(2).split(QLatin1Char(',')).mid(1, 5).join(QLatin1Char(',')),
              QStringLiteral("1,HR1,0,word,0"));
    const QString json = host(QStringLiteral("watch TARGET HR1 --interval 0 --count 1 --format json")).out;
    const QJsonObject object =
        QJsonDocument::fromJson(json.section(QLatin1Char('\n'), 0, 0).toUtf8()).object();
    EXPECT_TRUE(object.value(QStringLiteral("latency_ms")).isDouble());
    EXPECT_TRUE(object.value(QStringLiteral("time")).isString());
    EXPECT_EQ(object.value(QStringLiteral("value")), QJsonValue(0));
}

TEST_F(WatchTest, EndsAfterItsDuration)
{
    const HostRun run = host(QStringLiteral("watch TARGET HR1 --interval 0.05 --duration 0.3"));
    EXPECT_EQ(run.code, 0);
    EXPECT_GE(run.out.count(QLatin1Char('\n')), 2);
    slave.inject(Fault{Fault::HalfOpen, -1}, 1);
    EXPECT_EQ(host(QStringLiteral("watch TARGET HR1 --duration 0.3 --timeout 600000")).code, 0)
        << "a reply that does not come must not keep it";
}

TEST_F(WatchTest, KeepsATableInPlaceOnATerminal)
{
    setHoldingRegister(0, 100);
    PtyProgram program(arguments(QStringLiteral("HR1 HR2 --interval 0.05")));
    ASSERT_TRUE(program.waitForScreen([](const Screen &screen) {
        return shows(screen, "HR1", " 100 +[0-9.]+ ");
    })) << program.output().toStdString();
    setHoldingRegister(0, 200);
    ASSERT_TRUE(program.waitForScreen([](const Screen &screen) {
        return shows(screen, "HR1", " 200 +\\* ");
    })) << "the change is marked";
    ASSERT_TRUE(program.waitForScreen([](const Screen &screen) {
        return shows(screen, "HR1", " 200 +[0-9.]+ ");
    })) << "and then it is no change any more";
    EXPECT_TRUE(
        lineOf(program.screen(), QStringLiteral("HR1")).contains(QRegularExpression(QStringLiteral("▁+█+"))));
    EXPECT_EQ(program.screen().text().count(QLatin1String("address")), 1);
    EXPECT_FALSE(program.screen().isCursorShown());

    program.type("\x03");
    EXPECT_EQ(program.waitForEnd(), 0);
    EXPECT_TRUE(program.screen().isCursorShown());
    EXPECT_TRUE(program.screen().text().contains(QLatin1String(" transactions in ")));
    EXPECT_TRUE(program.screen().text().contains(QLatin1String("latency min ")));
    EXPECT_EQ(slave.counts().connections, 1u);
}

TEST_F(WatchTest, NeverShowsAStaleValueAsIfItWereLive)
{
    setHoldingRegister(0, 4711);
    PtyProgram program(arguments(QStringLiteral("HR1 --interval 0.05 --retries 0 --timeout 600000")));
    ASSERT_TRUE(program.waitForScreen([](const Screen &screen) { return shows(screen, "HR1", " 4711 "); }));
    // The slave just stops answering, and the watch waits for it.
    slave.inject(Fault{Fault::HalfOpen, -1}, 1);
    ASSERT_TRUE(program.waitForScreen([](const Screen &screen) {
        return shows(screen, "HR1", " \\? .* was 4711 [0-9.]+ s ago");
    })) << program.screen().text().toStdString();
    program.type("\x03");
    EXPECT_EQ(program.waitForEnd(), 0) << "Ctrl-C must not wait for the reply";
}

TEST_F(WatchTest, FindsASlaveAgainThatWentAway)
{
    setHoldingRegister(0, 7);
    PtyProgram program(arguments(QStringLiteral("HR1 HR2 --interval 0.05 --retries 0")));
    ASSERT_TRUE(program.waitForScreen([](const Screen &screen) { return shows(screen, "HR1", " 7 "); }));
    slave.stop();
    ASSERT_TRUE(program.waitForScreen([](const Screen &screen) {
        return shows(screen, "HR1", " \\? ") && shows(screen, "HR2", " \\? ") &&
               screen.text().contains(QLatin1String("Connection refused"));
    })) << program.screen().text().toStdString();
    ASSERT_TRUE(slave.start());
    setHoldingRegister(0, 8);
    ASSERT_TRUE(program.waitForScreen([](const Screen &screen) { return shows(screen, "HR1", " 8 "); }));
    EXPECT_TRUE(shows(program.screen(), "HR1", " [1-9]\\d* +\\S*▁")) << "the errors stay counted";
    program.type("\x03");
    EXPECT_EQ(program.waitForEnd(), 0);
    EXPECT_TRUE(program.screen().text().contains(QLatin1String(" x cannot connect to ")));
}

TEST_F(WatchTest, InterruptedWithoutATerminalItTellsTheStatisticsToo)
{
    QProcess process;
    process.start(hostProgram(), arguments(QStringLiteral("HR1 --interval 0.05")));
    ASSERT_TRUE(waitUntil([&] { return process.bytesAvailable() > 0; }));
    ASSERT_EQ(kill(static_cast<pid_t>(process.processId()), SIGINT), 0);
    ASSERT_TRUE(process.waitForFinished(Patience));
    EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(process.exitCode(), 0);
    EXPECT_TRUE(process.readAllStandardError().contains(", 0 failed"));
}

TEST_F(WatchTest, EndsWhenNobodyReadsIt)
{
    QProcess shell;
    shell.start(QStringLiteral("sh"),
                QStringList{QStringLiteral("-c"),
                            QStringLiteral("{ \"$0\" \"$@\"; echo \"code $?\" >&2; } | head -n 1"),
                            hostProgram()} +
                    arguments(QStringLiteral("HR1 --interval 0.01")));
    ASSERT_TRUE(shell.waitForFinished(Patience));
    EXPECT_EQ(shell.readAllStandardOutput().count('\n'), 1);
    EXPECT_TRUE(shell.readAllStandardError().endsWith("code 141\n"));
}

TEST_F(WatchTest, FailsWhenNothingCouldBeRead)
{
    slave.stop();
    const HostRun run = host(QStringLiteral("watch TARGET HR1 HR2 --interval 0 --count 2"));
    EXPECT_EQ(run.code, 3);
    EXPECT_EQ(run.out, QString());
    EXPECT_TRUE(run.err.contains(QLatin1String("2 transactions in "))) << run.err.toStdString();
    EXPECT_TRUE(run.err.contains(QLatin1String("2 x cannot connect to "))) << run.err.toStdString();
}

TEST(Statistics, KnowItsQuantiles)
{
    Statistics statistics;
    EXPECT_EQ(statistics.latencies().quantile(0.5), -1);
    for (int latency = 1; latency <= 100; ++latency)
        statistics.addSuccess(latency, 1000 * latency);
    statistics.addFailure(QStringLiteral("packet loss"));
    statistics.addFailure(QStringLiteral("packet loss"));
    EXPECT_EQ(statistics.latencies().quantile(0), 1);
    EXPECT_EQ(statistics.latencies().quantile(0.5), 50);
    EXPECT_EQ(statistics.latencies().quantile(0.99), 99);
    EXPECT_EQ(statistics.durations().quantile(1), 100000);
    EXPECT_EQ(statistics.transactions(), 102u);
    EXPECT_EQ(statistics.lines(1500),
              (QStringList{QStringLiteral("102 transactions in 1.5 s, 2 failed"),
                           QStringLiteral("  2 x packet loss"),
                           QStringLiteral("latency min 0.001 ms, median 0.05 ms, p99 0.099 ms, max 0.1 ms"),
                           QStringLiteral("transaction min 1 ms, median 50 ms, p99 99 ms, max 100 ms")}));
}

TEST(WatchedValue, IsLiveOnlyForItsTime)
{
    WatchedValue value(100);
    EXPECT_EQ(value.text(0), QStringLiteral("?"));
    EXPECT_EQ(value.note(0), QString());
    value.add(wordRow(5), 1000);
    EXPECT_EQ(value.text(1100), QStringLiteral("5"));
    EXPECT_FALSE(value.hasChanged());
    EXPECT_EQ(value.text(1101), QStringLiteral("?"));
    EXPECT_EQ(value.note(2500), QStringLiteral("was 5 1.5 s ago"));
    value.add(wordRow(6), 1200);
    EXPECT_TRUE(value.hasChanged());
    value.addGap();
    EXPECT_EQ(value.text(1200), QStringLiteral("?"));
    EXPECT_FALSE(value.hasChanged());
}

TEST(WatchedValue, DrawsItsCourseBetweenItsOwnLimits)
{
    WatchedValue value(100);
    for (const int number : {10, 17, 10})
        value.add(wordRow(number), 0);
    value.addGap();
    value.add(wordRow(13), 0);
    EXPECT_EQ(value.sparkline(true), QStringLiteral("▁█▁ ▄"));
    EXPECT_EQ(value.sparkline(false), QStringLiteral("_#_ -"));
    for (int i = 0; i < 100; ++i)
        value.add(wordRow(1), 0);
    EXPECT_EQ(value.sparkline(true), QString(24, QChar(u'▁')));
}

TEST_F(WatchTest, SaysWhenADeadStationIsAskedAgain)
{
    setHoldingRegister(0, 11);
    PtyProgram program(arguments(QStringLiteral("HR1 7-HR1 --timeout 40 --retries 0 --interval 0.05")));
    EXPECT_TRUE(program.waitForScreen([](const Screen &screen) {
        return shows(screen, QStringLiteral("HR1"), QStringLiteral(" 11 ")) &&
               screen.text().contains(QStringLiteral("7-HR1: PLC no response before; asked again in 4 s"));
    }));
    program.type("\x03");
    EXPECT_EQ(program.waitForEnd(), 0);
}

TEST_F(WatchTest, TakesItsTimeWhileNobodyAnswers)
{
    const HostRun run =
        runHost(QStringLiteral("watch %1 HR1 --timeout 40 --retries 0 --interval 0 --duration 1 "
                               "--format json")
                    .arg(target(7))
                    .split(QLatin1Char(' ')));
    EXPECT_TRUE(run.out.contains(QStringLiteral("asked again in 2 s"))) << run.out.toStdString();
    EXPECT_LT(run.out.count(QLatin1Char('\n')), 20);
}
