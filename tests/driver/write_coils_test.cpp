#include "tests/support/driver_test.h"

#include <limits>

namespace
{

class WriteCoils : public DriverTest
{
protected:
    WriteCoils() { channel.setResponder(echoOf); }
};

class WriteCoilsFn5 : public WriteCoils
{
};

struct LimitCase {
    const char *address;
    int count;
    const char *place;
};

const LimitCase refused[] = {
    {"1", 1977, "1"},
    {"65531", 10, "65531"},
    {"65536", 2, "65536"},
    {"", 2, "65536"},
    {"63562", 1976, "63562"},
    {"1", 65537, "1"},
    {"1", -1, "1"},
    {"2", -1, "2"},
    {"1", std::numeric_limits<int>::min(), "1"},
    {"1", std::numeric_limits<int>::max(), "1"},
    {"1", 0x20000000, "1"},
    {"1", 0x40000001, "1"},
};

std::string refusal(const std::string &count, const std::string &place, const std::string &address)
{
    return "can't write " + count + " bits to DO" + place + " (write " + count + " bit to 1-" + address + ")";
}

} // namespace

TEST_F(WriteCoils, OneRequestForAll)
{
    EXPECT_TRUE(write(BitItem, "DO20", 10, fromHex("CD 01")));
    EXPECT_EQ(channel.requests(), QList<QByteArray>() << framed("01 0F 00 13 00 0A 02 CD 01"));
    EXPECT_EQ(channel.readLengths(), (std::vector<int>{5, 3}));
    EXPECT_EQ(error(), NoError);
}

TEST_F(WriteCoils, UnusedBitsGoOutAsTheHostLeftThem)
{
    EXPECT_TRUE(write(SecondBitItem, "do1", 3, fromHex("FF")));
    EXPECT_EQ(channel.requests().at(0), framed("01 0F 00 00 00 03 01 FF"));
}

TEST_F(WriteCoils, LargestRequestIsAboveThatOfTheProtocol)
{
    const QByteArray bits = patternBytes(247);
    EXPECT_TRUE(write(BitItem, "DO1", 1976, bits));
    EXPECT_EQ(channel.requests().last(), writeMultipleFrame(1, 15, 0, 1976, bits));
    EXPECT_TRUE(write(BitItem, "DO63561", 1976, bits));
    EXPECT_EQ(channel.requests().last(), writeMultipleFrame(1, 15, 63560, 1976, bits));
    EXPECT_EQ(channel.requests().last().left(7), fromHex("01 0F F8 48 07 B8 F7"));
}

TEST_F(WriteCoils, LastCoils)
{
    EXPECT_TRUE(write(BitItem, "DO65531", 6, fromHex("2A")));
    EXPECT_EQ(channel.requests().at(0), framed("01 0F FF FA 00 06 01 2A"));
    EXPECT_TRUE(write(BitItem, "DO", 1, fromHex("01")));
    EXPECT_EQ(channel.requests().at(1), framed("01 0F FF FF 00 01 01 01"));
}

TEST_F(WriteCoils, RangesThatAreRefused)
{
    for (const auto &range : refused)
        for (const char *area : {"DO", "Fn5Do"}) {
            const std::string address = area + std::string(range.address);
            EXPECT_FALSE(write(BitItem, address.c_str(), range.count, QByteArray(300, 'x')));
            EXPECT_EQ(error(), refusal(std::to_string(range.count), range.place, address));
        }
    EXPECT_TRUE(isSilent());
    EXPECT_EQ(channel.count(ScriptedChannel::Close), 0);
}

TEST_F(WriteCoils, CountOfZeroIsSent)
{
    EXPECT_TRUE(write(BitItem, "DO5", 0, fromHex("FF")));
    EXPECT_EQ(channel.requests(), QList<QByteArray>() << framed("01 0F 00 04 00 00 00"));
}

