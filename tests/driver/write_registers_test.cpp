#include "tests/support/driver_test.h"

#include <limits>

// Registers with function 16.

namespace
{

class WriteRegisters : public DriverTest
{
protected:
    WriteRegisters() { channel.setResponder(echoOf); }
};

struct LimitCase {
    int dataType;
    const char *address;
    int count;
    const char *text;
};

void PrintTo(const LimitCase &limit, std::ostream *out)
{
    *out << "kind " << limit.dataType << ", " << limit.count << " at " << limit.address;
}

const int MaxInt = std::numeric_limits<int>::max();
const int MinInt = std::numeric_limits<int>::min();

const LimitCase refused[] = {
    {WordItem, "HR1", 124, "can't write any word to HR1"},
    {WordItem, "hr65415", 123, "can't write any word to HR65415"},
    {WordItem, "HR65536", 2, "can't write any word to HR65536"},
    {WordItem, "HR", 2, "can't write any word to HR65536"},
    {WordItem, "HR1", -1, "can't write any word to HR1"},
    {WordItem, "HR1", MinInt, "can't write any word to HR1"},
    {WordItem, "HR1", MaxInt, "can't write any word to HR1"},
    {WordItem, "HR1", 0x20000000, "can't write any word to HR1"},
    {WordItem, "HR1", 0x40000001, "can't write any word to HR1"},
    {DoubleWordItem, "HR1", 62, "can't write any double word to HR1"},
    {DoubleWordItem, "HR65536", 1, "can't write any double word to HR65536"},
    {DoubleWordItem, "HRSW65535", 2, "can't write any double word to HR65535"},
    {DoubleWordItem, "HR1", -1, "can't write any double word to HR1"},
    {DoubleWordItem, "HR1", MinInt, "can't write any double word to HR1"},
    {DoubleWordItem, "HR1", MaxInt, "can't write any double word to HR1"},
    {DoubleWordItem, "HR1", 0x20000000, "can't write any double word to HR1"},
    {DoubleWordItem, "HR1", 0x40000001, "can't write any double word to HR1"},
    {ByteItem, "HR1", 247, "can't write any byte to HR1"},
    {ByteItem, "HR1", 256, "can't write any byte to HR1"},
    {ByteItem, "HR1", 257, "can't write any byte to HR1"},
    {ByteItem, "HR65536", 3, "can't write any byte to HR65536"},
    {ByteItem, "HR65535", 5, "can't write any byte to HR65535"},
    {ByteItem, "HR1", -1, "can't write any byte to HR1"},
    {ByteItem, "HR1", MinInt, "can't write any byte to HR1"},
    {ByteItem, "HR1", MaxInt, "can't write any byte to HR1"},
    {ByteItem, "HR1", 0x20000000, "can't write any byte to HR1"},
};

class RefusedRegisters : public WriteRegisters, public testing::WithParamInterface<LimitCase>
{
};

const char *nameOf(int dataType)
{
    return dataType == ByteItem ? "byte" : dataType == WordItem ? "word" : "dword";
}

} // namespace

TEST_F(WriteRegisters, WordsGoOutHighByteFirst)
{
    EXPECT_TRUE(write(WordItem, "HR2", 2, fromHex("0A 00 02 01")));
    EXPECT_EQ(channel.requests().at(0), framed("01 10 00 01 00 02 04 00 0A 01 02"));
    EXPECT_EQ(channel.readLengths(), (std::vector<int>{5, 3}));
    EXPECT_EQ(error(), NoError);
}

TEST_F(WriteRegisters, DoubleWordsInBothWordOrders)
{
    EXPECT_TRUE(write(DoubleWordItem, "HR2", 1, fromHex("44 33 22 11")));
    EXPECT_EQ(channel.requests().at(0), framed("01 10 00 01 00 02 04 33 44 11 22"));
    EXPECT_TRUE(write(DoubleWordItem, "HRSW2", 1, fromHex("44 33 22 11")));
    EXPECT_EQ(channel.requests().at(1), framed("01 10 00 01 00 02 04 11 22 33 44"));
    EXPECT_TRUE(write(DoubleWordItem, "hrsw2", 2, fromHex("44 33 22 11 88 77 66 55")));
    EXPECT_EQ(channel.requests().at(2), framed("01 10 00 01 00 04 08 11 22 33 44 55 66 77 88"));
}

