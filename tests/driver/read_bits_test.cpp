#include "tests/support/driver_test.h"

#include <limits>

namespace
{

class ReadBits : public DriverTest
{
};

std::string refusal(const std::string &count, const std::string &place, const std::string &address)
{
    return "can't read " + count + " bits from " + place + " (read " + count + " bit(s) from 1-" + address +
           ")";
}

} // namespace

TEST_F(ReadBits, CoilsAsTheyArePacked)
{
    channel.addReply(framed("01 01 03 CD 6B 05"));
    EXPECT_EQ(read(BitItem, "DO20", 19), fromHex("CD 6B 05"));
    EXPECT_EQ(channel.requests().at(0), framed("01 01 00 13 00 13"));
    EXPECT_EQ(channel.readLengths(), (std::vector<int>{5, 3}));
    EXPECT_EQ(error(), NoError);
}

TEST_F(ReadBits, DiscreteInputs)
{
    channel.station = 17;
    channel.addReply(framed("11 02 03 AC DB 35"));
    EXPECT_EQ(read(SecondBitItem, "di197", 22), fromHex("AC DB 35"));
    EXPECT_EQ(channel.requests().at(0), framed("11 02 00 C4 00 16"));
}

TEST_F(ReadBits, BitsBeyondTheCountAreCleared)
{
    channel.setResponder([](const QByteArray &request) {
        return goodReply(request, QByteArray(readDataSize(request), '\xFF'));
    });
    for (int count = 1; count <= 40; ++count) {
        channel.forgetCalls();
        const QByteArray bits = read(BitItem, "Fn5Do1", count);
        const int size = (count + 7) / 8;
        ASSERT_EQ(bits.size(), size);
        const int used = count % 8 == 0 ? 8 : count % 8;
        EXPECT_EQ(static_cast<unsigned char>(bits.at(size - 1)), (1 << used) - 1) << count;
        EXPECT_EQ(bits.left(size - 1), QByteArray(size - 1, '\xFF'));
        EXPECT_EQ(channel.readLengths(), (std::vector<int>{5, size}));
    }
}

TEST_F(ReadBits, LargestRequestIsAboveThatOfTheProtocol)
{
    const QByteArray bits = patternBytes(251);
    channel.addReply(readReply(1, 1, bits));
    EXPECT_EQ(read(BitItem, "DO1", 2008), bits);
    EXPECT_EQ(channel.requests().at(0), framed("01 01 00 00 07 D8"));
    channel.addReply(readReply(1, 2, bits));
    EXPECT_EQ(read(BitItem, "DI63529", 2008), bits);
    EXPECT_EQ(channel.requests().at(1), framed("01 02 F8 28 07 D8"));
    EXPECT_EQ(channel.readLengths(), (std::vector<int>{5, 251, 5, 251}));
}

TEST_F(ReadBits, LastBit)
{
    channel.addReply(framed("01 02 01 FF"));
    EXPECT_EQ(read(BitItem, "DI65536", 1), fromHex("01"));
    EXPECT_EQ(channel.requests().at(0), framed("01 02 FF FF 00 01"));
}

TEST_F(ReadBits, RangesThatAreRefused)
{
    const struct {
        const char *address;
        int count;
        const char *place;
    } ranges[] = {{"DO1", 2009, "DO1"},
                  {"DO65536", 2, "DO65536"},
                  {"di65536", 2, "di65536"},
                  {"DI", 2, "DI65536"},
                  {"Fn5Do63530", 2008, "Fn5Do63530"},
                  {"DOX1", 65537, "DOX1"},
                  {"DI1", -1, "DI1"},
                  {"DI2", -1, "DI2"},
                  {"DI1", std::numeric_limits<int>::min(), "DI1"},
                  {"DI1", std::numeric_limits<int>::max(), "DI1"},
                  {"DI1", 0x20000000, "DI1"},
                  {"DI1", 0x40000001, "DI1"}};
    for (const auto &range : ranges) {
        EXPECT_EQ(read(BitItem, range.address, range.count), QByteArray());
        EXPECT_EQ(error(), refusal(std::to_string(range.count), range.place, range.address));
    }
    EXPECT_TRUE(isSilent());
    EXPECT_EQ(channel.count(ScriptedChannel::Close), 0);
}

TEST_F(ReadBits, CountOfZeroIsSent)
{
    channel.addReply(framed("01 01 00"));
    EXPECT_EQ(read(BitItem, "DO1", 0), QByteArray());
    EXPECT_EQ(error(), NoError);
    EXPECT_EQ(channel.requests().at(0), framed("01 01 00 00 00 00"));
    EXPECT_EQ(channel.readLengths(), (std::vector<int>{5, 0}));
}

TEST_F(ReadBits, Failures)
{
    channel.addReply(framed("01 81 02"));
    EXPECT_EQ(read(BitItem, "DO1", 9), QByteArray());
    EXPECT_EQ(error(), "exception code:0x02 (read 9 bit(s) from 1-DO1)");
    channel.addReply(framed("01 02 02 FF FF"));
    EXPECT_EQ(read(BitItem, "DO1", 9), QByteArray());
    EXPECT_EQ(error(), "invalid response (read 9 bit(s) from 1-DO1)");
    channel.addReply(fromHex("01 01 02 FF FF 00 00"));
    EXPECT_EQ(read(BitItem, "DO1", 9), QByteArray());
    EXPECT_EQ(error(), "CRC error (read 9 bit(s) from 1-DO1)");
    EXPECT_EQ(channel.count(ScriptedChannel::Close), 0);
    channel.addReply(framed("01 01 01 FF"));
    EXPECT_EQ(read(BitItem, "DO1", 9), QByteArray());
    EXPECT_EQ(error(), "packet loss (read 9 bit(s) from 1-DO1)");
    EXPECT_FALSE(channel.connected);
}
