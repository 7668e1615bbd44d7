#include "drivers/tools/command_data.h"
#include "tests/doubles/frames.h"
#include "tests/support/gtest_qt.h"
#include "tests/support/random_data.h"

#include <limits>

namespace
{

const int LargestInt = std::numeric_limits<int>::max();
const int SmallestInt = std::numeric_limits<int>::min();
const unsigned int LargestUInt = std::numeric_limits<unsigned int>::max();

CommunicatorCommand command(int dataType, int count)
{
    CommunicatorCommand made;
    made.dataType = dataType;
    made.count = count;
    return made;
}

int safeLength(int dataType, int count)
{
    return GetSafeDataLen(command(dataType, count));
}

unsigned int roundedUp(quint64 value, unsigned int divisor)
{
    return static_cast<unsigned int>((value + divisor - 1) / divisor);
}

} // namespace

TEST(CommandData, PredicatesKnowTheirKindAlone)
{
    for (int type = -1; type <= 8; ++type) {
        const CommunicatorCommand asked = command(type, 1);
        EXPECT_EQ(isBitCommand(asked), type == 0) << type;
        EXPECT_EQ(isByteCommand(asked), type == 1) << type;
        EXPECT_EQ(isWordCommand(asked), type == 2) << type;
        EXPECT_EQ(isDoubleWordCommand(asked), type == 3) << type;
        EXPECT_EQ(isBlockCommand(asked), type == 5) << type;
    }
}

TEST(CommandData, BitData)
{
    EXPECT_TRUE(getBitData(fromHex("01")));
    EXPECT_TRUE(getBitData(fromHex("FF 00")));
    EXPECT_FALSE(getBitData(fromHex("FE 01")));
    EXPECT_FALSE(getBitData(QByteArray()));
}

TEST(CommandData, SafeLengthOfEveryKind)
{
    EXPECT_EQ(safeLength(0, 9), 2);
    EXPECT_EQ(safeLength(6, 9), 2);
    EXPECT_EQ(safeLength(0, 8), 1);
    EXPECT_EQ(safeLength(6, 1), 1);
    EXPECT_EQ(safeLength(0, 0), 0);
    EXPECT_EQ(safeLength(1, 3), 3);
    EXPECT_EQ(safeLength(5, 3), 3);
    EXPECT_EQ(safeLength(2, 3), 6);
    EXPECT_EQ(safeLength(3, 3), 12);
    EXPECT_EQ(safeLength(4, 3), 24);
    EXPECT_EQ(safeLength(7, 3), 0);
    EXPECT_EQ(safeLength(-1, 3), 0);
    EXPECT_EQ(safeLength(LargestInt, 3), 0);
}

TEST(CommandData, SafeLengthOfCountsAtTheLimits)
{
    EXPECT_EQ(safeLength(0, LargestInt), 0x10000000);
    EXPECT_EQ(safeLength(0, -1), 0x20000000);
    EXPECT_EQ(safeLength(6, SmallestInt), 0x10000000);
    EXPECT_EQ(safeLength(1, -1), -1);
    EXPECT_EQ(safeLength(2, -3), -6);
    EXPECT_EQ(safeLength(2, LargestInt), LargestInt);
    EXPECT_EQ(safeLength(3, LargestInt / 4 + 1), LargestInt);
    EXPECT_EQ(safeLength(3, LargestInt / 4), LargestInt / 4 * 4);
    EXPECT_EQ(safeLength(4, SmallestInt), SmallestInt);
}

TEST(CommandData, SafeDataIsPaddedOrCut)
{
    EXPECT_EQ(ToSafeData(command(2, 2), fromHex("01 02 03")), fromHex("01 02 03 00"));
    EXPECT_EQ(ToSafeData(command(2, 2), fromHex("01 02 03 04 05 06")), fromHex("01 02 03 04"));
    EXPECT_EQ(ToSafeData(command(2, 2), fromHex("01 02 03 04")), fromHex("01 02 03 04"));
    EXPECT_EQ(ToSafeData(command(3, 1), QByteArray()), fromHex("00 00 00 00"));
    EXPECT_EQ(ToSafeData(command(0, 9), fromHex("FF")), fromHex("FF 00"));
    EXPECT_EQ(ToSafeData(command(9, 5), fromHex("01 02")), QByteArray());
    EXPECT_EQ(ToSafeData(command(1, 0), fromHex("01 02")), QByteArray());
    EXPECT_EQ(ToSafeData(command(1, -1), fromHex("01 02")), QByteArray());
}

