#include "drivers/tools/bit_array.h"
#include "tests/doubles/frames.h"
#include "tests/support/gtest_qt.h"

#include <limits>
#include <numeric>
#include <vector>

namespace
{

template <typename Integer>
void checkEveryBitOf()
{
    const auto width = static_cast<int>(8 * sizeof(Integer));
    const Integer none = 0;
    const Integer all = std::numeric_limits<Integer>::max();
    for (int i = 0; i < 65536; ++i) {
        const auto index = static_cast<unsigned short>(i);
        const auto bit = static_cast<Integer>(i < width ? Integer(1) << i : 0);
        ASSERT_EQ(setBit(none, index), bit) << i;
        ASSERT_EQ(setBit(all, index), all) << i;
        ASSERT_EQ(clearBit(all, index), static_cast<Integer>(all - bit)) << i;
        ASSERT_EQ(clearBit(none, index), none) << i;
        ASSERT_EQ(getBit(all, index), i < width) << i;
        ASSERT_EQ(getBit(static_cast<Integer>(all - bit), index), false) << i;
    }
}

QByteArray withBit(const char *hexText, int index, bool on)
{
    QByteArray bits = fromHex(hexText);
    setBit(bits, index, on);
    return bits;
}

QByteArray fitted(const char *hexText, int numBits)
{
    QByteArray bits = fromHex(hexText);
    FitBitArray(bits, numBits);
    return bits;
}

QByteArray cleared(const char *hexText, int numBits)
{
    QByteArray bits = fromHex(hexText);
    clearUnnecessaryBits(bits, numBits);
    return bits;
}

QByteArray shifted(const char *hexText, int n)
{
    QByteArray bits = fromHex(hexText);
    RightShiftNBits(bits, n);
    return bits;
}

QByteArray copied(const char *targetHex, const char *sourceHex, int targetStart, int count)
{
    QByteArray target = fromHex(targetHex);
    CopyBits(target, fromHex(sourceHex), targetStart, count);
    return target;
}

} // namespace

TEST(IntegerBits, EveryBitOfEveryWidth)
{
    checkEveryBitOf<unsigned char>();
    checkEveryBitOf<unsigned short>();
    checkEveryBitOf<unsigned int>();
}

TEST(IntegerBits, IndexBeyondTheWidthDoesNothing)
{
    EXPECT_EQ(setBit(static_cast<unsigned short>(0), 15), 0x8000);
    EXPECT_EQ(setBit(static_cast<unsigned short>(0), 16), 0);
    EXPECT_EQ(clearBit(static_cast<unsigned char>(0xFF), 8), 0xFF);
    EXPECT_FALSE(getBit(0xFFFFFFFFu, 32));
}

TEST(ArrayBits, Get)
{
    const QByteArray bits = fromHex("00 02");
    EXPECT_TRUE(getBit(bits, 9));
    EXPECT_FALSE(getBit(bits, 8));
    EXPECT_FALSE(getBit(bits, 10));
    EXPECT_FALSE(getBit(bits, 16));
    EXPECT_FALSE(getBit(bits, -1));
    EXPECT_FALSE(getBit(bits, std::numeric_limits<int>::max()));
    EXPECT_FALSE(getBit(QByteArray(), 0));
    EXPECT_TRUE(getBit(reinterpret_cast<const unsigned char *>(bits.constData()), 9));
    EXPECT_FALSE(getBit(reinterpret_cast<const unsigned char *>(bits.constData()), 15));
}

TEST(ArrayBits, GetEndsWithTheArray)
{
    const char bytes[] = {'\xFF', '\xFF'};
    EXPECT_FALSE(getBit(QByteArray::fromRawData(bytes, 1), 8));
}

TEST(ArrayBits, SetGrowsTheArrayWithZeros)
{
    EXPECT_EQ(withBit("00 00", 17, true), fromHex("00 00 02"));
    EXPECT_EQ(withBit("", 31, true), fromHex("00 00 00 80"));
    EXPECT_EQ(withBit("FF", 17, false), fromHex("FF 00 00"));
    EXPECT_EQ(withBit("FF FF", 9, false), fromHex("FF FD"));
    EXPECT_EQ(withBit("00 00", 15, true), fromHex("00 80"));
    EXPECT_EQ(withBit("00", -1, true), fromHex("00"));
}

TEST(ArrayBits, SetInMemory)
{
    unsigned char bits[] = {0x00, 0xFF};
    setBit(bits, 0, true);
    setBit(bits, 7, true);
    setBit(bits, 8, false);
    setBit(bits, 9, true);
    EXPECT_EQ(bits[0], 0x81);
    EXPECT_EQ(bits[1], 0xFE);
}

TEST(ArrayBits, SetLeavesCopiesAlone)
{
    QByteArray bits = fromHex("00");
    const QByteArray copy = bits;
    setBit(bits, 0, true);
    EXPECT_EQ(copy, fromHex("00"));
}

