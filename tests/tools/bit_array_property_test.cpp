#include "drivers/qt/qt_lines.h"
#include "drivers/tools/bit_array.h"
#include "tests/doubles/frames.h"
#include "tests/support/gtest_qt.h"
#include "tests/support/random_data.h"

#include <algorithm>
#include <vector>

/// The operations on packed bits against the same on a vector of bools.

namespace
{

typedef std::vector<bool> Bits;

size_t at(int index)
{
    return static_cast<size_t>(index);
}

Bits unpacked(const QByteArray &bytes)
{
    Bits bits;
    for (int i = 0; i < bytes.size(); ++i)
        for (int bit = 0; bit < 8; ++bit)
            bits.push_back(((static_cast<unsigned char>(bytes.at(i)) >> bit) & 1) != 0);
    return bits;
}

void growTo(Bits &bits, int count)
{
    const size_t whole = at((count + 7) / 8 * 8);
    if (bits.size() < whole)
        bits.resize(whole, false);
}

class BitArrayProperty : public testing::Test
{
protected:
    BitArrayProperty() : trace(__FILE__, __LINE__, random.trace()) {}

    RandomData random;
    testing::ScopedTrace trace;
};

} // namespace

TEST_F(BitArrayProperty, SetAndGet)
{
    for (int round = 0; round < 200; ++round) {
        QByteArray bytes = random.bytes(random.between(0, 8));
        Bits bits = unpacked(bytes);
        for (int step = 0; step < 30; ++step) {
            const int index = random.between(0, 90);
            const bool on = random.between(0, 1) != 0;
            setBit(bytes, index, on);
            growTo(bits, index + 1);
            bits[at(index)] = on;
            ASSERT_EQ(unpacked(bytes), bits) << index;
        }
        for (int i = 0; i < static_cast<int>(bits.size()); ++i)
            ASSERT_EQ(getBit(bytes, i), bits[at(i)]) << i;
    }
}

TEST_F(BitArrayProperty, Copy)
{
    for (int round = 0; round < 3000; ++round) {
        QByteArray target = random.bytes(random.between(0, 6));
        const QByteArray source = random.bytes(random.between(0, 6));
        const int start = random.between(0, 40);
        const int count = random.between(0, 8 * sizeOf(source));
        const QByteArray before = target;
        Bits expected = unpacked(target);
        const Bits from = unpacked(source);
        if (count > 0)
            growTo(expected, start + count);
        for (int k = 0; k < count; ++k)
            expected[at(start + k)] = from[at(k)];
        CopyBits(target, source, start, count);
        ASSERT_EQ(unpacked(target), expected)
            << toHex(before) << " <- " << toHex(source) << " at " << start << ", " << count;
    }
}

TEST_F(BitArrayProperty, FitAndClear)
{
    for (int round = 0; round < 3000; ++round) {
        const QByteArray original = random.bytes(random.between(0, 9));
        const int count = random.between(0, 8 * sizeOf(original));
        QByteArray bytes = original;
        FitBitArray(bytes, count);
        clearUnnecessaryBits(bytes, count);
        Bits expected = unpacked(original);
        expected.resize(at(count));
        growTo(expected, count);
        ASSERT_EQ(unpacked(bytes), expected) << toHex(original) << " to " << count;
    }
}

TEST_F(BitArrayProperty, Expand)
{
    for (int round = 0; round < 2000; ++round) {
        const QByteArray bytes = random.bytes(random.between(0, 9));
        Bits bits = unpacked(bytes);
        const int start = random.between(0, 90);
        const int count = random.between(0, 90);
        growTo(bits, start + count);
        QByteArray expected;
        for (int i = start; i < start + count; ++i)
            expected.append(bits[at(i)] ? '\1' : '\0');
        ASSERT_EQ(ExpandBitsToBytes(bytes, static_cast<unsigned short>(start), count), expected)
            << toHex(bytes) << " from " << start << ", " << count;
    }
}

TEST_F(BitArrayProperty, Shift)
{
    for (int round = 0; round < 3000; ++round) {
        const QByteArray original = random.bytes(random.between(1, 12));
        const int n = random.between(0, 8 * sizeOf(original) - 1);
        // What stays moves down, zeros follow, and the whole bytes that went out stand at the end.
        const Bits before = unpacked(original);
        Bits expected(before.begin() + n, before.end());
        expected.resize(at(8 * (sizeOf(original) - n / 8)), false);
        expected.insert(expected.end(), before.begin(), before.begin() + (n - n % 8));
        QByteArray shifted = original;
        RightShiftNBits(shifted, n);
        ASSERT_EQ(unpacked(shifted), expected) << toHex(original) << " by " << n;
    }
}

TEST_F(BitArrayProperty, CutOutOfABlock)
{
    for (int round = 0; round < 3000; ++round) {
        const QByteArray block = random.bytes(random.between(1, 30));
        const int first = random.between(0, 8 * sizeOf(block) - 1);
        const int count = random.between(1, 8 * sizeOf(block) - first);
        QByteArray cut = block;
        RightShiftNBits(cut, first);
        FitBitArray(cut, count);
        clearUnnecessaryBits(cut, count);
        const Bits all = unpacked(block);
        Bits expected(all.begin() + first, all.begin() + first + count);
        growTo(expected, count);
        ASSERT_EQ(unpacked(cut), expected) << toHex(block) << " from " << first << ", " << count;
    }
}