TEST(CommandData, BitsToItems)
{
    EXPECT_EQ(NumOfBitsToNumOfWords(15, 2), 2u);
    EXPECT_EQ(NumOfBitsToNumOfWords(0, 16), 1u);
    EXPECT_EQ(NumOfBitsToNumOfWords(0, 17), 2u);
    EXPECT_EQ(NumOfBitsToNumOfWords(0, 0), 0u);
    EXPECT_EQ(NumOfBitsToNumOfDWords(31, 1), 1u);
    EXPECT_EQ(NumOfBitsToNumOfDWords(31, 2), 2u);
    EXPECT_EQ(NumOfBitsToNumOfDWords(0, 0), 0u);
    EXPECT_EQ(NumOfBitsToNumOfBytes(7, 1), 1u);
    EXPECT_EQ(NumOfBitsToNumOfBytes(7, 2), 2u);
    EXPECT_EQ(NumOfBitsToNumOfBytes(0, 0), 0u);
}

TEST(CommandData, BytesToItems)
{
    EXPECT_EQ(NumOfBytesToNumOfWords(0), 0u);
    EXPECT_EQ(NumOfBytesToNumOfWords(2), 1u);
    EXPECT_EQ(NumOfBytesToNumOfWords(3), 2u);
    EXPECT_EQ(NumOfBytesToNumOfDWords(4), 1u);
    EXPECT_EQ(NumOfBytesToNumOfDWords(5), 2u);
    EXPECT_EQ(NumOfBytesToNumOfQuadWords(8), 1u);
    EXPECT_EQ(NumOfBytesToNumOfQuadWords(9), 2u);
}

TEST(CommandData, RoundingUpDoesNotWrapOnTopOfTheSum)
{
    EXPECT_EQ(NumOfBitsToNumOfWords(LargestUInt, 0), 0x10000000u);
    EXPECT_EQ(NumOfBitsToNumOfWords(LargestUInt, 1), 0u);
    EXPECT_EQ(NumOfBitsToNumOfDWords(0, LargestUInt), 0x08000000u);
    EXPECT_EQ(NumOfBitsToNumOfBytes(1, LargestUInt - 1), 0x20000000u);
    EXPECT_EQ(NumOfBytesToNumOfWords(LargestUInt), 0x80000000u);
    EXPECT_EQ(NumOfBytesToNumOfDWords(LargestUInt), 0x40000000u);
    EXPECT_EQ(NumOfBytesToNumOfQuadWords(LargestUInt), 0x20000000u);
}

TEST(CommandData, CountsAgreeWithWiderArithmetic)
{
    RandomData random;
    SCOPED_TRACE(random.trace());
    for (int i = 0; i < 10000; ++i) {
        const unsigned int start = random.number() >> random.between(0, 31);
        const unsigned int count = random.number() >> random.between(0, 31);
        const quint64 sum = (quint64(start) + count) % (quint64(1) << 32);
        ASSERT_EQ(NumOfBitsToNumOfBytes(start, count), roundedUp(sum, 8)) << start << " " << count;
        ASSERT_EQ(NumOfBitsToNumOfWords(start, count), roundedUp(sum, 16)) << start << " " << count;
        ASSERT_EQ(NumOfBitsToNumOfDWords(start, count), roundedUp(sum, 32)) << start << " " << count;
        ASSERT_EQ(NumOfBytesToNumOfWords(count), roundedUp(count, 2)) << count;
        ASSERT_EQ(NumOfBytesToNumOfDWords(count), roundedUp(count, 4)) << count;
        ASSERT_EQ(NumOfBytesToNumOfQuadWords(count), roundedUp(count, 8)) << count;
    }
}
