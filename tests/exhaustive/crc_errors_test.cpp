// Which errors on the line the CRC of a frame shows, for all frames of up to 256 bytes.
//
// The CRC is linear: whether a pattern of wrong bits goes unnoticed does not depend on the frame. So each bit
// has a syndrome, the change of the CRC when it alone is wrong, and a pattern goes unnoticed when the
// syndromes of its bits cancel out.

#include "drivers/modbus_rtu_slave_over_tcp/rtu_frame.h"
#include "tests/support/driver_test.h"
#include "tests/support/random_data.h"

#include <set>
#include <vector>

namespace
{

const int Bytes = 256;
const int Bits = 8 * Bytes;

bool isAccepted(const QByteArray &frame)
{
    return ModbusRTUSlaveCheckCRC(reinterpret_cast<const unsigned char *>(frame.constData()),
                                  static_cast<unsigned int>(frame.size()));
}

// Bits in the order in which a serial line carries them: the lowest of each byte first.
QByteArray withWrongBit(QByteArray frame, int bit)
{
    frame[bit / 8] = static_cast<char>(frame.at(bit / 8) ^ 1 << bit % 8);
    return frame;
}

int crcOfFrame(const QByteArray &content)
{
    const QByteArray request = ModbusRTUSlaveBuildWriteSingleRequest(
        static_cast<unsigned char>(content.at(0)), static_cast<unsigned char>(content.at(1)),
        static_cast<unsigned short>(wordAt(content, 2)), content.mid(4));
    const QByteArray crc = request.right(2);
    return byteAt(crc, 0) | byteAt(crc, 1) << 8;
}

// Of the longest frame. A shorter one has the last of them, since a frame begins where its CRC begins to
// count.
std::vector<int> syndromes()
{
    const QByteArray zeros(Bytes - 2, '\0');
    const int crcOfZeros = crcOfFrame(zeros);
    std::vector<int> all;
    for (int bit = 0; bit < 8 * zeros.size(); ++bit)
        all.push_back(crcOfFrame(withWrongBit(zeros, bit)) ^ crcOfZeros);
    for (int bit = 0; bit < 16; ++bit)
        all.push_back(1 << bit);
    return all;
}

} // namespace

TEST(CrcErrors, CrcIsLinear)
{
    RandomData random;
    SCOPED_TRACE(random.trace());
    for (int i = 0; i < 2000; ++i) {
        const int size = random.between(5, Bytes - 2);
        const QByteArray a = random.bytes(size);
        const QByteArray b = random.bytes(size);
        QByteArray difference = a;
        for (int k = 0; k < size; ++k)
            difference[k] = static_cast<char>(a.at(k) ^ b.at(k));
        ASSERT_EQ(crcOfFrame(a) ^ crcOfFrame(b), crcOfFrame(difference) ^ crcOfFrame(QByteArray(size, '\0')));
    }
}

// The start of the CRC is not 0, so what precedes a bit does not matter: a bit has the same syndrome in every
// frame that ends as far after it.
TEST(CrcErrors, SyndromesDependOnTheDistanceToTheEnd)
{
    const std::vector<int> all = syndromes();
    for (int size = 5; size <= Bytes - 2; ++size) {
        const QByteArray zeros(size, '\0');
        for (const int bit : {0, 7, 8, 8 * size - 1})
            ASSERT_EQ(crcOfFrame(withWrongBit(zeros, bit)) ^ crcOfFrame(zeros),
                      all[static_cast<size_t>(bit + 8 * (Bytes - 2 - size))]);
    }
}

TEST(CrcErrors, OneBit)
{
    for (const int syndrome : syndromes())
        ASSERT_NE(syndrome, 0);
    const QByteArray frame = framed(patternBytes(Bytes - 2));
    ASSERT_TRUE(isAccepted(frame));
    for (int bit = 0; bit < Bits; ++bit)
        ASSERT_FALSE(isAccepted(withWrongBit(frame, bit))) << bit;
}

TEST(CrcErrors, TwoBits)
{
    const std::vector<int> all = syndromes();
    ASSERT_EQ(std::set<int>(all.begin(), all.end()).size(), all.size());
}

TEST(CrcErrors, ThreeBits)
{
    const std::vector<int> all = syndromes();
    std::vector<bool> isSyndrome(65536);
    for (const int syndrome : all)
        isSyndrome[static_cast<size_t>(syndrome)] = true;
    for (size_t i = 0; i < all.size(); ++i)
        for (size_t k = i + 1; k < all.size(); ++k)
            ASSERT_FALSE(isSyndrome[static_cast<size_t>(all[i] ^ all[k])]) << i << " " << k;
}

// The first bit of a burst is wrong, any of those after it, and none farther away than 15.
TEST(CrcErrors, BurstsOfUpToSixteenBits)
{
    const std::vector<int> all = syndromes();
    for (int first = 0; first < Bits; ++first) {
        std::vector<int> sums(1, all[static_cast<size_t>(first)]);
        for (int next = first + 1; next < qMin(first + 16, Bits); ++next)
            for (size_t i = 0, count = sums.size(); i < count; ++i)
                sums.push_back(sums[i] ^ all[static_cast<size_t>(next)]);
        for (const int sum : sums)
            ASSERT_NE(sum, 0) << first;
    }
}

// What the polynomial does not promise: some four wrong bits go unnoticed. The test above would see such a
// thing.
TEST(CrcErrors, SomeErrorsOfFourBitsGoUnnoticed)
{
    const std::vector<int> all = syndromes();
    std::vector<int> pairOf(65536, -1);
    for (size_t i = 0; i < all.size(); ++i)
        for (size_t k = i + 1; k < all.size(); ++k) {
            int &pair = pairOf[static_cast<size_t>(all[i] ^ all[k])];
            if (pair < 0) {
                pair = static_cast<int>(i) * Bits + static_cast<int>(k);
                continue;
            }
            QByteArray frame = framed(patternBytes(Bytes - 2));
            for (const int bit : {static_cast<int>(i), static_cast<int>(k), pair / Bits, pair % Bits})
                frame = withWrongBit(frame, bit);
            EXPECT_TRUE(isAccepted(frame));
            return;
        }
    FAIL() << "no pattern found";
}
