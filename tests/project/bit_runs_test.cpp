#include "drivers/modbus_rtu_slave_over_tcp/project/bit_runs.h"
#include "tests/support/random_data.h"

#include <gtest/gtest.h>

#include <limits>
#include <ostream>
#include <string>

namespace
{

const int MaxInt = std::numeric_limits<int>::max();

/// Each run as address*length@position.
std::string described(const std::vector<BitRun> &runs)
{
    std::string text;
    for (const BitRun &run : runs)
        text += (text.empty() ? "" : " ") + std::to_string(run.address) + "*" + std::to_string(run.length) +
                "@" + std::to_string(run.position);
    return text;
}

struct RunCase {
    UShortVector used;
    unsigned short offset;
    int count;
    const char *runs;
};

void PrintTo(const RunCase &c, std::ostream *out)
{
    *out << c.count << " bits from " << c.offset << " of";
    for (const ushort address : c.used)
        *out << ' ' << address;
}

class BitRunsOf : public testing::TestWithParam<RunCase>
{
};

} // namespace

TEST_P(BitRunsOf, AreFoundInTheirPlaces)
{
    const RunCase &c = GetParam();
    EXPECT_EQ(described(bitRuns(c.used, c.offset, c.count)), c.runs);
}

const RunCase gaps[] = {
    {{0, 1, 2, 5}, 0, 8, "0*3@0 5*1@5"},           {{8, 9, 10, 11, 12, 13, 14, 15}, 0, 16, "8*8@8"},
    {{1, 3, 5}, 0, 8, "1*1@1 3*1@3 5*1@5"},        {{100, 101, 110}, 100, 16, "100*2@0 110*1@10"},
    {{100, 101, 110}, 101, 16, "101*1@0 110*1@9"}, {{100, 101, 110}, 102, 16, "110*1@8"},
};
INSTANTIATE_TEST_SUITE_P(BetweenGaps, BitRunsOf, testing::ValuesIn(gaps));

const RunCase ends[] = {
    {{3, 4, 5, 6}, 0, 3, ""},
    {{3, 4, 5, 6}, 0, 4, "3*1@3"},
    {{3, 4, 5, 6}, 0, 6, "3*3@3"},
    {{3, 4, 5, 6}, 0, 7, "3*4@3"},
    {{3, 4, 6, 7}, 4, 3, "4*1@0 6*1@2"},
    {{0}, 0, 1, "0*1@0"},
    {{1}, 0, 1, ""},
};
INSTANTIATE_TEST_SUITE_P(UpToTheEndOfTheWalk, BitRunsOf, testing::ValuesIn(ends));

const RunCase nothing[] = {
    {{}, 0, 8, ""},
    {{}, 65535, MaxInt, ""},
    {{0, 1}, 0, 0, ""},
    {{0, 1}, 0, -8, ""},
    {{0, 1}, 1, std::numeric_limits<int>::min(), ""},
    {{0, 1}, 2, 8, ""},
};
INSTANTIATE_TEST_SUITE_P(OfNothing, BitRunsOf, testing::ValuesIn(nothing));

// From 65535 the walk goes on at 0, unless it has passed a used address: it never turns back.
const RunCase wraps[] = {
    {{0, 1, 2, 3}, 65532, 8, "0*4@4"},
    {{3}, 65532, 8, "3*1@7"},
    {{4}, 65532, 8, ""},
    {{3, 65533}, 65532, 8, "65533*1@1"},
    {{0, 65535}, 65535, 8, "65535*1@0"},
    {{0, 65535}, 65534, 8, "65535*1@1"},
    {{5, 6, 20}, 10, 32, "20*1@10"},
    {{5, 6}, 10, 65536, "5*2@65531"},
    {{5, 6}, 10, 65532, "5*1@65531"},
    {{5, 6}, 10, 65531, ""},
    {{5, 6}, 5, MaxInt, "5*2@0"},
    {{5, 6}, 7, MaxInt, "5*2@65534"},
    {{5, 6}, 6, MaxInt, "6*1@0"},
};
INSTANTIATE_TEST_SUITE_P(PastTheEndOfTheArea, BitRunsOf, testing::ValuesIn(wraps));

namespace
{

/// The walk, bit for bit, with searches that begin after the last hit.
std::string walked(const UShortVector &used, unsigned short offset, int count)
{
    std::vector<BitRun> runs;
    bool isOpen = false;
    int from = 0;
    for (int i = 0; i < count; ++i) {
        const auto address = static_cast<unsigned short>(offset + i);
        const int found = ModbusBitSet::setContains(used, from, address);
        if (found >= 0) {
            from = found + 1;
            if (!isOpen)
                runs.push_back({address, 0, i});
            ++runs.back().length;
        }
        isOpen = found >= 0;
    }
    return described(runs);
}

} // namespace

TEST(BitRuns, AreThoseOfAWalkBitForBit)
{
    RandomData random;
    SCOPED_TRACE(random.trace());
    for (int round = 0; round < 200; ++round) {
        // All within 64 addresses of the end of the area, on both sides of it.
        const auto nearTheEnd = [&] { return static_cast<ushort>(random.between(-64, 63)); };
        UShortVector used;
        for (int i = random.between(0, 100); i > 0; --i)
            used.push_back(nearTheEnd());
        ModbusBitSet::setSort(used);
        const ushort offset = nearTheEnd();
        const int count = random.between(0, 3) == 0 ? 70000 : random.between(0, 130);
        ASSERT_EQ(described(bitRuns(used, offset, count)), walked(used, offset, count))
            << count << " bits from " << offset;
    }
}

TEST(BitRuns, WholeAreaIsOneRun)
{
    UShortVector used;
    for (int address = 0; address < 65536; ++address)
        used.push_back(static_cast<ushort>(address));
    EXPECT_EQ(described(bitRuns(used, 0, 65536)), "0*65536@0");
    EXPECT_EQ(described(bitRuns(used, 0, MaxInt)), "0*65536@0");
    EXPECT_EQ(described(bitRuns(used, 1, 65536)), "1*65535@0");
}
