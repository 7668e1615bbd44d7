#include "tests/support/driver_test.h"

#include <algorithm>
#include <limits>
#include <numeric>
#include <random>

// Byte items of bit areas: only bits that the project uses are asked for.

namespace
{

// "3@0 1@5": the requests of a function, each as number of bits and address.
std::string runsOf(const ScriptedChannel &channel, int function)
{
    std::string runs;
    const QList<QByteArray> sent = channel.requests();
    for (int i = 0; i < sent.size(); ++i) {
        const QByteArray &request = sent.at(i);
        const int address = wordAt(request, 2);
        const int bits = wordAt(request, 4);
        EXPECT_EQ(request, fieldsFrame(1, function, address, bits));
        runs += (i > 0 ? " " : "") + std::to_string(bits) + "@" + std::to_string(address);
    }
    return runs;
}

QStringList tagsOf(const char *area, const std::vector<int> &zeroBased)
{
    QStringList tags;
    for (const int address : zeroBased)
        tags << QLatin1String(area) + QString::number(address + 1);
    return tags;
}

// From the first to before the last.
std::vector<int> addresses(int first, int last)
{
    std::vector<int> all(static_cast<size_t>(last - first));
    std::iota(all.begin(), all.end(), first);
    return all;
}

// A slave whose bits are all on.
QByteArray allOn(const QByteArray &request)
{
    return goodReply(request, QByteArray(readDataSize(request), '\xFF'));
}

struct WalkCase {
    std::vector<int> used;
    const char *address;
    int count;
    const char *runs;
    const char *data;
};

const WalkCase walks[] = {
    {{0, 1, 2, 5}, "1", 1, "3@0 1@5", "27"},
    {{8, 9, 10, 11, 12, 13, 14, 15}, "1", 2, "8@8", "00 FF"},
    {{8, 9, 10, 11, 12, 13, 14, 15}, "9", 1, "8@8", "FF"},
    {{8, 9, 10, 11, 12, 13, 14, 15}, "5", 1, "4@8", "F0"},
    {{8, 9, 10, 11, 12, 13, 14, 15}, "13", 1, "4@12", "0F"},
    {{8, 9, 10, 11, 12, 13, 14, 15}, "10", 1, "7@9", "7F"},
    {{100}, "1", 2, "", "00 00"},
    {{0}, "2", 1, "", "00"},
    {{8}, "1", 1, "", "00"},
    {{7}, "1", 1, "1@7", "80"},
    {{0, 2, 4, 6}, "1", 1, "1@0 1@2 1@4 1@6", "55"},
    {{7, 8}, "1", 2, "2@7", "80 01"},
    {{65535}, "65529", 1, "1@65535", "80"},
    {{65535}, "0", 1, "1@65535", "01"},
    {{3, 65533}, "65533", 1, "1@65533", "02"},
    {{3}, "65533", 1, "1@3", "80"},
    {{0, 1}, "65535", 1, "2@0", "0C"},
    {{0, 65535}, "65535", 1, "1@65535", "02"},
    {{0, 65534}, "65536", 1, "1@0", "02"},
    {{5, 6}, "7", 1, "1@6", "01"},
    {{}, "1", 1, "", "00"},
};

class UsedBitsWalk : public testing::TestWithParam<WalkCase>
{
protected:
    void expectWalk(const char *area, const char *otherArea, int function)
    {
        const WalkCase &walk = GetParam();
        // The other area has all bits, and the station thus an entry: the areas have sets of their own.
        LoadedDriver link(tagsOf(area, walk.used) + tagsOf(otherArea, {0, 1, 2, 3, 4, 5, 6, 7, 65535}));
        link.channel.setResponder(allOn);
        for (const int kind : {ByteItem, BlockItem}) {
            link.channel.forgetCalls();
            EXPECT_EQ(link.read(kind, (std::string(area) + walk.address).c_str(), walk.count),
                      fromHex(walk.data));
            EXPECT_EQ(link.error(), NoError);
            EXPECT_EQ(runsOf(link.channel, function), walk.runs);
        }
    }
};

void PrintTo(const WalkCase &walk, std::ostream *out)
{
    *out << walk.count << " bytes at " << walk.address << " in " << walk.runs;
}

} // namespace

TEST_P(UsedBitsWalk, DiscreteInputs)
{
    expectWalk("DI", "DO", 2);
}

TEST_P(UsedBitsWalk, Coils)
{
    expectWalk("DO", "DI", 1);
}

INSTANTIATE_TEST_SUITE_P(Cases, UsedBitsWalk, testing::ValuesIn(walks));

TEST(UsedBits, RepliesLandWhereTheirBitsBelong)
{
    LoadedDriver link(tagsOf("DI", {3, 4, 5, 17, 18}));
    link.channel.addReply(framed("01 02 01 05"));
    link.channel.addReply(framed("01 02 01 02"));
    EXPECT_EQ(link.read(ByteItem, "DI2", 3), fromHex("14 00 02"));
    EXPECT_EQ(runsOf(link.channel, 2), "3@3 2@17");
}

