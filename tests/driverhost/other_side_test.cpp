#include "desk/wire/rtu_frame.h"
#include "tests/driverhost/support/host_program.h"
#include "tests/peers/scripted_peer.h"

#include <QRegularExpression>

#include <gtest/gtest.h>

// Other sides that are no well-behaved slave: they close the connection, reset it, or send back what they
// get.

namespace
{

HostRun runOn(const ScriptedPeer &peer, const QString &arguments)
{
    QStringList words = arguments.split(QLatin1Char(' '));
    words.insert(1, QStringLiteral("rtutcp://127.0.0.1:%1/1").arg(peer.port()));
    return runHost(words);
}

bool has(const HostRun &run, const char *text)
{
    return run.err.contains(QLatin1String(text));
}

// Takes requests of a read of one register and does with each connection what the script says.
void takeRequest(ScriptedPeer &peer)
{
    peer.receive(8);
}

void echo(ScriptedPeer &peer)
{
    for (QByteArray byte = peer.receive(1); !byte.isEmpty(); byte = peer.receive(1))
        peer.send(byte);
}

} // namespace

TEST(OtherSide, ThatClosesTheConnectionIsNamed)
{
    ScriptedPeer peer(takeRequest);
    const HostRun run = runOn(peer, "read HR1 --retries 0 --trace");
    EXPECT_EQ(run.code, 4);
    EXPECT_TRUE(has(run, "driverhost: HR1: PLC no response (read 1 word(s) from 1-HR1)\n"))
        << run.err.toStdString();
    EXPECT_TRUE(has(run, "  check: the slave or its gateway closed the connection: another master"))
        << run.err.toStdString();
    EXPECT_TRUE(has(run, " - closed by the other side\n")) << run.err.toStdString();
    EXPECT_FALSE(has(run, " - closed\n")) << run.err.toStdString();
}

TEST(OtherSide, ThatResetsTheConnectionIsNamed)
{
    ScriptedPeer peer([](ScriptedPeer &end) {
        end.receive(8);
        end.reset();
    });
    const HostRun run = runOn(peer, "read HR1 --retries 0 --trace");
    EXPECT_EQ(run.code, 4);
    EXPECT_TRUE(has(run, "closed the connection: another master")) << run.err.toStdString();
    EXPECT_TRUE(has(run, " - reset by the other side\n")) << run.err.toStdString();
}

TEST(OtherSide, ThatClosesTheConnectionIsNamedByAScan)
{
    ScriptedPeer peer(takeRequest);
    const HostRun run = runOn(peer, "scan stations --to 1 --passes 1");
    EXPECT_EQ(run.code, 4);
    EXPECT_TRUE(has(run, "\nstation 1 disturbed: PLC no response (read 1 word(s) from 1-HR1)\n"
                         "  check: the slave or its gateway closed the connection: another master"))
        << run.err.toStdString();
}

TEST(OtherSide, ThatClosesAfterHalfAReplyIsNamed)
{
    ScriptedPeer peer([](ScriptedPeer &end) {
        end.receive(8);
        end.send(withCrc(QByteArray::fromHex("0103020007")).left(6));
    });
    const HostRun run = runOn(peer, "read HR1 --retries 0");
    EXPECT_TRUE(has(run, "packet loss (read")) << run.err.toStdString();
    EXPECT_TRUE(has(run, "closed the connection: another master")) << run.err.toStdString();
}

TEST(OtherSide, ThatEchoesIsNamed)
{
    struct Case {
        const char *arguments;
        const char *text;
    };
    for (const Case &c : {Case{"read HR1 --retries 0 --timeout 60", "CRC error (read"},
                          Case{"read HR1 --count 10 --retries 0 --timeout 60", "packet loss (read"},
                          Case{"read HR1 --retries 1 --timeout 60", "PLC no response (read"},
                          Case{"write HR1 1 --retries 0 --timeout 60", "CRC error (write"}}) {
        ScriptedPeer peer(echo);
        const HostRun run = runOn(peer, QLatin1String(c.arguments) + QLatin1String(" --trace"));
        EXPECT_EQ(run.code, 4) << c.arguments;
        EXPECT_TRUE(has(run, c.text)) << run.err.toStdString();
        EXPECT_TRUE(has(run, "the request itself: an echo")) << run.err.toStdString();
        EXPECT_TRUE(has(run, "  check: what came is the request itself: the line echoes"))
            << run.err.toStdString();
    }
}

