#include "tests/support/driver_test.h"

#include <limits>

namespace
{

class ReadDWords : public DriverTest
{
};

class ReadBytes : public DriverTest
{
};

} // namespace

TEST_F(ReadDWords, LowWordFirst)
{
    channel.addReply(framed("01 03 08 11 22 33 44 55 66 77 88"));
    EXPECT_EQ(read(DoubleWordItem, "HR10", 2), fromHex("22 11 44 33 66 55 88 77"));
    EXPECT_EQ(channel.requests().at(0), framed("01 03 00 09 00 04"));
    EXPECT_EQ(channel.readLengths(), (std::vector<int>{5, 8}));
    EXPECT_EQ(error(), NoError);
}

TEST_F(ReadDWords, HighWordFirstWhenTheAddressSaysSo)
{
    for (const char *address : {"HRSW10", "hrsw10", "HR10Sw", "HR10 (sW)"}) {
        channel.addReply(framed("01 03 08 11 22 33 44 55 66 77 88"));
        EXPECT_EQ(read(DoubleWordItem, address, 2), fromHex("44 33 22 11 88 77 66 55")) << address;
        EXPECT_EQ(channel.requests().last(), framed("01 03 00 09 00 04"));
    }
    channel.addReply(framed("01 04 04 11 22 33 44"));
    EXPECT_EQ(read(DoubleWordItem, "SW10", 1), fromHex("44 33 22 11"));
}

TEST_F(ReadDWords, LargestRequest)
{
    const QByteArray registers = patternBytes(248);
    channel.addReply(readReply(1, 4, registers));
    const QByteArray low = read(DoubleWordItem, "IR1", 62);
    channel.addReply(readReply(1, 4, registers));
    const QByteArray high = read(DoubleWordItem, "IRSW1", 62);
    ASSERT_EQ(low.size(), 248);
    ASSERT_EQ(high.size(), 248);
    for (int i = 0; i < 248; ++i) {
        EXPECT_EQ(low.at(i), registers.at(i ^ 1)) << i;
        EXPECT_EQ(high.at(i), registers.at(i ^ 3)) << i;
    }
    EXPECT_EQ(channel.requests().at(0), framed("01 04 00 00 00 7C"));
    EXPECT_EQ(channel.readLengths(), (std::vector<int>{5, 248, 5, 248}));
}

TEST_F(ReadDWords, LastRegisters)
{
    channel.addReply(framed("01 03 04 11 22 33 44"));
    EXPECT_EQ(read(DoubleWordItem, "HR65535", 1), fromHex("22 11 44 33"));
    EXPECT_EQ(channel.requests().at(0), framed("01 03 FF FE 00 02"));
}

TEST_F(ReadDWords, RangesThatAreRefused)
{
    const struct {
        const char *address;
        int count;
        const char *place;
    } ranges[] = {{"HR1", 63, "HR1"},
                  {"HRSW1", 63, "HRSW1"},
                  {"HR65536", 1, "HR65536"},
                  {"hr", 1, "hr65536"},
                  {"IR65535", 2, "IR65535"},
                  {"IR1", -1, "IR1"},
                  {"IR1", std::numeric_limits<int>::min(), "IR1"},
                  {"IR1", std::numeric_limits<int>::min() + 1, "IR1"},
                  {"IR1", std::numeric_limits<int>::max(), "IR1"},
                  {"IR1", 0x20000000, "IR1"},
                  {"IR1", 0x40000000, "IR1"},
                  {"IR1", 0x40000001, "IR1"}};
    for (const auto &range : ranges) {
        EXPECT_EQ(read(DoubleWordItem, range.address, range.count), QByteArray());
        EXPECT_EQ(error(), std::string("can't read any double word from ") + range.place + " (read " +
                               std::to_string(range.count) + " dword(s) from 1-" + range.address + ")");
    }
    EXPECT_TRUE(isSilent());
    EXPECT_EQ(channel.count(ScriptedChannel::Close), 0);
}

TEST_F(ReadDWords, CountOfZeroIsSent)
{
    channel.addReply(framed("01 03 00"));
    EXPECT_EQ(read(DoubleWordItem, "HR1", 0), QByteArray());
    EXPECT_EQ(error(), NoError);
    EXPECT_EQ(channel.requests().at(0), framed("01 03 00 00 00 00"));
}