TEST(UsedBits, DelayBetweenRequestsOnly)
{
    LoadedDriver link(tagsOf("DI", {0, 1, 2, 5, 7}));
    link.channel.setResponder(allOn);
    link.channel.delay = 40;
    EXPECT_EQ(link.read(ByteItem, "DI1", 1), fromHex("A7"));
    EXPECT_EQ(link.pauses.sleeps(), std::vector<qint64>(3, 40000000));
    EXPECT_EQ(link.channel.trace(),
              "delayTime isConnected write(" + toHex(framed("01 02 00 00 00 03")) + ") read(5) read(1) " +
                  "delayTime write(" + toHex(framed("01 02 00 05 00 01")) + ") read(5) read(1) " +
                  "delayTime write(" + toHex(framed("01 02 00 07 00 01")) + ") read(5) read(1)");
}

TEST(UsedBits, FailureOfALaterRequestDiscardsTheEarlier)
{
    LoadedDriver link(tagsOf("DO", {0, 2, 4}));
    link.channel.addReply(framed("01 01 01 01"));
    link.channel.addReply(framed("01 81 02"));
    EXPECT_EQ(link.read(ByteItem, "DO1", 1), QByteArray());
    EXPECT_EQ(link.error(), "exception code:0x02 (read 1 byte(s) from 1-DO1)");
    EXPECT_EQ(runsOf(link.channel, 1), "1@0 1@2");
}

TEST(UsedBits, RetryStartsWithTheFirstRequest)
{
    LoadedDriver link(tagsOf("DO", {0, 2}));
    link.channel.retries = 1;
    link.channel.addReply(framed("01 01 01 01"));
    link.channel.addReply(QByteArray());
    link.channel.addReply(framed("01 01 01 00"));
    link.channel.addReply(framed("01 01 01 01"));
    EXPECT_EQ(link.read(ByteItem, "DO1", 1), fromHex("04"));
    EXPECT_EQ(runsOf(link.channel, 1), "1@0 1@2 1@0 1@2");
}

TEST(UsedBits, LongestRun)
{
    const std::vector<int> used = addresses(0, 2100);
    LoadedDriver link(tagsOf("DO", used));
    link.channel.setResponder(allOn);
    EXPECT_EQ(link.read(ByteItem, "DO1", 251), QByteArray(251, '\xFF'));
    EXPECT_EQ(runsOf(link.channel, 1), "2008@0");
    link.channel.forgetCalls();
    EXPECT_EQ(link.read(ByteItem, "DO1", 252), QByteArray());
    EXPECT_EQ(link.error(), "can't read 2016 bits from DO1 (read 252 byte(s) from 1-DO1)");
    EXPECT_EQ(link.read(ByteItem, "DO11", 300), QByteArray());
    EXPECT_EQ(link.error(), "can't read 2090 bits from DO11 (read 300 byte(s) from 1-DO11)");
    EXPECT_TRUE(link.isSilent());
}

TEST(UsedBits, AreaOfARangeTextIsTheReaders)
{
    const std::vector<int> used = addresses(9, 2100);
    LoadedDriver link(tagsOf("DO", used) + tagsOf("DI", used));
    EXPECT_EQ(link.read(BlockItem, "Fn5Do1", 300), QByteArray());
    EXPECT_EQ(link.error(), "can't read 2091 bits from DO10");
    EXPECT_EQ(link.read(BlockItem, "di1", 300), QByteArray());
    EXPECT_EQ(link.error(), "can't read 2091 bits from DI10");
}

TEST(UsedBits, StationWithoutTags)
{
    LoadedDriver link(stringList({"DI1", "7-DO1"}));
    link.channel.setResponder(allOn);
    for (const int count : {1, 0, -1, std::numeric_limits<int>::max()}) {
        link.channel.station = 8;
        EXPECT_EQ(link.read(BlockItem, "DI1", count), QByteArray());
        EXPECT_EQ(link.error(), "invalid address 8-DI");
        EXPECT_EQ(link.read(BlockItem, "DO1", count), QByteArray());
        EXPECT_EQ(link.error(), "invalid address 8-DO");
    }
    EXPECT_TRUE(link.isSilent());
    link.channel.station = 7;
    EXPECT_EQ(link.read(BlockItem, "DO1", 1), fromHex("01"));
    EXPECT_EQ(link.read(BlockItem, "DI1", 1), fromHex("00"));
}

