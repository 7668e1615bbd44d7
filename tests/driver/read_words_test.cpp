#include "tests/support/driver_test.h"

#include <limits>

namespace
{

class ReadWords : public DriverTest
{
};

class ReadRegisterBits : public DriverTest
{
};

} // namespace

TEST_F(ReadWords, DeliversEachRegisterLowByteFirst)
{
    channel.addReply(framed("01 03 06 12 34 56 78 9A BC"));
    EXPECT_EQ(read(WordItem, "HR100", 3), fromHex("34 12 78 56 BC 9A"));
    EXPECT_EQ(channel.requests().at(0), framed("01 03 00 63 00 03"));
    EXPECT_EQ(channel.readLengths(), (std::vector<int>{5, 6}));
    EXPECT_EQ(error(), NoError);
}

TEST_F(ReadWords, InputRegisters)
{
    channel.station = 17;
    channel.addReply(framed("11 04 02 00 0A"));
    EXPECT_EQ(read(WordItem, "IR9", 1), fromHex("0A 00"));
    EXPECT_EQ(channel.requests().at(0), framed("11 04 00 08 00 01"));
}

TEST_F(ReadWords, LargestRequestAtTheLastPossibleOffset)
{
    const QByteArray registers = patternBytes(250);
    channel.addReply(readReply(1, 3, registers));
    const QByteArray data = read(WordItem, "HR65412", 125);
    ASSERT_EQ(data.size(), 250);
    for (int i = 0; i < 250; ++i)
        EXPECT_EQ(data.at(i), registers.at(i ^ 1)) << i;
    EXPECT_EQ(channel.requests().at(0), framed("01 03 FF 83 00 7D"));
    EXPECT_EQ(channel.readLengths(), (std::vector<int>{5, 250}));
}

TEST_F(ReadWords, LastRegister)
{
    channel.addReply(framed("01 03 02 12 34"));
    EXPECT_EQ(read(WordItem, "HR65536", 1), fromHex("34 12"));
    EXPECT_EQ(channel.requests().at(0), framed("01 03 FF FF 00 01"));
}

// What an address without a number turns into is the last register, so a single word is sent.
TEST_F(ReadWords, OneWordWithoutANumberIsSent)
{
    channel.addReply(framed("01 03 02 12 34"));
    EXPECT_EQ(read(WordItem, "HR", 1), fromHex("34 12"));
    EXPECT_EQ(channel.requests().at(0), framed("01 03 FF FF 00 01"));
    channel.forgetCalls();
    EXPECT_EQ(read(WordItem, "HR", 2), QByteArray());
    EXPECT_EQ(error(), "can't read any word from HR65536 (read 2 word(s) from 1-HR)");
    EXPECT_TRUE(isSilent());
}

TEST_F(ReadWords, RangesThatAreRefused)
{
    const struct {
        const char *address;
        int count;
        const char *text;
    } ranges[] = {{"HR1", 126, "can't read any word from HR1"},
                  {"HR65536", 2, "can't read any word from HR65536"},
                  {"HR65413", 125, "can't read any word from HR65413"},
                  {"hr0", 3, "can't read any word from hr65536"},
                  {"Fn6Hr7", 200, "can't read any word from Fn6Hr7"},
                  {"IR1", 65537, "can't read any word from IR1"},
                  {"IR1", 65536 + 1, "can't read any word from IR1"},
                  {"", 2, "can't read any word from 65536"},
                  {"IR1", -1, "can't read any word from IR1"},
                  {"IR2", -2147483647, "can't read any word from IR2"},
                  {"IR1", std::numeric_limits<int>::min(), "can't read any word from IR1"},
                  {"IR1", std::numeric_limits<int>::max(), "can't read any word from IR1"},
                  {"IR1", 0x20000000, "can't read any word from IR1"},
                  {"IR1", 0x40000001, "can't read any word from IR1"}};
    channel.connected = false;
    for (const auto &range : ranges) {
        EXPECT_EQ(read(WordItem, range.address, range.count), QByteArray());
        EXPECT_EQ(error(), std::string(range.text) + " (read " + std::to_string(range.count) +
                               " word(s) from 1-" + range.address + ")");
    }
    EXPECT_TRUE(isSilent());
    EXPECT_EQ(channel.count(ScriptedChannel::Close), 0);
    EXPECT_EQ(channel.count(ScriptedChannel::StationId), static_cast<int>(sizeof ranges / sizeof *ranges));
}

