// Every request that a command can lead to: areas, kinds, offsets and counts.

#include "tests/exhaustive/expected_requests.h"
#include "tests/support/driver_test.h"
#include "tests/support/part_of_all.h"

#include <cstring>

namespace
{

typedef QuickChannel::Frame Frame;

const int EndOfArea = 65536;
const int OffsetsOfABlock = 64;

bool isEqual(const Frame &a, const Frame &b)
{
    return a.size == b.size && std::memcmp(a.bytes, b.bytes, static_cast<size_t>(a.size)) == 0;
}

std::string hexOf(const Frame &frame)
{
    return toHex(QByteArray(reinterpret_cast<const char *>(frame.bytes), frame.size));
}

// Whether a request stays in its area; those of functions 5 and 6 have one item.
bool isWithinTheArea(const Frame &request)
{
    const int first = request.bytes[2] * 256 + request.bytes[3];
    const bool isOfOne = request.bytes[1] == 5 || request.bytes[1] == 6;
    return first + (isOfOne ? 1 : request.bytes[4] * 256 + request.bytes[5]) <= EndOfArea;
}

// A driver with a slave whose items are all 0, and one command at a time.
class EveryRequest : public testing::Test
{
protected:
    EveryRequest() : part(500), data(patternBytes(600)), expected(), cases(0)
    {
        const ProjectDatabase project(QStringList(), 1);
        driver.read(&channel, makeCommand(EightByteItem, QString(), 0));
    }

    ~EveryRequest() override
    {
        EXPECT_GT(cases, 0);
        std::cout << cases << " commands" << std::endl;
    }

    void checkRead(const ExpectedArea &area, const ExpectedKind &kind, int offset, int count)
    {
        // Bytes of bit areas depend on the project.
        if (area.isBits && isOfBytes(kind))
            return;
        expectRead(area, kind, offset, count, expected);
        const QByteArray found = driver.read(&channel, command(area, kind, offset, count));
        ASSERT_EQ(found.size(), expected.dataSize) << name("read", area, kind, offset, count);
        compare("read", area, kind, offset, count);
    }

    void checkWrite(const ExpectedArea &area, const ExpectedKind &kind, int offset, int count)
    {
        expectWrite(area, kind, offset, count, data, expected);
        const bool isWritten = driver.write(&channel, command(area, kind, offset, count), data);
        ASSERT_EQ(isWritten, expected.isWritten) << name("write", area, kind, offset, count);
        compare("write", area, kind, offset, count);
    }

    void check(bool isWrite, const ExpectedArea &area, const ExpectedKind &kind, int offset, int count)
    {
        if (isWrite)
            checkWrite(area, kind, offset, count);
        else
            checkRead(area, kind, offset, count);
    }

    // Calls check(isWrite, area, kind) for each direction, area and kind.
    template <typename Check>
    static void forAll(const Check &check)
    {
        for (const bool isWrite : {false, true})
            for (const ExpectedArea &area : ExpectedAreas)
                for (const ExpectedKind &kind : ExpectedKinds)
                    check(isWrite, area, kind);
    }

    bool hasBlock(int offset) const { return part.has(static_cast<quint32>(offset / OffsetsOfABlock)); }

    PartOfAll part;

private:
    CommunicatorCommand &command(const ExpectedArea &area, const ExpectedKind &kind, int offset, int count)
    {
        channel.start();
        ++cases;
        next.dataType = kind.dataType;
        next.count = count;
        next.address = QLatin1String(area.name) + QString::number(offset + 1);
        return next;
    }

    static std::string name(const char *transfer, const ExpectedArea &area, const ExpectedKind &kind,
                            int offset, int count)
    {
        return std::string(transfer) + " " + std::to_string(count) + " of kind " +
               std::to_string(kind.dataType) + " at " + area.name + std::to_string(offset + 1);
    }

