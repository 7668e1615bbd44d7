#include "tests/channel/channel_test.h"

// What the channel hands over, and when.

namespace
{

class Receive : public ChannelTest
{
protected:
    void SetUp() override { ASSERT_TRUE(channel.open()); }
    QByteArray askTwo() { return ask(ReadTwo, RestOfTwo); }
    /// What comes at the given milliseconds after the request was sent.
    void answerWith(const QList<QPair<int, QByteArray>> &pieces)
    {
        side.script = [=](SimulatedLine &, const QByteArray &) {
            for (const auto &piece : pieces)
                comes(piece.second, piece.first);
        };
    }
};

const QByteArray Noise = fromHex("FF FE 00 05");

} // namespace

TEST_F(Receive, HandsOverAWholeReplyAtOnce)
{
    answerWith({{10, ReplyTwo}});
    EXPECT_EQ(ReplyTwo, askTwo());
    EXPECT_EQ(10, milliseconds());
    EXPECT_EQ(QList<QByteArray>() << ReadTwo, side.requests);
}

TEST_F(Receive, WaitsForTheWholeReplyBeforeItsBeginning)
{
    answerWith({{10, ReplyTwo.left(5)}, {30, ReplyTwo.mid(5)}});
    EXPECT_EQ(ReplyTwo, askTwo());
    EXPECT_EQ(30, milliseconds());
}

TEST_F(Receive, SkipsWhatIsInFrontOfTheReply)
{
    const QByteArray other = framed("06 03 02 00 01");
    answerWith({{5, Noise}, {10, ReadTwo}, {20, other + ReplyTwo.left(3)}, {30, ReplyTwo.mid(3)}});
    EXPECT_EQ(ReplyTwo, askTwo());
    EXPECT_EQ(30, milliseconds());
    EXPECT_EQ(Noise, bytesOf(ChannelEvent::SkippedNoise));
    EXPECT_EQ(ReadTwo, bytesOf(ChannelEvent::SkippedCopy));
    EXPECT_EQ(other, bytesOf(ChannelEvent::SkippedFrame));
    EXPECT_EQ(ReplyTwo, bytesOf(ChannelEvent::Received));
    EXPECT_EQ(4u, channel.strays().noiseBytes);
    EXPECT_EQ(1u, channel.strays().otherFrames);
    EXPECT_EQ(6, channel.strays().lastOtherStation);
    EXPECT_EQ(1u, channel.strays().requestCopies);
    EXPECT_TRUE(channel.settling().isSettled(5, time.now()));
}

TEST_F(Receive, HandsOverADamagedReplyAtOnce)
{
    QByteArray damaged = ReplyTwo;
    damaged[4] = 0;
    answerWith({{10, Noise + damaged}});
    EXPECT_EQ(damaged, askTwo());
    EXPECT_EQ(10, milliseconds());
    EXPECT_FALSE(channel.settling().isSettled(5, time.now()));
}

TEST_F(Receive, HandsOverAnExceptionAtOnce)
{
    answerWith({{10, framed("05 83 02")}});
    EXPECT_EQ(framed("05 83 02"), askTwo());
    EXPECT_EQ(10, milliseconds());
    EXPECT_TRUE(channel.settling().isSettled(5, time.now()));
}

TEST_F(Receive, HandsOverWhatCameWhenTheTimeIsOver)
{
    const QByteArray other = framed("06 03 04 11 22 33 44");
    answerWith({{10, other}});
    EXPECT_EQ(other.left(5), askTwo());
    EXPECT_EQ(100, milliseconds());
    EXPECT_EQ(0, count(ChannelEvent::SkippedFrame));
    EXPECT_TRUE(channel.isConnected());
}

TEST_F(Receive, HandsOverNothingWhereNothingCame)
{
    EXPECT_TRUE(askTwo().isEmpty());
    EXPECT_EQ(100, milliseconds());
}

// The rest has the time from the last byte before it, as if both were waited for one after the other.
TEST_F(Receive, NamesACutReplyAfterTheTimeOfBothParts)
{
    answerWith({{10, Noise}, {40, ReplyTwo.left(7)}});
    EXPECT_EQ(ReplyTwo.left(7), askTwo());
    EXPECT_EQ(140, milliseconds());
    EXPECT_EQ(Noise, bytesOf(ChannelEvent::SkippedNoise));
    EXPECT_FALSE(channel.settling().isSettled(5, time.now()));
}

TEST_F(Receive, TakesARestThatComesInItsOwnTime)
{
    answerWith({{90, ReplyTwo.left(5)}, {170, ReplyTwo.mid(5)}});
    EXPECT_EQ(ReplyTwo, askTwo());
    EXPECT_EQ(170, milliseconds());
}

