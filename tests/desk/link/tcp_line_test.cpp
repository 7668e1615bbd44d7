#include "desk/link/tcp_channel.h"

#include "tests/peers/tcp_peer.h"
#include "tests/peers/text_printing.h"
#include "tests/peers/waiting.h"

#include <gtest/gtest.h>

#include <list>
#include <thread>

namespace
{

const qint64 Ms = 1000; // the line's clock counts microseconds
const qint64 Short = 60 * Ms;
const qint64 Long = 120000 * Ms;

ChannelSettings loopback(quint16 port)
{
    ChannelSettings settings;
    settings.host = QStringLiteral("127.0.0.1");
    settings.port = port;
    return settings;
}

class TcpLineTest : public testing::Test
{
protected:
    void connectBoth()
    {
        ASSERT_TRUE(line.open(line.now() + Long)) << line.errorString().toStdString();
        ASSERT_TRUE(peer.accept());
    }
    int send(const QByteArray &bytes, qint64 time)
    {
        return line.send(bytes.constData(), static_cast<int>(bytes.size()), line.now() + time);
    }

    TcpPeer peer;
    TcpEnd end{loopback(peer.port())};
    TcpLine &line = end.line;
};

} // namespace

TEST_F(TcpLineTest, TellsAResetFromAnEnd)
{
    connectBoth();
    peer.close();
    EXPECT_TRUE(line.receive(line.now() + Long).isEmpty());
    EXPECT_EQ(line.state(), LineState::ClosedByOther);
    connectBoth();
    EXPECT_EQ(send("x", Long), 1);
    peer.close(); // with a byte that it has not read
    EXPECT_TRUE(waitUntil([&] { return line.state() == LineState::ResetByOther; }));
    EXPECT_EQ(line.errorString(), QStringLiteral("The remote host closed the connection"));
    EXPECT_EQ(send("x", Long), 0);
    line.close();
    EXPECT_EQ(line.state(), LineState::Closed);
    EXPECT_TRUE(line.receive(line.now() + Long).isEmpty());
}

TEST_F(TcpLineTest, NoticesAResetWhenItSends)
{
    connectBoth();
    EXPECT_EQ(send("x", Long), 1);
    peer.close();
    EXPECT_TRUE(waitUntil([&] { return send("y", Long) == 0; }));
    EXPECT_EQ(line.state(), LineState::ResetByOther);
}

TEST_F(TcpLineTest, SendsAsFastAsTheOtherSideTakesIt)
{
    const QByteArray much(16 << 20, 'x');
    connectBoth();
    EXPECT_LT(send(much, Short), much.size());
    EXPECT_EQ(line.errorString(), QStringLiteral("Network operation timed out"));
    connectBoth();
    std::thread reader([&] { EXPECT_EQ(peer.receive(static_cast<int>(much.size())), much); });
    EXPECT_EQ(send(much, Long), much.size());
    reader.join();
}

TEST_F(TcpLineTest, WaitsNoLongerForAConnectionThanItMay)
{
    // The kernel answers no more connections than may wait to be taken.
    const TcpPeer busy(0);
    std::list<TcpEnd> waiting;
    const auto opens = [&](qint64 time) {
        TcpLine &one = waiting.emplace_back(loopback(busy.port())).line;
        return one.open(one.now() + time);
    };
    while (waiting.size() < 8 && opens(Short))
        ;
    const QString noAnswer = QStringLiteral("cannot connect to 127.0.0.1:%1: no answer").arg(busy.port());
    EXPECT_EQ(waiting.back().line.errorString(), noAnswer);
    line.setCancelled([] { return true; });
    end.device.sockets = {{QStringLiteral("127.0.0.1"), busy.port()}};
    EXPECT_FALSE(line.open(line.now() + Long));
    EXPECT_EQ(line.errorString(), noAnswer);
}

TEST_F(TcpLineTest, SaysWhyThereIsNoConnection)
{
    end.device.sockets = {{QStringLiteral("255.255.255.255"), quint16(502)}}; // fails at once
    EXPECT_FALSE(line.open(line.now() + Long));
    const QString reason = QStringLiteral("cannot connect to 255.255.255.255:502: ");
    EXPECT_TRUE(line.errorString().startsWith(reason)) << line.errorString().toStdString();
    EXPECT_FALSE(line.errorString().endsWith(QLatin1String("no answer")));
    EXPECT_EQ(line.state(), LineState::Closed);
}
