#include "desk/link/line_counts.h"
#include "tests/peers/recorded_command.h"

#include <gtest/gtest.h>

namespace
{

Exchange exchangeOf(const QByteArray &request, const QByteArray &reply)
{
    return {request, reply};
}

LineCounts countsOf(const CommandRecord &record)
{
    LineCounts counts;
    counts.add(record, true);
    return counts;
}

} // namespace

TEST(Outcome, FollowsTheDriversRules)
{
    EXPECT_EQ(outcomeOf(exchangeOf(readOne, goodReply)), Outcome::Good);
    EXPECT_EQ(outcomeOf(exchangeOf(readOne, {})), Outcome::Silence);
    EXPECT_EQ(outcomeOf(exchangeOf(readOne, goodReply.left(4))), Outcome::Cut);
    EXPECT_EQ(outcomeOf(exchangeOf(readOne, goodReply.left(6))), Outcome::Cut);
    EXPECT_EQ(outcomeOf(exchangeOf(readOne, damaged(goodReply))), Outcome::CrcError);
    EXPECT_EQ(outcomeOf(exchangeOf(readOne, frame("0203020007").left(5))), Outcome::OtherStation);
    EXPECT_EQ(outcomeOf(exchangeOf(readOne, frame("0104020007").left(5))), Outcome::OtherFunction);
    EXPECT_EQ(outcomeOf(exchangeOf(readOne, frame("018302"))), Outcome::Exception);
    EXPECT_EQ(outcomeOf(exchangeOf(readOne, damaged(frame("018302")))), Outcome::CrcError);
    EXPECT_EQ(exceptionIn(exchangeOf(readOne, frame("018302"))), 2);
    EXPECT_EQ(exceptionIn(exchangeOf(readOne, goodReply)), 0);
}

TEST(Outcome, KnowsWhyAReplyIsNotWhole)
{
    Exchange exchange = exchangeOf(readOne, goodReply.left(6));
    exchange.isEndedByOther = true;
    EXPECT_EQ(outcomeOf(exchange), Outcome::ConnectionEnded);
    exchange.isGivenUp = true;
    EXPECT_EQ(outcomeOf(exchange), Outcome::GivenUp);
    exchange.reply = goodReply;
    EXPECT_EQ(outcomeOf(exchange), Outcome::Good) << "it came before the end";
}

TEST(Echo, IsTheRequestAsFarAsItWasTaken)
{
    EXPECT_TRUE(isEcho(readOne.left(7), readOne));
    EXPECT_TRUE(isEcho(readOne + goodReply, readOne));
    EXPECT_FALSE(isEcho(readOne.left(4), readOne));
    EXPECT_FALSE(isEcho(goodReply, readOne));
    const QByteArray writeMany = frame("01100000000102000A");
    EXPECT_TRUE(isEcho(writeMany.left(8), writeMany));
    EXPECT_FALSE(isEcho(frame("011000000001"), writeMany));
    const QByteArray writeOne = frame("010600000001");
    EXPECT_FALSE(isEcho(writeOne, writeOne)) << "its confirmation";
}

TEST(CommandRecord, CountsAnAttemptWheneverTheFirstRequestIsSent)
{
    const QByteArray next = frame("010600010002");
    const QByteArray first = frame("010600000001");
    EXPECT_EQ(RecordedCommand().opens().sends().gets(goodReply).ended().attempts(), 1);
    EXPECT_EQ(RecordedCommand().sends().with(ChannelEvent::Closed).opens().sends().ended().attempts(), 2);
    EXPECT_EQ(RecordedCommand().sends(first).gets(first).sends(next).gets(next).ended().attempts(), 1);
    EXPECT_EQ(RecordedCommand()
                  .sends(first)
                  .gets(first)
                  .sends(next)
                  .sends(first)
                  .gets(first)
                  .sends(next)
                  .ended()
                  .attempts(),
              2);
    EXPECT_EQ(RecordedCommand().with(ChannelEvent::OpenFailed).ended().attempts(), 1);
    EXPECT_EQ(RecordedCommand().ended().attempts(), 0) << "the driver refused it";
}

TEST(CommandRecord, TellsTheReplysTimeFromTheCommands)
{
    const CommandRecord record =
        RecordedCommand().sends().with(ChannelEvent::Closed).opens().sends().gets(goodReply).ended();
    EXPECT_EQ(record.latency(), 100);
    EXPECT_EQ(record.duration(), 4000);
}