TEST_F(Receive, GivesNoFewerBytesThanAskedForBeforeTheTimeIsOver)
{
    answerWith({{10, framed("05 03 02 11 22")}});
    EXPECT_EQ(framed("05 03 02 11 22"), askTwo());
    EXPECT_EQ(110, milliseconds());
}

TEST_F(Receive, NeverHandsOverWhatCouldPassForAReply)
{
    const QByteArray write = framed("05 10 00 10 00 01 02 12 34");
    answerWith({{10, framed("05 10 00 20 00 01")}});
    EXPECT_TRUE(ask(write, 3).isEmpty()) << "the confirmation of another write";

    const QByteArray readBits = framed("05 01 00 10 00 14");
    channel.settling().setEchoing(true);
    time.runUntil(time.now() + 300 * Ms);
    answerWith({{10, readBits}});
    EXPECT_TRUE(ask(readBits, 3).isEmpty()) << "an echo as long as the reply";
    EXPECT_EQ(readBits, bytesOf(ChannelEvent::SkippedCopy));
}

TEST_F(Receive, LearnsOfOtherStationsFromWhatItHandsOver)
{
    const int other = 6;
    ASSERT_TRUE(channel.open());
    channel.settling().noteReply(other);
    channel.settling().noteLoss(other, 0);
    const QByteArray probe = channel.settling().probe(other, 0);
    send(ReadTwo);
    comes(probe, 10);
    EXPECT_EQ(probe.left(5), read(5)) << "it is what came in place of the reply";
    EXPECT_TRUE(channel.settling().isSettled(other, time.now()));
}

TEST_F(Receive, EndsTheWaitWithTheConnection)
{
    side.script = [this](SimulatedLine &connection, const QByteArray &) {
        time.after(20 * Ms, [&connection] {
            connection.deliver(ReplyTwo.left(2));
            connection.end(LineState::ResetByOther);
        });
    };
    EXPECT_EQ(ReplyTwo.left(2), askTwo());
    EXPECT_EQ(20, milliseconds());
    EXPECT_EQ(1, count(ChannelEvent::ResetByOther));
    EXPECT_FALSE(channel.settling().isSettled(5, time.now()));
}

TEST_F(Receive, PassesOtherProtocolsThroughAsTheyCome)
{
    const QByteArray request = ":0105\r";
    answerWith({{10, framed("05 03 02 11 22") + ":0106\r"}});
    ASSERT_EQ(request.size(), send(request));
    EXPECT_EQ(framed("05 03 02 11 22"), read(7));
    EXPECT_EQ(QByteArray(":0106\r"), read(6));
    EXPECT_EQ(10, milliseconds());
    EXPECT_TRUE(read(1).isEmpty());
    EXPECT_EQ(110, milliseconds()) << "each call has its own time-out";
    ASSERT_EQ(request.size(), send(request));
    EXPECT_EQ(2, side.requests.size()) << "nothing to settle";
}

TEST_F(Receive, ThrowsAwayWhatCameUnasked)
{
    comes(Noise + ReplyTwo, 10);
    time.runUntil(20 * Ms);
    answerWith({{10, framed("05 03 04 55 66 77 88")}});
    EXPECT_EQ(framed("05 03 04 55 66 77 88"), askTwo());
    EXPECT_EQ(Noise + ReplyTwo, bytesOf(ChannelEvent::Discarded));
}

TEST_F(Receive, NoticesTheEndOfTheConnectionOnce)
{
    side.current->end(LineState::ClosedByOther);
    EXPECT_FALSE(channel.isConnected());
    EXPECT_FALSE(channel.isConnected());
    channel.close();
    EXPECT_EQ(1, count(ChannelEvent::ClosedByOther));
}

// Such connections are refused; to open them again at once would be no use and hurt the gateway.
TEST_F(Receive, OpensInGrowingDistancesWhileNothingAnswers)
{
    channel.close();
    side.isListening = false;
    QList<qint64> distances;
    for (int i = 0; i < 8; ++i) {
        const qint64 before = milliseconds();
        EXPECT_FALSE(channel.open());
        distances.append(milliseconds() - before);
    }
    EXPECT_EQ(QList<qint64>() << 0 << 50 << 100 << 200 << 400 << 800 << 1000 << 1000, distances);

    side.isListening = true;
    EXPECT_TRUE(channel.open());
    side.current->end(LineState::ClosedByOther);
    EXPECT_FALSE(channel.isConnected());
    EXPECT_EQ(1u, channel.strays().deafEnds);
    EXPECT_EQ(milliseconds() + 1000, channel.opensAt() / Ms);

    EXPECT_TRUE(channel.open());
    answerWith({{10, ReplyTwo}});
    EXPECT_EQ(ReplyTwo, askTwo());
    side.current->end(LineState::ClosedByOther);
    const qint64 before = milliseconds();
    EXPECT_TRUE(channel.open());
    EXPECT_EQ(before, milliseconds()) << "this one was in order";
}
