#include "desk/link/line_counts.h"

#include "desk/link/failure.h"
#include "desk/wire/rtu_frame.h"
#include "tests/peers/text_printing.h"

#include <gtest/gtest.h>

namespace
{

QByteArray frame(const char *hex)
{
    return withCrc(QByteArray::fromHex(hex));
}

const QByteArray readOne = frame("010300000001");
const QByteArray goodReply = frame("0103020007");

Exchange exchangeOf(const QByteArray &request, const QByteArray &reply)
{
    return {request, reply};
}

QByteArray damaged(QByteArray bytes)
{
    bytes[bytes.size() - 1] = static_cast<char>(bytes.at(bytes.size() - 1) ^ 1);
    return bytes;
}

// A command of station 1 that lasts from 1000 to 5000.
class Command
{
public:
    Command() { record.begin(1, 1000); }
    Command &opens() { return with(ChannelEvent::Opened); }
    Command &sends(const QByteArray &bytes = readOne) { return with(ChannelEvent::Sent, bytes); }
    Command &gets(const QByteArray &bytes) { return with(ChannelEvent::Received, bytes); }
    Command &with(ChannelEvent event, const QByteArray &bytes = {})
    {
        record.add(event, bytes, now += 100);
        return *this;
    }
    CommandRecord ended(bool isGivenUp = false)
    {
        record.end(5000, isGivenUp);
        return record;
    }

private:
    CommandRecord record;
    qint64 now = 1000;
};

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
    EXPECT_TRUE(isEcho(exchangeOf(readOne, readOne.left(7))));
    EXPECT_TRUE(isEcho(exchangeOf(readOne, readOne + goodReply)));
    EXPECT_FALSE(isEcho(exchangeOf(readOne, readOne.left(4))));
    EXPECT_FALSE(isEcho(exchangeOf(readOne, goodReply)));
    const QByteArray writeMany = frame("01100000000102000A");
    EXPECT_TRUE(isEcho(exchangeOf(writeMany, writeMany.left(8))));
    EXPECT_FALSE(isEcho(exchangeOf(writeMany, frame("011000000001"))));
    const QByteArray writeOne = frame("010600000001");
    EXPECT_FALSE(isEcho(exchangeOf(writeOne, writeOne))) << "its confirmation";
}

TEST(CommandRecord, CountsAnAttemptWheneverTheFirstRequestIsSent)
{
    const QByteArray next = frame("010600010002");
    const QByteArray first = frame("010600000001");
    EXPECT_EQ(Command().opens().sends().gets(goodReply).ended().attempts(), 1);
    EXPECT_EQ(Command().sends().with(ChannelEvent::Closed).opens().sends().ended().attempts(), 2);
    EXPECT_EQ(Command().sends(first).gets(first).sends(next).gets(next).ended().attempts(), 1);
    EXPECT_EQ(Command()
                  .sends(first)
                  .gets(first)
                  .sends(next)
                  .sends(first)
                  .gets(first)
                  .sends(next)
                  .ended()
                  .attempts(),
              2);
    EXPECT_EQ(Command().with(ChannelEvent::OpenFailed).ended().attempts(), 1);
    EXPECT_EQ(Command().ended().attempts(), 0) << "the driver refused it";
}

TEST(CommandRecord, TellsTheReplysTimeFromTheCommands)
{
    const CommandRecord record =
        Command().sends().with(ChannelEvent::Closed).opens().sends().gets(goodReply).ended();
    EXPECT_EQ(record.latency(), 100);
    EXPECT_EQ(record.duration(), 4000);
}

TEST(LineCounts, CountWhatBecameOfEveryAttempt)
{
    const CommandRecord record = Command()
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
    EXPECT_EQ(countsOf(Command().sends().ended(true)).timeouts, 0u) << "nobody waited any longer";
    EXPECT_EQ(countsOf(Command().sends(frame("000600000001")).ended()).timeouts, 0u) << "a broadcast";
    EXPECT_EQ(countsOf(Command().ended()).requests, 0u) << "never came to the line";
}

TEST(LinkCounts, AreKeptForEachStationAndInTotal)
{
    LinkCounts counts;
    counts.add(Command().opens().sends().gets(goodReply).ended());
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

TEST(Failure, SaysWhatTheTextAloneDoesNot)
{
    const auto kindOf = [](const char *text, const CommandRecord &record) {
        return failureOf(QLatin1String(text), record).kind;
    };
    EXPECT_EQ(kindOf("PLC no response (read", Command().sends().ended()), FailureKind::NoReply);
    const CommandRecord closed = Command().sends().with(ChannelEvent::ClosedByOther).ended();
    EXPECT_EQ(kindOf("PLC no response (read", closed), FailureKind::ConnectionEnded);
    EXPECT_EQ(kindOf("exception code:0x02", closed), FailureKind::Exception);
    EXPECT_EQ(kindOf("CRC error (read", Command().sends().gets(readOne.left(7)).ended()), FailureKind::Echo);
    EXPECT_EQ(kindOf("CRC error (read", Command().sends().gets(damaged(goodReply)).ended()),
              FailureKind::Damaged);
    EXPECT_EQ(kindOf("PLC no response", Command().with(ChannelEvent::OpenFailed).ended()),
              FailureKind::CannotConnect);
}
