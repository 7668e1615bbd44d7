#include "desk/link/tcp_channel.h"

#include "desk/slave/slave_thread.h"
#include "drivers/qt/qt_lines.h"
#include "tests/peers/tcp_peer.h"
#include "tests/peers/text_printing.h"
#include "tests/peers/waiting.h"

#include <QElapsedTimer>

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <thread>

namespace
{

const int Short = 60;    // a time-out that is to pass
const int Long = 120000; // one that must not

ChannelSettings settingsFor(quint16 port, int timeout)
{
    ChannelSettings settings;
    settings.host = QStringLiteral("127.0.0.1");
    settings.port = port;
    settings.timeout = timeout;
    settings.connectTimeout = timeout;
    return settings;
}

QByteArray read(TcpChannel &channel, int count)
{
    QByteArray buffer(count, '\0');
    const int received = channel.readData(buffer.data(), count);
    return buffer.left(qMax(received, 0));
}

int write(TcpChannel &channel, const QByteArray &bytes)
{
    return channel.writeData(bytes.constData(), sizeOf(bytes));
}

} // namespace

class TcpChannelTest : public testing::Test
{
protected:
    void connectBoth(TcpChannel &channel)
    {
        ASSERT_TRUE(channel.open());
        ASSERT_TRUE(peer.accept());
        ASSERT_TRUE(channel.isConnected());
    }

    TcpPeer peer;
};

TEST_F(TcpChannelTest, AnswersWhatItWasGiven)
{
    ChannelSettings settings = settingsFor(4711, Long);
    settings.station = 300;
    settings.device = QStringLiteral("COM3");
    settings.retries = 7;
    settings.delay = 12;
    TcpChannel channel(settings);
    EXPECT_EQ(channel.stationId(), 300);
    EXPECT_EQ(channel.retryCount(), 7);
    EXPECT_EQ(channel.delayTime(), 12u);
    EXPECT_EQ(channel.deviceSetting()->deviceString, QStringLiteral("COM3"));
    EXPECT_EQ(channel.deviceSetting()->port(-1), 4711);
    EXPECT_FALSE(channel.isConnected());
    channel.setStation(2);
    EXPECT_EQ(channel.stationId(), 2);
}

TEST_F(TcpChannelTest, CarriesBytesBothWays)
{
    TcpChannel channel(settingsFor(peer.port(), Long));
    connectBoth(channel);
    EXPECT_EQ(write(channel, "request"), 7);
    EXPECT_EQ(peer.receive(7), QByteArray("request"));
    ASSERT_TRUE(peer.send("0123456789"));
    EXPECT_EQ(read(channel, 5), QByteArray("01234"));
    EXPECT_EQ(read(channel, 5), QByteArray("56789"));
}

TEST_F(TcpChannelTest, GivesWhatCameWhenTheTimeIsOver)
{
    TcpChannel channel(settingsFor(peer.port(), Short));
    connectBoth(channel);
    ASSERT_TRUE(peer.send("abc"));
    QElapsedTimer clock;
    clock.start();
    EXPECT_EQ(read(channel, 5), QByteArray("abc"));
    EXPECT_GE(clock.elapsed(), Short);
    EXPECT_TRUE(read(channel, 5).isEmpty());
    EXPECT_TRUE(channel.isConnected());
}

TEST_F(TcpChannelTest, HasOneTimeOutForAWholeReply)
{
    SlaveThread slave;
    ASSERT_TRUE(slave.start());
    // Byte after byte comes in time; the reply as a whole does not.
    slave.inject(Fault{Fault::Split, Short / 2});
    TcpChannel channel(settingsFor(slave.port(), Short));
    ASSERT_TRUE(channel.open());
    EXPECT_EQ(write(channel, QByteArray::fromHex("010300000001840A")), 8);
    EXPECT_LT(read(channel, 7).size(), 7);
}

TEST_F(TcpChannelTest, ThrowsAwayWhatArrivedUnaskedBeforeItSends)
{
    TcpChannel channel(settingsFor(peer.port(), Long));
    QByteArray discarded;
    channel.setObserver([&](ChannelEvent event, const QByteArray &bytes) {
        if (event == ChannelEvent::Discarded)
            discarded += bytes;
    });
    connectBoth(channel);

    // One part waits in the channel, the other one still in the kernel.
    ASSERT_TRUE(peer.send("?late "));
    EXPECT_EQ(read(channel, 1), QByteArray("?"));
    ASSERT_TRUE(peer.send("reply"));
    EXPECT_EQ(write(channel, "request"), 7);
    EXPECT_EQ(discarded, QByteArray("late reply"));

    EXPECT_EQ(peer.receive(7), QByteArray("request"));
    ASSERT_TRUE(peer.send("right"));
    EXPECT_EQ(read(channel, 5), QByteArray("right"));
}

