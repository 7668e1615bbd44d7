#include "desk/wire/rtu_frame.h"
#include "tests/driverhost/support/slave_test.h"
#include "tests/peers/scripted_peer.h"

#include <QElapsedTimer>
#include <QJsonDocument>
#include <QJsonObject>

namespace
{

SlaveOptions withStations()
{
    SlaveOptions options;
    options.stations = {1, 5};
    return options;
}

HostRun scan(const ScriptedPeer &peer, const QString &options)
{
    QStringList words{"scan", QStringLiteral("rtutcp://127.0.0.1:%1").arg(peer.port()), "stations"};
    return runHost(words + options.split(QLatin1Char(' '), Qt::SkipEmptyParts));
}

bool has(const HostRun &run, const char *text)
{
    return run.err.contains(QLatin1String(text));
}

// Takes a request that comes soon after one for somebody else for the reply to that, as slaves on a bus do.
void beDeafAfterForeignRequests(ScriptedPeer &peer, int station, int milliseconds)
{
    QElapsedTimer sinceForeign;
    for (QByteArray request = peer.receive(8); request.size() == 8; request = peer.receive(8)) {
        const bool isDeaf = sinceForeign.isValid() && !sinceForeign.hasExpired(milliseconds);
        sinceForeign.invalidate();
        if (isDeaf)
            continue;
        if (byteAt(request, 0) == station)
            peer.send(withCrc(request.left(2) + QByteArray::fromHex("020007")));
        else
            sinceForeign.start();
    }
}

} // namespace

class ScanStationsTest : public SlaveTest
{
protected:
    ScanStationsTest() : SlaveTest(withStations()) {}
};

TEST_F(ScanStationsTest, CountsDisturbedRepliesApart)
{
    slave.inject(Fault{Fault::WrongCrc, -1}, 1);
    const HostRun run =
        host("scan TARGET stations --to 5 --timeout 60 --delay 0 --after-silence 0 --passes 1");
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(run.out, "5  answers\n");
    EXPECT_TRUE(has(run, "1 station answered\n")) << run.err.toStdString();
    EXPECT_TRUE(has(run, "station 1 disturbed: CRC error (read 1 word(s) from 1-HR1)\n"))
        << run.err.toStdString();
}

TEST_F(ScanStationsTest, AsksAgainWhereSomethingWasDisturbed)
{
    slave.inject(Fault{Fault::WrongCrc, -1}, 1);
    const HostRun run = host("scan TARGET stations --to 5 --timeout 60 --delay 0 --after-silence 0");
    EXPECT_EQ(run.out, "1  answers\n5  answers\n");
    EXPECT_TRUE(has(run, "some replies were late or disturbed: asking 1 station once more, with 2000 ms"))
        << run.err.toStdString();
    EXPECT_TRUE(has(run, "2 stations answered\n")) << run.err.toStdString();
}

TEST_F(ScanStationsTest, KeepsItsConnectionWhenAStationIsSilent)
{
    EXPECT_EQ(host("scan TARGET stations --to 6 --timeout 60 --delay 0 --after-silence 0 --passes 1").code,
              0);
    EXPECT_EQ(slave.counts().connections, 1u);
}

TEST_F(ScanStationsTest, NothingFoundIsAnotherEndThanSomethingFound)
{
    const HostRun run =
        host("scan TARGET stations --from 2 --to 3 --timeout 60 --delay 0 --after-silence 0 --passes 1");
    EXPECT_EQ(run.code, 4);
    EXPECT_EQ(run.out, "");
    EXPECT_TRUE(has(run, "0 stations answered\n2 requests, 2 attempts, 0 retries; 2 time-outs\n"))
        << run.err.toStdString();
}

TEST_F(ScanStationsTest, SaysHowFarItCame)
{
    QProcess process;
    process.start(hostProgram(), {"scan", target(), "stations", "--timeout", "200"});
    ASSERT_TRUE(waitUntil([&] { return slave.counts().foreign >= 1; }));
    ASSERT_EQ(kill(static_cast<pid_t>(process.processId()), SIGINT), 0);
    ASSERT_TRUE(process.waitForFinished());
    EXPECT_EQ(process.exitCode(), 130);
    EXPECT_EQ(process.readAllStandardOutput(), "1  answers\n");
    const QByteArray told = process.readAllStandardError();
    EXPECT_TRUE(told.contains("driverhost: interrupted; stations 1 to 1 were asked\n1 station answered\n"))
        << told.constData();
}

TEST_F(ScanStationsTest, HasFormsForPrograms)
{
    const QString options =
        " --to 5 --timeout 60 --delay 0 --after-silence 0 --passes 1 --probe HR1 --format ";
    slave.inject(Fault{Fault::Exception, 2}, 1);
    EXPECT_EQ(
        host("scan TARGET stations" + options + "csv").out,
        "station,result,failure,error\n1,refuses,exception,exception code:0x02 (read 1 word(s) from 1-HR1)\n"
        "5,answers,,\n");
    slave.inject(Fault{Fault::WrongCrc, -1}, 1);
    const QStringList lines = host("scan TARGET stations" + options + "json").out.split('\n');
    ASSERT_EQ(lines.size(), 4);
    EXPECT_EQ(lines.at(0), "{\"result\":\"answers\",\"station\":5}");
    EXPECT_EQ(lines.at(1), "{\"error\":\"CRC error (read 1 word(s) from 1-HR1)\",\"failure\":\"crc-error\","
                           "\"result\":\"disturbed\",\"station\":1}");
    const QJsonObject summary =
        QJsonDocument::fromJson(lines.at(2).toUtf8()).object().value("summary").toObject();
    EXPECT_EQ(summary.value("version"), 1);
    EXPECT_EQ(summary.value("found"), 1);
    EXPECT_EQ(summary.value("scanned_to"), 5);
    EXPECT_EQ(summary.value("timeouts"), 3);
    EXPECT_EQ(summary.value("crc_errors"), 1);
}

TEST(ScanStations, FindNobodyOnALineThatEchoes)
{
    ScriptedPeer peer([](ScriptedPeer &end) {
        for (QByteArray byte = end.receive(1); !byte.isEmpty(); byte = end.receive(1))
            end.send(byte);
    });
    const HostRun run = scan(peer, "--to 30");
    EXPECT_EQ(run.code, 4);
    EXPECT_EQ(run.out, "");
    EXPECT_TRUE(has(run, "0 stations answered\n")) << run.err.toStdString();
    EXPECT_TRUE(has(run, "the line echoes: what came back was the request itself, for 30 stations"))
        << run.err.toStdString();
    EXPECT_FALSE(has(run, "disturbed")) << run.err.toStdString();
}

TEST(ScanStations, FindASlaveThatIsDeafAfterAForeignRequest)
{
    ScriptedPeer peer([](ScriptedPeer &end) { beDeafAfterForeignRequests(end, 2, 500); });
    const HostRun run = scan(peer, "--to 2 --passes 1");
    EXPECT_EQ(run.out, "2  answers\n") << run.err.toStdString();
}

TEST(ScanStations, FindASlaveThatIsDeafForLongAtTheSecondPass)
{
    ScriptedPeer peer([](ScriptedPeer &end) { beDeafAfterForeignRequests(end, 3, 900); });
    const HostRun run = scan(peer, "--from 2 --to 3");
    EXPECT_EQ(run.out, "3  answers\n") << run.err.toStdString();
    EXPECT_TRUE(has(run, "nothing answered: asking 2 stations once more")) << run.err.toStdString();
}
