#include "tests/channel/channel_test.h"

// When the channel sends, and what it does before that.

namespace
{

bool isProbe(const QByteArray &request)
{
    return request.at(1) == 8;
}

class Send : public ChannelTest
{
protected:
    explicit Send(const ExchangeSettings &given = settings()) : ChannelTest(given)
    {
        side.script = [this](SimulatedLine &, const QByteArray &request) { answer(request); };
    }
    /// The slave of station 5: its values count up, so that an old one is known.
    void answer(const QByteArray &request)
    {
        if (isProbe(request)) {
            if (probeDelay >= 0)
                comes(refusesProbes ? framed("05 88 01") : request, probeDelay);
            return;
        }
        lastReply = readReply(5, 3, bigEndian(++value) + bigEndian(0));
        if (delay >= 0)
            comes(lastReply, delay);
    }
    QByteArray askTwo() { return ask(ReadTwo, RestOfTwo); }
    void loseOne()
    {
        delay = -1;
        EXPECT_TRUE(askTwo().isEmpty());
        delay = 10;
    }
    int probes() const
    {
        int found = 0;
        for (const QByteArray &request : side.requests)
            found += isProbe(request) ? 1 : 0;
        return found;
    }

    int value = 0;
    int delay = 10;
    int probeDelay = 10; // none without an answer
    bool refusesProbes = false;
    QByteArray lastReply;
};

class SendQuiet : public Send
{
protected:
    static ExchangeSettings quietSettings()
    {
        ExchangeSettings given = settings();
        given.settle.mode = SettleMode::Quiet;
        return given;
    }
    SendQuiet() : Send(quietSettings()) {}
};

class SendOff : public Send
{
protected:
    static ExchangeSettings offSettings()
    {
        ExchangeSettings given = settings();
        given.settle.mode = SettleMode::Off;
        return given;
    }
    SendOff() : Send(offSettings()) {}
};

} // namespace

TEST_F(Send, SendsNoProbeWhereAllIsWell)
{
    for (int i = 0; i < 10; ++i)
        EXPECT_EQ(askTwo(), lastReply);
    EXPECT_EQ(0, probes());
}

TEST_F(Send, SettlesWithAProbeAfterSilence)
{
    loseOne();
    const qint64 before = milliseconds();
    EXPECT_EQ(askTwo(), lastReply);
    EXPECT_EQ(before + 20, milliseconds());
    EXPECT_EQ(1, probes());
    EXPECT_EQ(askTwo(), lastReply);
    EXPECT_EQ(1, probes());
    EXPECT_EQ(1, count(ChannelEvent::ProbeSent));
    EXPECT_EQ(1, count(ChannelEvent::ProbeAnswered));
    EXPECT_EQ(1u, channel.settling().counts().byEcho);
}

// The reply of the first request comes on the next connection, in front of the echo.
TEST_F(Send, ThrowsAwayTheLateReply)
{
    delay = 120;
    probeDelay = 30;
    EXPECT_TRUE(askTwo().isEmpty());
    const QByteArray late = lastReply;
    delay = 10;
    EXPECT_EQ(askTwo(), lastReply);
    EXPECT_NE(late, lastReply);
    EXPECT_EQ(late, bytesOf(ChannelEvent::Discarded));
    EXPECT_EQ(2, side.connections);
    EXPECT_EQ(1u, channel.strays().lateFrames);
}

TEST_F(SendOff, TakesTheLateReplyForTheAnswer)
{
    delay = 120;
    EXPECT_TRUE(askTwo().isEmpty());
    const QByteArray late = lastReply;
    delay = 30;
    EXPECT_EQ(late, askTwo());
    EXPECT_EQ(0, probes());
}

TEST_F(Send, WithholdsWhatItCannotSettleInTime)
{
    loseOne();
    probeDelay = -1;
    const qint64 before = milliseconds();
    EXPECT_TRUE(askTwo().isEmpty());
    EXPECT_EQ(before + 100, milliseconds());
    EXPECT_EQ(1, value) << "the request was not sent";
    EXPECT_EQ(ReadTwo, bytesOf(ChannelEvent::Withheld));
    EXPECT_EQ(1u, channel.settling().counts().withheld);
    probeDelay = 10;
    EXPECT_EQ(askTwo(), lastReply);
}