// Nothing refuses it; what a slave answers is an exception, or five bytes that hold no register.
TEST_F(ReadWords, CountOfZeroIsSent)
{
    channel.addReply(framed("01 83 03"));
    EXPECT_EQ(read(WordItem, "HR1", 0), QByteArray());
    EXPECT_EQ(error(), "exception code:0x03 (read 0 word(s) from 1-HR1)");
    channel.addReply(framed("01 03 00"));
    EXPECT_EQ(read(WordItem, "HR1", 0), QByteArray());
    EXPECT_EQ(error(), NoError);
    EXPECT_EQ(channel.requests().at(1), framed("01 03 00 00 00 00"));
    EXPECT_EQ(channel.readLengths(), (std::vector<int>{5, 5, 0}));
}

TEST_F(ReadRegisterBits, CutsTheBitsOut)
{
    channel.addReply(framed("01 03 04 C0 00 00 01"));
    EXPECT_EQ(read(BitItem, "HR1.14", 3), fromHex("07"));
    EXPECT_EQ(channel.requests().at(0), framed("01 03 00 00 00 02"));
    EXPECT_EQ(channel.readLengths(), (std::vector<int>{5, 4}));
    EXPECT_EQ(error(), NoError);
}

TEST_F(ReadRegisterBits, ClearsWhatLiesBeyond)
{
    channel.addReply(framed("01 03 04 FF FF FF FF"));
    EXPECT_EQ(read(BitItem, "HR1.14", 3), fromHex("07"));
    channel.addReply(framed("01 03 02 FF FF"));
    EXPECT_EQ(read(SecondBitItem, "HR1.4", 9), fromHex("FF 01"));
}

TEST_F(ReadRegisterBits, EveryBitAndCount)
{
    const QByteArray registers = patternBytes(250);
    channel.setResponder([&](const QByteArray &request) { return goodReply(request, registers); });
    const auto bitOfRegisters = [&](int n) { return registers.at((n / 8) ^ 1) >> n % 8 & 1; };
    for (int bit = 0; bit < 256; bit += 5)
        for (int count = 1; bit + count <= 2000; count += 61) {
            const QByteArray data = read(BitItem, ("IR3." + std::to_string(bit)).c_str(), count);
            ASSERT_EQ(data.size(), (count + 7) / 8);
            ASSERT_EQ(channel.requests().last(), fieldsFrame(1, 4, 2, (bit + count + 15) / 16));
            for (int i = 0; i < 8 * data.size(); ++i)
                ASSERT_EQ(data.at(i / 8) >> i % 8 & 1, i < count ? bitOfRegisters(bit + i) : 0)
                    << bit << " " << count << " " << i;
        }
}

TEST_F(ReadRegisterBits, LimitIsThatOfTheRegisters)
{
    channel.addReply(readReply(1, 3, patternBytes(250)));
    EXPECT_EQ(read(BitItem, "HR1.0", 2000).size(), 250);
    channel.addReply(readReply(1, 3, patternBytes(250)));
    EXPECT_EQ(read(BitItem, "HR1.255", 1745).size(), 219);
    channel.forgetCalls();
    EXPECT_EQ(read(BitItem, "HR1.0", 2001), QByteArray());
    EXPECT_EQ(error(), "can't read any word from HR1 (read 2001 bit(s) from 1-HR1.0)");
    EXPECT_EQ(read(SecondBitItem, "HR1.255", 1746), QByteArray());
    EXPECT_EQ(error(), "can't read any word from HR1");
    EXPECT_EQ(read(BitItem, "FN6HR65536.1", 16), QByteArray());
    EXPECT_EQ(error(), "can't read any word from FN6HR65536 (read 16 bit(s) from 1-FN6HR65536.1)");
    EXPECT_TRUE(isSilent());
}

TEST_F(ReadRegisterBits, HugeAndNegativeCountsAreRefused)
{
    for (const int count : {-1, -16, -2147483647, std::numeric_limits<int>::min(),
                            std::numeric_limits<int>::max(), 0x20000000, 0x40000001})
        for (const char *address : {"HR1", "HR1.15", "HR1.255"}) {
            EXPECT_EQ(read(SecondBitItem, address, count), QByteArray());
            EXPECT_EQ(error(), "can't read any word from HR1") << address << " " << count;
        }
    EXPECT_TRUE(isSilent());
}

TEST_F(ReadRegisterBits, FailureOfTheRegistersIsPassedOn)
{
    channel.addReply(framed("01 84 02"));
    EXPECT_EQ(read(BitItem, "IR1.5", 1), QByteArray());
    EXPECT_EQ(error(), "exception code:0x02 (read 1 bit(s) from 1-IR1.5)");
    EXPECT_TRUE(channel.connected);
}

TEST_F(ReadRegisterBits, CountOfZeroReadsTheRegistersBelowTheBit)
{
    channel.addReply(framed("01 03 02 FF FF"));
    EXPECT_EQ(read(BitItem, "HR1.15", 0), QByteArray());
    EXPECT_EQ(error(), NoError);
    EXPECT_EQ(channel.requests().at(0), framed("01 03 00 00 00 01"));
}