TEST(UsedBits, StationIsLookedUpByItsLowByteAndPrintedWhole)
{
    LoadedDriver link(stringList({"7-DO1"}));
    for (const int station : {264, -1, 256, 255}) {
        link.channel.station = station;
        EXPECT_EQ(link.read(BlockItem, "DO1", 1), QByteArray());
        EXPECT_EQ(link.error(), "invalid address " + std::to_string(station) + "-DO");
    }
    link.channel.station = 263;
    link.channel.setResponder(allOn);
    EXPECT_EQ(link.read(BlockItem, "DO1", 1), QByteArray());
    EXPECT_EQ(link.error(), "invalid slave id:7");
    EXPECT_EQ(link.channel.requests().at(0), framed("07 01 00 00 00 01"));
}

TEST(UsedBits, InvalidAddressIsRetriedAndGetsDetails)
{
    LoadedDriver link(stringList({"7-DO1"}));
    link.channel.retries = 2;
    EXPECT_EQ(link.read(ByteItem, "DO1", 4), QByteArray());
    EXPECT_EQ(link.error(), "invalid address 1-DO (read 4 byte(s) from 1-DO1)");
    EXPECT_EQ(link.channel.trace(), "delayTime isConnected delayTime isConnected delayTime isConnected");
}

TEST(UsedBits, NothingForCountsBelowOne)
{
    LoadedDriver link(stringList({"DO1"}));
    for (const int count : {0, -1, -268435457, std::numeric_limits<int>::min()}) {
        EXPECT_EQ(link.read(ByteItem, "DO1", count), QByteArray());
        EXPECT_EQ(link.error(), NoError) << count;
    }
    EXPECT_TRUE(link.isSilent());
}

TEST(UsedBits, CountsWhoseBitsDoNotFitAreRefused)
{
    LoadedDriver link(stringList({"DO1", "DI1"}));
    EXPECT_EQ(link.read(BlockItem, "DO1", 268435456), QByteArray());
    EXPECT_EQ(link.error(), "can't read 2147483648 bits from DO1");
    EXPECT_EQ(link.read(ByteItem, "DI", 268435456), QByteArray());
    EXPECT_EQ(link.error(), "can't read 2147483648 bits from DI65536 (read 268435456 byte(s) from 1-DI)");
    EXPECT_EQ(link.read(BlockItem, "SW3", std::numeric_limits<int>::max()), QByteArray());
    EXPECT_EQ(link.error(), "can't read 17179869176 bits from DO3");
    EXPECT_EQ(link.read(BlockItem, "DO3", 0x20000000), QByteArray());
    EXPECT_EQ(link.error(), "can't read 4294967296 bits from DO3");
    EXPECT_TRUE(link.isSilent());
}

TEST(UsedBits, WalkOverMoreThanTheWholeArea)
{
    LoadedDriver link(tagsOf("DO", {2, 100, 65535}));
    link.channel.setResponder(allOn);
    const QByteArray data = link.read(ByteItem, "DO2", 3 * 8192);
    ASSERT_EQ(data.size(), 3 * 8192);
    EXPECT_EQ(runsOf(link.channel, 1), "1@2 1@100 1@65535");
    EXPECT_EQ(data.count('\0'), 3 * 8192 - 3);
    EXPECT_EQ(data.at(0), 2);
    EXPECT_EQ(data.at(99 / 8), 1 << 99 % 8);
    EXPECT_EQ(data.at(65534 / 8), 1 << 65534 % 8);
}

namespace
{

// The walk as it is described: bit by bit, each search only after the last hit.
std::string walked(std::vector<int> used, int offset, int bits)
{
    std::sort(used.begin(), used.end());
    used.erase(std::unique(used.begin(), used.end()), used.end());
    std::string runs;
    auto from = used.begin();
    int runAddress = -1;
    int runLength = 0;
    for (int i = 0; i <= bits; ++i) {
        const auto hit = i < bits ? std::find(from, used.end(), (offset + i) % 65536) : used.end();
        if (hit != used.end()) {
            runAddress = runLength == 0 ? *hit : runAddress;
            ++runLength;
            from = hit + 1;
        } else if (runLength > 0) {
            runs += (runs.empty() ? "" : " ") + std::to_string(runLength) + "@" + std::to_string(runAddress);
            runLength = 0;
        }
    }
    return runs;
}

} // namespace

TEST(UsedBits, RandomSetsAreWalkedAsDescribed)
{
    std::mt19937 random(17);
    for (int round = 0; round < 60; ++round) {
        std::vector<int> used(60);
        for (int &address : used)
            address = static_cast<int>((random() % 200 + 65536 - 100) % 65536);
        LoadedDriver link(tagsOf("DO", used));
        link.channel.setResponder(allOn);
        for (int i = 0; i < 40; ++i) {
            const int offset = static_cast<int>((random() % 220 + 65536 - 110) % 65536);
            const int count = static_cast<int>(random() % 20);
            link.channel.forgetCalls();
            link.read(ByteItem, ("DO" + std::to_string(offset + 1)).c_str(), count);
            EXPECT_EQ(runsOf(link.channel, 1), walked(used, offset, 8 * count)) << offset << " " << count;
        }
    }
}