TEST_F(WriteRegisters, OddByteClearsTheOtherHalfOfItsRegister)
{
    EXPECT_TRUE(write(ByteItem, "HR11", 3, fromHex("11 22 33")));
    EXPECT_EQ(channel.requests().at(0), framed("01 10 00 0A 00 02 04 22 11 00 33"));
    EXPECT_TRUE(write(BlockItem, "HR11", 4, fromHex("11 22 33 44")));
    EXPECT_EQ(channel.requests().at(1), framed("01 10 00 0A 00 02 04 22 11 44 33"));
}

TEST_F(WriteRegisters, StationIsTheLowByte)
{
    channel.station = 0x1FE;
    EXPECT_FALSE(write(WordItem, "HR1", 1, fromHex("34 12")));
    EXPECT_EQ(channel.requests().at(0), framed("FE 10 00 00 00 01 02 12 34"));
}

TEST_F(WriteRegisters, LargestRequests)
{
    const QByteArray data = patternBytes(246);
    QByteArray registers = data;
    for (int i = 0; i < registers.size(); ++i)
        registers[i] = data.at(i ^ 1);
    const QByteArray request = writeMultipleFrame(1, 16, 65413, 123, registers);
    EXPECT_TRUE(write(WordItem, "HR65414", 123, data));
    EXPECT_TRUE(write(ByteItem, "HR65414", 246, data));
    EXPECT_EQ(channel.requests(), QList<QByteArray>() << request << request);

    registers[245] = data.at(244);
    registers[244] = 0;
    EXPECT_TRUE(write(BlockItem, "HR65414", 245, data));
    EXPECT_EQ(channel.requests().last(), writeMultipleFrame(1, 16, 65413, 123, registers));

    EXPECT_TRUE(write(DoubleWordItem, "HR65415", 61, data));
    EXPECT_EQ(channel.requests().last().left(7), fromHex("01 10 FF 86 00 7A F4"));
    EXPECT_EQ(channel.requests().last().size(), 7 + 244 + 2);
}

TEST_F(WriteRegisters, LastRegister)
{
    EXPECT_TRUE(write(WordItem, "HR65536", 1, fromHex("34 12")));
    EXPECT_TRUE(write(WordItem, "HR", 1, fromHex("34 12")));
    EXPECT_TRUE(write(ByteItem, "HR0", 1, fromHex("34")));
    EXPECT_EQ(channel.requests(), QList<QByteArray>() << framed("01 10 FF FF 00 01 02 12 34")
                                                      << framed("01 10 FF FF 00 01 02 12 34")
                                                      << framed("01 10 FF FF 00 01 02 00 34"));
}

TEST_P(RefusedRegisters, SendNothing)
{
    const LimitCase &limit = GetParam();
    EXPECT_FALSE(write(limit.dataType, limit.address, limit.count, QByteArray(300, 'x')));
    EXPECT_EQ(error(), std::string(limit.text) + " (write " + std::to_string(limit.count) + " " +
                           nameOf(limit.dataType) + " to 1-" + limit.address + ")");
    EXPECT_TRUE(isSilent());
    EXPECT_EQ(channel.count(ScriptedChannel::Close), 0);
}

INSTANTIATE_TEST_SUITE_P(Ranges, RefusedRegisters, testing::ValuesIn(refused));

TEST_F(WriteRegisters, CountOfZeroIsSent)
{
    for (const int kind : {ByteItem, WordItem, DoubleWordItem, BlockItem}) {
        EXPECT_TRUE(write(kind, "HR1", 0, fromHex("11 22")));
        EXPECT_EQ(channel.requests().last(), framed("01 10 00 00 00 00 00"));
    }
}

TEST_F(WriteRegisters, EchoNeedsOnlyStationFunctionAndCrc)
{
    channel.addReply(framed("01 10 AB CD 00 99"));
    EXPECT_TRUE(write(DoubleWordItem, "HR1", 1, fromHex("01 02 03 04")));
    channel.addReply(framed("02 10 00 00 00 02"));
    EXPECT_FALSE(write(DoubleWordItem, "HR1", 1, fromHex("01 02 03 04")));
    EXPECT_EQ(error(), "invalid slave id:2 (write 1 dword to 1-HR1)");
    channel.addReply(framed("01 06 00 00 00 02"));
    EXPECT_FALSE(write(DoubleWordItem, "HR1", 1, fromHex("01 02 03 04")));
    EXPECT_EQ(error(), "invalid response (write 1 dword to 1-HR1)");
    EXPECT_EQ(channel.count(ScriptedChannel::Close), 0);
    channel.addReply(framed("01 10 00 00 00 02").left(5));
    EXPECT_FALSE(write(DoubleWordItem, "HR1", 1, fromHex("01 02 03 04")));
    EXPECT_EQ(error(), "packet loss (write 1 dword to 1-HR1)");
    EXPECT_FALSE(channel.connected);
}