TEST_F(WriteCoils, Failures)
{
    channel.addReply(framed("01 8F 02"));
    EXPECT_FALSE(write(BitItem, "DO1", 1, fromHex("01")));
    EXPECT_EQ(error(), "exception code:0x02 (write 1 bit to 1-DO1)");
    channel.addReply(framed("01 05 00 00 FF 00"));
    EXPECT_FALSE(write(BitItem, "DO1", 1, fromHex("01")));
    EXPECT_EQ(error(), "invalid response (write 1 bit to 1-DO1)");
}

TEST_F(WriteCoilsFn5, OneRequestForEachCoil)
{
    EXPECT_TRUE(write(BitItem, "FN5DO8", 3, fromHex("05")));
    EXPECT_EQ(channel.requests(), QList<QByteArray>()
                                      << framed("01 05 00 07 FF 00") << framed("01 05 00 08 00 00")
                                      << framed("01 05 00 09 FF 00"));
    EXPECT_EQ(channel.readLengths(), (std::vector<int>{5, 3, 5, 3, 5, 3}));
}

TEST_F(WriteCoilsFn5, NoPauseInBetween)
{
    channel.delay = 30;
    EXPECT_TRUE(write(BitItem, "FN5DO1", 20, fromHex("FF 00 0F")));
    EXPECT_EQ(channel.requests().size(), 20);
    EXPECT_EQ(pauses.sleeps(), std::vector<qint64>(1, 30000000));
    EXPECT_EQ(channel.count(ScriptedChannel::DelayTime), 1);
}

TEST_F(WriteCoilsFn5, EveryBitOfALargeWrite)
{
    const QByteArray bits = patternBytes(247);
    EXPECT_TRUE(write(SecondBitItem, "fn5do63561", 1976, bits));
    const QList<QByteArray> sent = channel.requests();
    ASSERT_EQ(sent.size(), 1976);
    for (int i = 0; i < 1976; ++i)
        EXPECT_EQ(sent.at(i), fieldsFrame(1, 5, 63560 + i, (bits.at(i / 8) >> i % 8 & 1) != 0 ? 0xFF00 : 0))
            << i;
}

TEST_F(WriteCoilsFn5, CountOfZeroSendsNothing)
{
    EXPECT_TRUE(write(BitItem, "FN5DO1", 0, fromHex("FF")));
    EXPECT_EQ(error(), NoError);
    EXPECT_TRUE(isSilent());
}

TEST_F(WriteCoilsFn5, FirstFailureEndsTheAttempt)
{
    channel.addReply(framed("01 05 00 00 FF 00"));
    channel.addReply(framed("01 85 02"));
    EXPECT_FALSE(write(BitItem, "FN5DO1", 3, fromHex("07")));
    EXPECT_EQ(error(), "exception code:0x02 (write 3 bit to 1-FN5DO1)");
    EXPECT_EQ(channel.requests().size(), 2);
}

TEST_F(WriteCoilsFn5, RetryStartsWithTheFirstCoil)
{
    channel.retries = 1;
    channel.addReply(framed("01 05 00 00 FF 00"));
    channel.addReply(QByteArray());
    EXPECT_TRUE(write(BitItem, "FN5DO1", 2, fromHex("03")));
    EXPECT_EQ(channel.requests().size(), 4);
    EXPECT_EQ(channel.requests().at(2), framed("01 05 00 00 FF 00"));
}

TEST_F(WriteCoilsFn5, EchoedValueIsNotCompared)
{
    channel.addReply(framed("01 05 00 00 00 00"));
    EXPECT_TRUE(write(BitItem, "FN5DO1", 1, fromHex("01")));
}

TEST_F(WriteCoilsFn5, StationIsAskedAnewForEachCoil)
{
    channel.setResponder([this](const QByteArray &request) {
        channel.station = 9;
        return framed(QByteArray(1, '\x09') + request.mid(1, 5));
    });
    EXPECT_TRUE(write(BitItem, "FN5DO1", 2, fromHex("03")));
    EXPECT_EQ(channel.requests(), QList<QByteArray>()
                                      << framed("01 05 00 00 FF 00") << framed("09 05 00 01 FF 00"));
}
