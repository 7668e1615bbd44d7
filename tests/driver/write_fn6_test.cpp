#include "tests/support/driver_test.h"

#include <limits>

// Registers one by one with function 6.

namespace
{

class WriteFn6 : public DriverTest
{
protected:
    WriteFn6() { channel.setResponder(echoOf); }
};

} // namespace

TEST_F(WriteFn6, OneRequestForEachRegister)
{
    EXPECT_TRUE(write(WordItem, "FN6HR101", 3, fromHex("11 22 33 44 55 66")));
    EXPECT_EQ(channel.requests(), frames({"01 06 00 64 22 11", "01 06 00 65 44 33", "01 06 00 66 66 55"}));
    EXPECT_EQ(channel.readLengths(), (std::vector<int>{5, 3, 5, 3, 5, 3}));
    EXPECT_EQ(error(), NoError);
}

TEST_F(WriteFn6, PausesBeforeAllButTheFirst)
{
    channel.delay = 30;
    EXPECT_TRUE(write(WordItem, "FN6HR1", 3, fromHex("11 22 33 44 55 66")));
    EXPECT_EQ(pauses.sleeps(), std::vector<qint64>(3, 30000000));
    const std::string exchange = " read(5) read(3)";
    EXPECT_EQ(channel.trace(), "delayTime isConnected write(" + toHex(framed("01 06 00 00 22 11")) + ")" +
                                   exchange + " delayTime write(" + toHex(framed("01 06 00 01 44 33")) + ")" +
                                   exchange + " delayTime write(" + toHex(framed("01 06 00 02 66 55")) + ")" +
                                   exchange);
}

TEST_F(WriteFn6, DoubleWordsAndBytesPauseAsWell)
{
    channel.delay = 30;
    EXPECT_TRUE(write(DoubleWordItem, "FN6HR1", 2, patternBytes(8)));
    EXPECT_EQ(pauses.sleeps().size(), 4u);
    EXPECT_TRUE(write(ByteItem, "FN6HR1", 5, patternBytes(5)));
    EXPECT_EQ(pauses.sleeps().size(), 7u);
}

TEST_F(WriteFn6, DoubleWordsInBothWordOrders)
{
    EXPECT_TRUE(write(DoubleWordItem, "FN6HR5", 1, fromHex("44 33 22 11")));
    EXPECT_EQ(channel.requests(), frames({"01 06 00 04 33 44", "01 06 00 05 11 22"}));
    channel.forgetCalls();
    EXPECT_TRUE(write(DoubleWordItem, "fn6hrsw5", 1, fromHex("44 33 22 11")));
    EXPECT_EQ(channel.requests(), frames({"01 06 00 04 11 22", "01 06 00 05 33 44"}));
}

TEST_F(WriteFn6, OddByteClearsTheOtherHalfOfItsRegister)
{
    EXPECT_TRUE(write(ByteItem, "FN6HR11", 5, fromHex("11 22 33 44 55")));
    EXPECT_EQ(channel.requests(), frames({"01 06 00 0A 22 11", "01 06 00 0B 44 33", "01 06 00 0C 00 55"}));
}

TEST_F(WriteFn6, FirstFailureEndsTheAttempt)
{
    channel.addReply(framed("01 06 00 00 00 00"));
    channel.addReply(fromHex("01 06 00 01 00 00 00 00"));
    EXPECT_FALSE(write(WordItem, "FN6HR1", 3, patternBytes(6)));
    EXPECT_EQ(error(), "CRC error (write 3 word to 1-FN6HR1)");
    EXPECT_EQ(channel.requests().size(), 2);
    EXPECT_TRUE(channel.connected);
}

TEST_F(WriteFn6, FailureOfTheFirstRegister)
{
    channel.addReply(framed("01 86 04"));
    EXPECT_FALSE(write(WordItem, "FN6HR1", 3, patternBytes(6)));
    EXPECT_EQ(error(), "exception code:0x04 (write 3 word to 1-FN6HR1)");
    EXPECT_EQ(channel.requests().size(), 1);
}