TEST(ArrayBits, Copy)
{
    EXPECT_EQ(copied("00", "03", 3, 2), fromHex("18"));
    EXPECT_EQ(copied("FF", "00", 3, 2), fromHex("E7"));
    EXPECT_EQ(copied("00", "FF", 6, 4), fromHex("C0 03"));
    EXPECT_EQ(copied("00", "FF", 0, 0), fromHex("00"));
    EXPECT_EQ(copied("00", "FF", 3, -1), fromHex("00"));
    EXPECT_EQ(copied("00", "FF", -1, 4), fromHex("00"));
    EXPECT_EQ(copied("", "FF 01", 7, 9), fromHex("80 FF"));
    EXPECT_EQ(copied("FF FF", "FF", 4, 10), fromHex("FF CF"));
    EXPECT_EQ(copied("FF FF FF", "5A", 0, 20), fromHex("5A 00 F0"));
}

TEST(ArrayBits, Fit)
{
    EXPECT_EQ(fitted("01 02 03 04", 16), fromHex("01 02"));
    EXPECT_EQ(fitted("01 02 03 04", 17), fromHex("01 02 03"));
    EXPECT_EQ(fitted("01 02 03 04", 0), QByteArray());
    EXPECT_EQ(fitted("01 02 03 04", -8), QByteArray());
    EXPECT_EQ(fitted("01", 17), fromHex("01 00 00"));
    EXPECT_EQ(fitted("01", std::numeric_limits<int>::min()), QByteArray());
}

TEST(ArrayBits, ClearUnnecessary)
{
    EXPECT_EQ(cleared("FF FF", 12), fromHex("FF 0F"));
    EXPECT_EQ(cleared("FF FF", 16), fromHex("FF FF"));
    EXPECT_EQ(cleared("FF FF", 1), fromHex("01 FF"));
    EXPECT_EQ(cleared("FF FF", 8), fromHex("FF FF"));
    EXPECT_EQ(cleared("FF FF", 0), fromHex("FF FF"));
    EXPECT_EQ(cleared("FF FF", 17), fromHex("FF FF"));
    EXPECT_EQ(cleared("FF FF", -3), fromHex("FF FF"));
    EXPECT_EQ(cleared("", 3), QByteArray());
}

TEST(ArrayBits, Expand)
{
    EXPECT_EQ(ExpandBitsToBytes(fromHex("05"), 0, 4), fromHex("01 00 01 00"));
    EXPECT_EQ(ExpandBitsToBytes(fromHex("00 81"), 8, 8), fromHex("01 00 00 00 00 00 00 01"));
    EXPECT_EQ(ExpandBitsToBytes(fromHex("80 01"), 7, 2), fromHex("01 01"));
    EXPECT_EQ(ExpandBitsToBytes(fromHex("FF"), 6, 4), fromHex("01 01 00 00"));
    EXPECT_EQ(ExpandBitsToBytes(fromHex("FF"), 0, 0), QByteArray());
    EXPECT_EQ(ExpandBitsToBytes(fromHex("FF"), 0, -1), QByteArray());
}

TEST(ArrayBits, ShiftWithinBytes)
{
    EXPECT_EQ(shifted("F0 0F", 4), fromHex("FF 00"));
    EXPECT_EQ(shifted("01 80 FF", 1), fromHex("00 C0 7F"));
    EXPECT_EQ(shifted("81", 7), fromHex("01"));
    EXPECT_EQ(shifted("81 42", 0), fromHex("81 42"));
}

TEST(ArrayBits, ShiftedOutBytesStandAtTheEnd)
{
    EXPECT_EQ(shifted("11 22 33", 8), fromHex("22 33 11"));
    EXPECT_EQ(shifted("11 22 33", 12), fromHex("32 03 11"));
    EXPECT_EQ(shifted("11 22 33", 16), fromHex("33 11 22"));
    EXPECT_EQ(shifted("11 22 33", 23), fromHex("00 11 22"));
    EXPECT_EQ(shifted("11 22 B3", 23), fromHex("01 11 22"));
}

TEST(ArrayBits, ShiftOutsideTheArrayDoesNothing)
{
    EXPECT_EQ(shifted("11 22 33", 24), fromHex("11 22 33"));
    EXPECT_EQ(shifted("11 22 33", std::numeric_limits<int>::max()), fromHex("11 22 33"));
    EXPECT_EQ(shifted("11 22 33", -1), fromHex("11 22 33"));
    EXPECT_EQ(shifted("", 3), QByteArray());
    EXPECT_EQ(shifted("", 0), QByteArray());
}

TEST(ArrayBits, Rotate)
{
    for (int k = 0; k <= 9; ++k)
        for (int m = 0; m <= 9; ++m) {
            std::vector<unsigned char> items(static_cast<size_t>(k + m) + 1);
            std::iota(items.begin(), items.end(), static_cast<unsigned char>(0));
            std::vector<unsigned char> expected = items;
            for (int i = 0; i < k + m; ++i)
                expected[static_cast<size_t>(i)] = static_cast<unsigned char>((i + k) % (k + m));
            RotateArray<unsigned char>(items.data(), k, m);
            EXPECT_EQ(items, expected) << k << " " << m;
        }
}

TEST(ArrayBits, RotateByLessThanOneDoesNothing)
{
    unsigned char items[] = {1, 2, 3};
    RotateArray(items, -1, 2);
    RotateArray(items, 2, -1);
    EXPECT_EQ(QByteArray(reinterpret_cast<const char *>(items), 3), fromHex("01 02 03"));
}