TEST(OtherSide, ThatEchoesARequestWhichLooksLikeItsReplyIsNoReply)
{
    ScriptedPeer peer(echo);
    const HostRun run = runOn(peer, "read DI769 --count 24 --retries 0 --timeout 60");
    EXPECT_EQ(run.code, 4);
    EXPECT_EQ(run.out, "");
    EXPECT_TRUE(has(run, "  check: what came is the request itself: the line echoes"))
        << run.err.toStdString();
}

TEST(OtherSide, ThatEchoesInFrontOfItsReplyIsRead)
{
    ScriptedPeer peer([](ScriptedPeer &end) {
        end.send(end.receive(8));
        end.send(withCrc(QByteArray::fromHex("0103020007")));
    });
    const HostRun run = runOn(peer, "read HR1 --trace");
    EXPECT_EQ(run.code, 0);
    EXPECT_TRUE(has(run, "skipped, the request, echoed\n")) << run.err.toStdString();
    EXPECT_TRUE(has(run, "HR1: the request came back in front of the reply: the line echoes\n"))
        << run.err.toStdString();
}

TEST(OtherSide, ThatEchoesConfirmsWhatItNeverTook)
{
    ScriptedPeer peer(echo);
    const HostRun run = runOn(peer, "write FN6HR1 7 --verify --retries 0 --timeout 60");
    EXPECT_TRUE(has(run, "FN6HR1: wrote 1 item of kind word\n")) << run.err.toStdString();
    EXPECT_TRUE(has(run, "  check: what came is the request itself: the line echoes"))
        << "only reading back shows" << run.err.toStdString();
    EXPECT_TRUE(run.err.endsWith("  the write was confirmed; whether the slave holds it is not verified\n"))
        << run.err.toStdString();
    EXPECT_EQ(run.code, 4);
}

TEST(Trace, TheRestOfARefusedFrameIsNoFrame)
{
    ScriptedPeer peer([](ScriptedPeer &end) {
        end.receive(8);
        end.send(withCrc(QByteArray::fromHex("0203020007")));
        end.receive(8);
        end.send(withCrc(QByteArray::fromHex("0103020007")));
    });
    const HostRun run = runOn(peer, "read HR1 --retries 1 --timeout 60 --settle off --trace");
    EXPECT_EQ(run.code, 0) << run.err.toStdString();
    EXPECT_TRUE(has(run, "the rest of the frame above: station 2, read holding registers"))
        << run.err.toStdString();
    EXPECT_FALSE(has(run, "not asked for")) << run.err.toStdString();
}

TEST(Trace, TheAnswerToAProbeIsNoEcho)
{
    ScriptedPeer peer([](ScriptedPeer &end) {
        end.receive(8);
        end.send(QByteArray::fromHex("0103020007FFFF"));
        end.send(end.receive(8));
        end.receive(8);
        end.send(withCrc(QByteArray::fromHex("0103020007")));
    });
    const HostRun run = runOn(peer, "read HR1 --retries 1 --timeout 60 --trace");
    EXPECT_EQ(run.code, 0) << run.err.toStdString();
    const QRegularExpression probe(
        " > 01 08 [^\n]*  station 1, diagnostics, return query data \\d+, CRC good\n"
        "[^\n]* < 01 08 [^\n]*  station 1, diagnostics, return query data \\d+, CRC "
        "good\n");
    EXPECT_TRUE(probe.match(run.err).hasMatch()) << run.err.toStdString();
    EXPECT_FALSE(has(run, "echo")) << run.err.toStdString();
}