TEST_F(WriteFn6, RetryStartsWithTheFirstRegister)
{
    channel.retries = 1;
    channel.addReply(framed("01 06 00 00 00 00"));
    channel.addReply(QByteArray());
    EXPECT_TRUE(write(WordItem, "FN6HR1", 2, fromHex("11 22 33 44")));
    EXPECT_EQ(channel.requests(),
              frames({"01 06 00 00 22 11", "01 06 00 01 44 33", "01 06 00 00 22 11", "01 06 00 01 44 33"}));
}

TEST_F(WriteFn6, StationIsAskedAnewForEachRegister)
{
    channel.setResponder([this](const QByteArray &request) {
        channel.station = 9;
        return framed(QByteArray(1, '\x09') + request.mid(1, 5));
    });
    EXPECT_TRUE(write(WordItem, "FN6HR1", 2, fromHex("11 22 33 44")));
    EXPECT_EQ(channel.requests(), frames({"01 06 00 00 22 11", "09 06 00 01 44 33"}));
}

TEST_F(WriteFn6, EchoedValueIsNotCompared)
{
    channel.addReply(framed("01 06 FF FF FF FF"));
    EXPECT_TRUE(write(WordItem, "FN6HR1", 1, fromHex("34 12")));
}

TEST_F(WriteFn6, LimitIsThatOfOneLargeRequest)
{
    EXPECT_TRUE(write(WordItem, "FN6HR65414", 123, patternBytes(246)));
    EXPECT_EQ(channel.requests().size(), 123);
    EXPECT_EQ(channel.requests().last().left(4), fromHex("01 06 FF FF"));
    EXPECT_TRUE(write(DoubleWordItem, "FN6HR1", 61, patternBytes(244)));
    EXPECT_TRUE(write(BlockItem, "FN6HR1", 245, patternBytes(245)));
    EXPECT_EQ(channel.requests().size(), 123 + 122 + 123);
}

TEST_F(WriteFn6, RangesThatAreRefused)
{
    const struct {
        int dataType;
        const char *address;
        int count;
        const char *text;
    } ranges[] = {
        {WordItem, "FN6HR1", 124, "can't write any word to HR1"},
        {WordItem, "FN6HR65536", 2, "can't write any word to HR65536"},
        {WordItem, "fn6hr", 2, "can't write any word to HR65536"},
        {WordItem, "FN6HR1", -1, "can't write any word to HR1"},
        {WordItem, "FN6HR1", std::numeric_limits<int>::max(), "can't write any word to HR1"},
        {DoubleWordItem, "FN6HR1", 62, "can't write any double word to HR1"},
        {DoubleWordItem, "FN6HRSW65536", 1, "can't write any double word to HR65536"},
        {DoubleWordItem, "FN6HR1", std::numeric_limits<int>::min(), "can't write any double word to HR1"},
        {DoubleWordItem, "FN6HR1", 0x40000001, "can't write any double word to HR1"},
        {ByteItem, "FN6HR1", 247, "can't write any byte to HR1"},
        {ByteItem, "FN6HR65536", 3, "can't write any byte to HR65536"},
        {ByteItem, "FN6HR1", -5, "can't write any byte to HR1"}};
    for (const auto &range : ranges) {
        EXPECT_FALSE(write(range.dataType, range.address, range.count, QByteArray(300, 'x')));
        EXPECT_EQ(error().substr(0, error().find(" (write ")), range.text);
    }
    EXPECT_TRUE(isSilent());
    EXPECT_EQ(channel.count(ScriptedChannel::Close), 0);
}

TEST_F(WriteFn6, CountOfZeroSendsARequestWithoutValue)
{
    for (const int kind : {ByteItem, WordItem, DoubleWordItem}) {
        channel.forgetCalls();
        channel.addReply(framed("01 06 00 06 00 00"));
        EXPECT_TRUE(write(kind, "FN6HR7", 0, fromHex("11 22")));
        EXPECT_EQ(channel.requests(), frames({"01 06 00 06"}));
    }
}