    void compare(const char *transfer, const ExpectedArea &area, const ExpectedKind &kind, int offset,
                 int count)
    {
        const std::string error =
            driver.hasError() ? driver.getLastError().toLatin1().constData() : std::string();
        ASSERT_EQ(error, expected.error) << name(transfer, area, kind, offset, count);
        ASSERT_EQ(channel.sentCount(), static_cast<int>(expected.frames.size()))
            << name(transfer, area, kind, offset, count);
        for (int i = 0; i < channel.sentCount(); ++i) {
            const Frame &sent = channel.sent(i);
            ASSERT_TRUE(isEqual(sent, expected.frames[static_cast<size_t>(i)]))
                << name(transfer, area, kind, offset, count) << "\nsent     " << hexOf(sent) << "\nexpected "
                << hexOf(expected.frames[static_cast<size_t>(i)]);
            ASSERT_TRUE(isWithinTheArea(sent)) << hexOf(sent);
        }
    }

    const QByteArray data;
    DriverModbusRtuSlaveOverTcp driver;
    ZerosChannel channel;
    CommunicatorCommand next;
    ExpectedRequests expected;
    long long cases;
};

// Whether a command can lead to a request for each item.
bool isOneByOne(bool isWrite, const ExpectedArea &area)
{
    return isWrite && (area.writeFunction == 5 || area.writeFunction == 6);
}

} // namespace

// Where there are at most some hundred counts, with every offset.
TEST_F(EveryRequest, EveryOffsetAndCount)
{
    forAll([this](bool isWrite, const ExpectedArea &area, const ExpectedKind &kind) {
        const int most = limitOf(area, kind, isWrite) + 2;
        if (isOfBits(kind) || isOneByOne(isWrite, area))
            return;
        for (int offset = 0; offset < EndOfArea; ++offset)
            for (int count = -2; hasBlock(offset) && count <= most; ++count)
                ASSERT_NO_FATAL_FAILURE(check(isWrite, area, kind, offset, count));
    });
}

// Few items, and all around the limits, with every offset.
TEST_F(EveryRequest, EveryOffsetWithCountsThatMatter)
{
    forAll([this](bool isWrite, const ExpectedArea &area, const ExpectedKind &kind) {
        const int limit = limitOf(area, kind, isWrite);
        std::vector<int> counts = {-2, -1, 0, 1, 2, 3, 7, 8, 9, 15, 16, 17};
        if (!isOneByOne(isWrite, area))
            counts.insert(counts.end(),
                          {limit - 32, limit - 31, limit - 2, limit - 1, limit, limit + 1, limit + 2});
        for (int offset = 0; offset < EndOfArea; ++offset)
            for (size_t i = 0; hasBlock(offset) && i < counts.size(); ++i)
                ASSERT_NO_FATAL_FAILURE(check(isWrite, area, kind, offset, counts[i]));
    });
}

// Every count with offsets at both ends of the area, where the count just ends at its end, and some between.
TEST_F(EveryRequest, EveryCountWithOffsetsThatMatter)
{
    forAll([this](bool isWrite, const ExpectedArea &area, const ExpectedKind &kind) {
        const int most = limitOf(area, kind, isWrite) + 2;
        for (int count = -2; count <= most; ++count) {
            if (!part.has(static_cast<quint32>(count + 2)))
                continue;
            std::vector<int> offsets = {0, 1, 2, 255, 256, EndOfArea - 2, EndOfArea - 1};
            for (int registers = 1; registers <= 16; registers *= 2)
                for (int around = -2; around <= 2; ++around)
                    offsets.push_back(EndOfArea - qMax(count, 0) / registers + around);
            for (int offset = 997; offset < EndOfArea; offset += 3989)
                offsets.push_back(offset);
            for (const int offset : offsets) {
                if (offset < 0 || offset >= EndOfArea)
                    continue;
                ASSERT_NO_FATAL_FAILURE(check(isWrite, area, kind, offset, count));
            }
        }
    });
}