TEST(LineCounts, CountWhatBecameOfEveryAttempt)
{
    const CommandRecord record = RecordedCommand()
                                     .opens()
                                     .sends()
                                     .with(ChannelEvent::Closed)
                                     .opens()
                                     .sends()
                                     .gets(damaged(goodReply))
                                     .sends()
                                     .gets(frame("0203020007").left(5))
                                     .with(ChannelEvent::Discarded, "rest")
                                     .sends()
                                     .gets(goodReply.left(3))
                                     .with(ChannelEvent::Closed)
                                     .opens()
                                     .sends()
                                     .with(ChannelEvent::ResetByOther)
                                     .with(ChannelEvent::Closed)
                                     .opens()
                                     .sends()
                                     .gets(frame("018306"))
                                     .ended();
    const LineCounts counts = countsOf(record);
    EXPECT_EQ(counts.requests, 1u);
    EXPECT_EQ(counts.attempts, 6u);
    EXPECT_EQ(counts.retries(), 5u);
    EXPECT_EQ(counts.timeouts, 1u);
    EXPECT_EQ(counts.crcErrors, 1u);
    EXPECT_EQ(counts.wrongReplies, 1u);
    EXPECT_EQ(counts.cutReplies, 1u);
    EXPECT_EQ(counts.exceptions, (std::map<int, quint64>{{6, 1}}));
    EXPECT_EQ(counts.endsByOther, 1u);
    EXPECT_EQ(counts.discardedBytes, 4u);
    EXPECT_EQ(counts.reconnects, 4u);
}

TEST(LineCounts, DoNotCountWhatIsNoFault)
{
    EXPECT_EQ(countsOf(RecordedCommand().sends().ended(true)).timeouts, 0u) << "nobody waited any longer";
    EXPECT_EQ(countsOf(RecordedCommand().sends(frame("000600000001")).ended()).timeouts, 0u) << "a broadcast";
    EXPECT_EQ(countsOf(RecordedCommand().ended()).requests, 0u) << "never came to the line";
}

TEST(LinkCounts, AreKeptForEachStationAndInTotal)
{
    LinkCounts counts;
    counts.add(RecordedCommand().opens().sends().gets(goodReply).ended());
    CommandRecord other;
    other.begin(5, 0);
    other.add(ChannelEvent::ClosedByOther, {}, 1);
    other.add(ChannelEvent::Opened, {}, 1);
    other.add(ChannelEvent::Sent, frame("050300000001"), 1);
    other.end(2, false);
    counts.add(other);
    EXPECT_EQ(counts.total().requests, 2u);
    EXPECT_EQ(counts.total().reconnects, 1u) << "the first connection is none";
    EXPECT_EQ(counts.stations().at(1).reconnects, 0u);
    EXPECT_EQ(counts.stations().at(5).reconnects, 1u);
    EXPECT_EQ(counts.stations().at(5).endsByOther, 1u);
    EXPECT_EQ(counts.stations().at(5).timeouts, 1u);
    EXPECT_EQ(counts.stations().at(1).timeouts, 0u);
}

TEST(CommandRecord, CountsWhatWasSkippedAndWhatWasNotSent)
{
    const CommandRecord record = RecordedCommand()
                                     .opens()
                                     .sends()
                                     .with(ChannelEvent::Closed)
                                     .opens()
                                     .with(ChannelEvent::ProbeSent, "probe")
                                     .with(ChannelEvent::Withheld, readOne)
                                     .ended();
    EXPECT_EQ(record.attempts(), 2);
    EXPECT_EQ(record.withheld(), 1);
    EXPECT_TRUE(record.isWithheld());
    EXPECT_EQ(record.exchanges().size(), 1u) << "a probe is none of the driver's";

    const CommandRecord skipped = RecordedCommand()
                                      .with(ChannelEvent::Withheld, readOne)
                                      .sends()
                                      .with(ChannelEvent::SkippedNoise, "12")
                                      .with(ChannelEvent::SkippedFrame, "345")
                                      .with(ChannelEvent::SkippedCopy, readOne)
                                      .gets(goodReply)
                                      .ended();
    EXPECT_EQ(skipped.skippedBytes(), 13);
    EXPECT_TRUE(skipped.isEchoed());
    EXPECT_FALSE(skipped.isWithheld());
    EXPECT_EQ(skipped.attempts(), 2);

    LinkCounts counts;
    counts.add(record);
    counts.add(skipped);
    EXPECT_EQ(counts.total().withheld, 2u);
    EXPECT_EQ(counts.total().skippedBytes, 13u);
}