TEST_F(TcpChannelTest, GivesUpOnADeviceThatNeverStopsSending)
{
    TcpChannel channel(settingsFor(peer.port(), Long));
    connectBoth(channel);
    std::atomic<bool> isOver{false};
    std::thread flood([&] {
        while (!isOver && peer.flood(QByteArray(65536, 'x'))) {
        }
    });
    // The flood may pause for a moment at any time, so one request need not fail.
    EXPECT_TRUE(waitUntil([&] { return write(channel, "request") < 0; }));
    EXPECT_TRUE(channel.errorString().contains(QLatin1String("without being asked")))
        << channel.errorString().toStdString();
    isOver = true;
    channel.close();
    flood.join();
}

TEST_F(TcpChannelTest, ForgetsEverythingWhenItIsClosed)
{
    TcpChannel channel(settingsFor(peer.port(), Long));
    connectBoth(channel);
    ASSERT_TRUE(peer.send("old"));
    EXPECT_EQ(read(channel, 1), QByteArray("o"));
    channel.close();
    EXPECT_FALSE(channel.isConnected());
    EXPECT_TRUE(peer.seesEnd());

    connectBoth(channel);
    ASSERT_TRUE(peer.send("new"));
    EXPECT_EQ(read(channel, 3), QByteArray("new"));
}

TEST_F(TcpChannelTest, NoticesThatTheOtherSideHasGone)
{
    TcpChannel channel(settingsFor(peer.port(), Long));
    connectBoth(channel);
    peer.close();
    EXPECT_TRUE(waitUntil([&] { return !channel.isConnected(); }));
    EXPECT_LT(write(channel, "request"), 7);
    EXPECT_FALSE(channel.errorString().isEmpty());
    EXPECT_TRUE(read(channel, 5).isEmpty());
    connectBoth(channel);
}

TEST_F(TcpChannelTest, TellsOfARequestBeforeItSendsIt)
{
    TcpChannel channel(settingsFor(peer.port(), Short));
    connectBoth(channel);
    QElapsedTimer sinceTold;
    channel.setObserver([&](ChannelEvent event, const QByteArray &) {
        if (event == ChannelEvent::Sent)
            sinceTold.start();
    });
    // More than the kernel keeps for a peer that takes nothing.
    const QByteArray much(64 << 20, 'x');
    EXPECT_LT(write(channel, much), much.size());
    EXPECT_GE(sinceTold.elapsed(), Short);
}

TEST_F(TcpChannelTest, SaysWhyItCannotConnect)
{
    const quint16 port = peer.port();
    peer.stopListening();
    TcpChannel channel(settingsFor(port, Long));
    EXPECT_FALSE(channel.open());
    EXPECT_EQ(channel.errorString(),
              QStringLiteral("cannot connect to 127.0.0.1:%1: Connection refused").arg(port));
}

TEST_F(TcpChannelTest, HasATimeOutOfItsOwnForConnecting)
{
    // A listener whose queue is full leaves further connections unanswered.
    TcpPeer full(0);
    TcpChannel first(settingsFor(full.port(), Short));
    TcpChannel second(settingsFor(full.port(), Short));
    TcpChannel third(settingsFor(full.port(), Short));
    const bool isFull = !first.open() || !second.open();
    QElapsedTimer clock;
    clock.start();
    EXPECT_FALSE(third.open());
    EXPECT_TRUE(isFull || clock.elapsed() >= Short);
    EXPECT_EQ(third.errorString(),
              QStringLiteral("cannot connect to 127.0.0.1:%1: no answer").arg(full.port()));
}

TEST_F(TcpChannelTest, WaitsForNothingOnceItIsCancelled)
{
    TcpChannel channel(settingsFor(peer.port(), Long));
    std::atomic<bool> isCancelled{false};
    channel.setCancelled([&] { return isCancelled.load(); });
    connectBoth(channel);
    QElapsedTimer clock;
    clock.start();
    std::thread other([&] { isCancelled = true; });
    EXPECT_TRUE(read(channel, 5).isEmpty());
    other.join();
    EXPECT_LT(clock.elapsed(), Long / 2);
    EXPECT_EQ(channel.retryCount(), 0);
}
