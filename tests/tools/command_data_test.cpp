#include "drivers/tools/command_data.h"
#include "tests/doubles/frames.h"
#include "tests/support/gtest_qt.h"
#include "tests/support/random_data.h"

#include <limits>

namespace
{

const int MaxInt = std::numeric_limits<int>::max();
const int MinInt = std::numeric_limits<int>::min();
const unsigned int MaxUInt = std::numeric_limits<unsigned int>::max();

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

// Hosts have the numbers of the kinds compiled in.
TEST(CommandData, NumbersOfTheKinds)
{
    EXPECT_EQ(BitItem, 0);
    EXPECT_EQ(ByteItem, 1);
    EXPECT_EQ(WordItem, 2);
    EXPECT_EQ(DoubleWordItem, 3);
    EXPECT_EQ(EightByteItem, 4);
    EXPECT_EQ(BlockItem, 5);
    EXPECT_EQ(SecondBitItem, 6);
}

TEST(CommandData, PredicatesKnowTheirKindAlone)
{
    for (int kind = -1; kind <= SecondBitItem + 2; ++kind) {
        const CommunicatorCommand asked = command(kind, 1);
        EXPECT_EQ(isBitCommand(asked), kind == BitItem) << kind;
        EXPECT_EQ(isByteCommand(asked), kind == ByteItem) << kind;
        EXPECT_EQ(isWordCommand(asked), kind == WordItem) << kind;
        EXPECT_EQ(isDoubleWordCommand(asked), kind == DoubleWordItem) << kind;
        EXPECT_EQ(isBlockCommand(asked), kind == BlockItem) << kind;
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
    EXPECT_EQ(safeLength(BitItem, 9), 2);
    EXPECT_EQ(safeLength(SecondBitItem, 9), 2);
    EXPECT_EQ(safeLength(BitItem, 8), 1);
    EXPECT_EQ(safeLength(SecondBitItem, 1), 1);
    EXPECT_EQ(safeLength(BitItem, 0), 0);
    EXPECT_EQ(safeLength(ByteItem, 3), 3);
    EXPECT_EQ(safeLength(BlockItem, 3), 3);
    EXPECT_EQ(safeLength(WordItem, 3), 6);
    EXPECT_EQ(safeLength(DoubleWordItem, 3), 12);
    EXPECT_EQ(safeLength(EightByteItem, 3), 24);
    EXPECT_EQ(safeLength(7, 3), 0);
    EXPECT_EQ(safeLength(-1, 3), 0);
    EXPECT_EQ(safeLength(MaxInt, 3), 0);
}

TEST(CommandData, SafeLengthOfCountsAtTheLimits)
{
    EXPECT_EQ(safeLength(BitItem, MaxInt), 0x10000000);
    EXPECT_EQ(safeLength(BitItem, -1), 0x20000000);
    EXPECT_EQ(safeLength(SecondBitItem, MinInt), 0x10000000);
    EXPECT_EQ(safeLength(ByteItem, -1), -1);
    EXPECT_EQ(safeLength(WordItem, -3), -6);
    EXPECT_EQ(safeLength(WordItem, MaxInt), MaxInt);
    EXPECT_EQ(safeLength(DoubleWordItem, MaxInt / 4 + 1), MaxInt);
    EXPECT_EQ(safeLength(DoubleWordItem, MaxInt / 4), MaxInt / 4 * 4);
    EXPECT_EQ(safeLength(EightByteItem, MinInt), MinInt);
}

TEST(CommandData, SafeDataIsPaddedOrCut)
{
    EXPECT_EQ(ToSafeData(command(WordItem, 2), fromHex("01 02 03")), fromHex("01 02 03 00"));
    EXPECT_EQ(ToSafeData(command(WordItem, 2), fromHex("01 02 03 04 05 06")), fromHex("01 02 03 04"));
    EXPECT_EQ(ToSafeData(command(WordItem, 2), fromHex("01 02 03 04")), fromHex("01 02 03 04"));
    EXPECT_EQ(ToSafeData(command(DoubleWordItem, 1), QByteArray()), fromHex("00 00 00 00"));
    EXPECT_EQ(ToSafeData(command(BitItem, 9), fromHex("FF")), fromHex("FF 00"));
    EXPECT_EQ(ToSafeData(command(9, 5), fromHex("01 02")), QByteArray());
    EXPECT_EQ(ToSafeData(command(ByteItem, 0), fromHex("01 02")), QByteArray());
    EXPECT_EQ(ToSafeData(command(ByteItem, -1), fromHex("01 02")), QByteArray());
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
    EXPECT_EQ(NumOfBitsToNumOfWords(MaxUInt, 0), 0x10000000u);
    EXPECT_EQ(NumOfBitsToNumOfWords(MaxUInt, 1), 0u);
    EXPECT_EQ(NumOfBitsToNumOfDWords(0, MaxUInt), 0x08000000u);
    EXPECT_EQ(NumOfBitsToNumOfBytes(1, MaxUInt - 1), 0x20000000u);
    EXPECT_EQ(NumOfBytesToNumOfWords(MaxUInt), 0x80000000u);
    EXPECT_EQ(NumOfBytesToNumOfDWords(MaxUInt), 0x40000000u);
    EXPECT_EQ(NumOfBytesToNumOfQuadWords(MaxUInt), 0x20000000u);
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