TEST_F(Send, TakesAnEchoThatComesWhileOthersAreAsked)
{
    loseOne();
    probeDelay = 150;
    EXPECT_TRUE(askTwo().isEmpty());
    const QByteArray readOther = framed("06 03 00 10 00 02");
    side.script = [this](SimulatedLine &, const QByteArray &) { comes(framed("06 03 04 01 02 03 04"), 90); };
    EXPECT_EQ(framed("06 03 04 01 02 03 04"), ask(readOther, RestOfTwo));
    EXPECT_TRUE(channel.settling().isSettled(5, time.now()));
}

TEST_F(Send, SettlesAStationThatRefusesByQuiet)
{
    refusesProbes = true;
    loseOne();
    EXPECT_TRUE(askTwo().isEmpty());
    EXPECT_TRUE(askTwo().isEmpty());
    EXPECT_EQ(askTwo(), lastReply);
    EXPECT_EQ(100 + 300 + 10, milliseconds()) << "three time-outs after the first is over";
    EXPECT_EQ(1, probes());
    EXPECT_EQ(1u, channel.settling().counts().byQuiet);
    EXPECT_EQ(300 * Ms, channel.settling().counts().longestTime);
}

TEST_F(Send, SettlesAStationThatIgnoresByQuiet)
{
    probeDelay = -1;
    loseOne();
    EXPECT_TRUE(askTwo().isEmpty());
    EXPECT_TRUE(askTwo().isEmpty());
    EXPECT_EQ(askTwo(), lastReply);
    EXPECT_EQ(100 + 300 + 10, milliseconds());
    EXPECT_EQ(3, probes());
}

TEST_F(SendQuiet, BeginsAgainWithEveryLateReply)
{
    delay = 250;
    EXPECT_TRUE(askTwo().isEmpty());
    delay = 10;
    while (askTwo().isEmpty()) {
    }
    EXPECT_EQ(250 + 300 + 10, milliseconds());
    EXPECT_EQ(2, value);
}

TEST_F(Send, SettlesAfterEveryExchangeThatEndsWithoutAWholeReply)
{
    const QByteArray good = readReply(5, 3, bigEndian(1) + bigEndian(2));
    QByteArray damaged = good;
    damaged[4] = 9;
    const QList<QByteArray> replies = QList<QByteArray>()
                                      << good.left(3) << good.left(7) << damaged << framed("06 03 02 00 01")
                                      << framed("05 03 02 00 01") << framed("05 04 02 00 01");
    for (const QByteArray &reply : replies) {
        side.script = [=](SimulatedLine &, const QByteArray &request) {
            comes(isProbe(request) ? request : reply, 10);
        };
        ask(ReadTwo, RestOfTwo);
        EXPECT_FALSE(channel.settling().isSettled(5, time.now())) << toHex(reply);
        side.script = [=](SimulatedLine &, const QByteArray &request) {
            comes(isProbe(request) ? request : good, 10);
        };
        EXPECT_EQ(good, askTwo()) << toHex(reply);
    }
}

TEST_F(Send, SettlesAfterTheConnectionEnded)
{
    side.script = [](SimulatedLine &connection, const QByteArray &) {
        connection.end(LineState::ClosedByOther);
    };
    EXPECT_TRUE(askTwo().isEmpty());
    side.script = [this](SimulatedLine &, const QByteArray &request) { answer(request); };
    EXPECT_EQ(askTwo(), lastReply);
    EXPECT_EQ(1, probes());
}

TEST_F(Send, SettlesNothingForBroadcasts)
{
    const QByteArray broadcast = framed("00 06 00 10 00 01");
    side.script = nullptr;
    ASSERT_TRUE(channel.open());
    for (int i = 0; i < 2; ++i) {
        side.requests.clear();
        EXPECT_TRUE(ask(broadcast, 3).isEmpty());
        EXPECT_EQ(QList<QByteArray>() << broadcast, side.requests);
    }
}

TEST_F(Send, DoesNotSettleWhatWasNeverSent)
{
    ASSERT_TRUE(channel.open());
    side.current->end(LineState::ClosedByOther);
    EXPECT_EQ(-1, send(ReadTwo));
    channel.close();
    EXPECT_EQ(askTwo(), lastReply);
    EXPECT_EQ(0, probes());
}
