#include "tests/support/driver_test.h"
#include "tests/support/little_memory.h"

#include <algorithm>

// Commands that would take more memory than there is: the process goes on, and the host gets a text.

namespace
{

const int Megabyte = 1 << 20;

// A driver of a project that uses one input and one coil, both of which are off.
struct LimitedLink : LoadedDriver {
    LimitedLink() : LoadedDriver(stringList({"DI1", "DO1"}))
    {
        channel.setResponder([](const QByteArray &request) { return goodReply(request, QByteArray()); });
    }

    // What is wrong with a read that must end in this text, and without data.
    std::string refusal(const CommunicatorCommand &command, const std::string &text)
    {
        const QByteArray data = driver.read(&channel, command);
        const std::string found = error();
        return data.isEmpty() && found == text ? std::string() : found + ", not " + text;
    }
};

std::string described(const QByteArray &data, const std::string &error)
{
    return std::to_string(data.size()) + " bytes, " + error;
}

} // namespace

TEST(MemoryLimit, BytesOfBitsThatDoNotFit)
{
    for (const char *area : {"DI", "DO"}) {
        inLittleMemory(200, [area] {
            LimitedLink link;
            const CommunicatorCommand command =
                makeCommand(ByteItem, QLatin1String(area) + QLatin1String("100"), 268435455);
            const std::string address = std::string(area) + "100";
            return link.refusal(command, "can't read 2147483640 bits from " + address +
                                             " (read 268435455 byte(s) from 1-" + address + ")");
        });
    }
}

TEST(MemoryLimit, BytesOfBitsThatFit)
{
    inLittleMemory(64, [] {
        LimitedLink link;
        const int count = 40 * Megabyte;
        const QByteArray data = link.read(BlockItem, "DI100", count);
        const bool isZero = std::all_of(data.begin(), data.end(), [](char byte) { return byte == '\0'; });
        return data.size() == count && isZero ? "" : described(data, link.error());
    });
}

// One byte more than the bits of a whole area take, with the used bit on.
TEST(MemoryLimit, BytesBeyondTheAreaAreZero)
{
    LoadedDriver link(stringList({"DI1"}));
    link.channel.setResponder([](const QByteArray &request) { return goodReply(request, fromHex("01")); });
    const QByteArray data = link.read(BlockItem, "DI1", 8193);
    EXPECT_EQ(link.error(), NoError);
    EXPECT_EQ(data, fromHex("01") + QByteArray(8192, '\0'));
}

TEST(MemoryLimit, CountsOfEveryKind)
{
    inLittleMemory(100, [] {
        LimitedLink link;
        const QByteArray data(20 * Megabyte, 'x');
        for (int kind = BitItem; kind <= SecondBitItem; ++kind)
            for (const int count : {std::numeric_limits<int>::min(), -1, 40 * Megabyte, 1 << 30,
                                    std::numeric_limits<int>::max()})
                for (const char *address : {"HR1", "IR1.7", "DI9", "DO9", "FN5DO9", "FN6HR1.7"}) {
                    link.read(kind, address, count);
                    if (link.write(kind, address, count, data))
                        return std::string("wrote ") + address;
                }
        return std::string();
    });
}

TEST(MemoryLimit, AddressTextsThatFitButNotTwentyTimes)
{
    inLittleMemory(100, [] {
        LimitedLink link;
        CommunicatorCommand command = makeCommand(WordItem, QString(10 * Megabyte, QLatin1Char('A')), 1);
        const std::string letters(100, 'A');
        const std::string failure = link.refusal(command, "can't read 1 bits from " + letters);
        if (link.driver.write(&link.channel, command, QByteArray(2, '\0')) ||
            link.error() != "can't write 1 bits to " + letters)
            return link.error();
        return failure;
    });
}

TEST(MemoryLimit, LongAddressTextsThatFit)
{
    LoadedDriver link;
    const std::string zeros(1000, '0');
    link.channel.addReply(framed("01 03 02 12 34"));
    EXPECT_EQ(link.read(WordItem, ("HR" + zeros + "1").c_str(), 1), fromHex("34 12"));
    const std::string area(1000, 'A');
    link.read(WordItem, area.c_str(), 2);
    EXPECT_EQ(link.error(),
              "can't read any word from " + area + "65536 (read 2 word(s) from 1-" + area + ")");
    EXPECT_FALSE(link.write(WordItem, area.c_str(), 1, QByteArray()));
    EXPECT_EQ(link.error(), "can't write any word to " + area + " (write 1 word to 1-" + area + ")");
}