TEST_F(ReadDWords, FailuresAreThoseOfTheExchange)
{
    channel.addReply(fromHex("01 03 04 11 22 33 44 00 00"));
    EXPECT_EQ(read(DoubleWordItem, "HR1", 1), QByteArray());
    EXPECT_EQ(error(), "CRC error (read 1 dword(s) from 1-HR1)");
    EXPECT_TRUE(channel.connected);
    channel.addReply(framed("01 03 04 11 22 33 44").left(8));
    EXPECT_EQ(read(DoubleWordItem, "HR1", 1), QByteArray());
    EXPECT_EQ(error(), "packet loss (read 1 dword(s) from 1-HR1)");
    EXPECT_FALSE(channel.connected);
}

TEST_F(ReadBytes, LowByteOfARegisterComesFirst)
{
    channel.addReply(framed("01 03 04 11 22 33 44"));
    EXPECT_EQ(read(ByteItem, "HR10", 4), fromHex("22 11 44 33"));
    EXPECT_EQ(channel.requests().at(0), framed("01 03 00 09 00 02"));
    EXPECT_EQ(error(), NoError);
}

TEST_F(ReadBytes, OddCountDropsTheHighByteOfTheLastRegister)
{
    for (const int kind : {ByteItem, BlockItem}) {
        channel.addReply(framed("01 04 04 11 22 33 44"));
        EXPECT_EQ(read(kind, "IR10", 3), fromHex("22 11 44"));
        EXPECT_EQ(channel.requests().last(), framed("01 04 00 09 00 02"));
    }
    EXPECT_EQ(channel.readLengths(), (std::vector<int>{5, 4, 5, 4}));
}

TEST_F(ReadBytes, LargestRequest)
{
    const QByteArray registers = patternBytes(250);
    for (const int count : {249, 250}) {
        channel.addReply(readReply(1, 3, registers));
        const QByteArray data = read(ByteItem, "fn6hr1", count);
        ASSERT_EQ(data.size(), count);
        for (int i = 0; i < count; ++i)
            EXPECT_EQ(data.at(i), registers.at(i ^ 1)) << i;
        EXPECT_EQ(channel.requests().last(), framed("01 03 00 00 00 7D"));
    }
}

TEST_F(ReadBytes, LastRegisters)
{
    channel.addReply(framed("01 03 04 11 22 33 44"));
    EXPECT_EQ(read(ByteItem, "HR65535", 4), fromHex("22 11 44 33"));
    EXPECT_EQ(channel.requests().at(0), framed("01 03 FF FE 00 02"));
    channel.addReply(framed("01 03 02 11 22"));
    EXPECT_EQ(read(ByteItem, "HR65536", 1), fromHex("22"));
}

TEST_F(ReadBytes, RangesThatAreRefused)
{
    const struct {
        const char *address;
        int count;
        const char *place;
    } ranges[] = {{"HR1", 251, "HR1"},
                  {"HR65536", 3, "HR65536"},
                  {"HR65535", 5, "HR65535"},
                  {"ir", 3, "ir65536"},
                  {"FN6HR65535", 6, "FN6HR65535"},
                  {"IR1", -1, "IR1"},
                  {"IR1", -2, "IR1"},
                  {"IR1", std::numeric_limits<int>::min(), "IR1"},
                  {"IR1", std::numeric_limits<int>::max(), "IR1"},
                  {"IR1", 0x20000000, "IR1"},
                  {"IR1", 0x40000001, "IR1"}};
    for (const auto &range : ranges) {
        EXPECT_EQ(read(ByteItem, range.address, range.count), QByteArray());
        EXPECT_EQ(error(), std::string("can't read any byte from ") + range.place + " (read " +
                               std::to_string(range.count) + " byte(s) from 1-" + range.address + ")");
    }
    EXPECT_TRUE(isSilent());
    EXPECT_EQ(channel.count(ScriptedChannel::Close), 0);
}

TEST_F(ReadBytes, CountOfZeroIsSent)
{
    channel.addReply(framed("01 03 00"));
    EXPECT_EQ(read(BlockItem, "HR1", 0), QByteArray());
    EXPECT_EQ(error(), NoError);
    EXPECT_EQ(channel.requests().at(0), framed("01 03 00 00 00 00"));
}

TEST_F(ReadBytes, FailuresAreThoseOfTheExchange)
{
    channel.addReply(fromHex("01 03 02 11 22 00 00"));
    EXPECT_EQ(read(ByteItem, "HR1", 1), QByteArray());
    EXPECT_EQ(error(), "CRC error (read 1 byte(s) from 1-HR1)");
    EXPECT_TRUE(channel.connected);
    channel.addReply(framed("01 03 02 11 22").left(6));
    EXPECT_EQ(read(ByteItem, "HR1", 1), QByteArray());
    EXPECT_EQ(error(), "packet loss (read 1 byte(s) from 1-HR1)");
    EXPECT_FALSE(channel.connected);
}
