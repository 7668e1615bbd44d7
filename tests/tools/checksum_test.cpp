#include "drivers/qt/qt_lines.h"
#include "drivers/tools/checksum.h"
#include "drivers/tools/crc_table.h"
#include "tests/doubles/frames.h"
#include "tests/support/gtest_qt.h"
#include "tests/support/random_data.h"

#include <limits>

namespace
{

const QByteArray CheckInput("123456789");

const unsigned char *bytesOf(const QByteArray &bytes)
{
    return reinterpret_cast<const unsigned char *>(bytes.constData());
}

typedef unsigned short (*Step16)(unsigned short crc, char c);

unsigned short crcOver(const QByteArray &bytes, Step16 step, unsigned short start)
{
    unsigned short crc = start;
    for (int i = 0; i < bytes.size(); ++i)
        crc = step(crc, bytes.at(i));
    return crc;
}

unsigned long crc32Over(const QByteArray &bytes, unsigned long start)
{
    unsigned long crc = start;
    for (int i = 0; i < bytes.size(); ++i)
        crc = update_crc_32(crc, bytes.at(i));
    return crc;
}

unsigned short sickOver(const QByteArray &bytes)
{
    unsigned short crc = 0;
    char prev = 0;
    for (int i = 0; i < bytes.size(); ++i) {
        crc = update_crc_sick(crc, bytes.at(i), prev);
        prev = bytes.at(i);
    }
    return crc;
}

// One byte into a reflected CRC, bit by bit.
quint32 reflected(quint32 polynomial, quint32 crc, char c)
{
    crc ^= static_cast<unsigned char>(c);
    for (int bit = 0; bit < 8; ++bit)
        crc = (crc & 1u) != 0 ? (crc >> 1) ^ polynomial : crc >> 1;
    return crc;
}

// One byte into a CRC of 16 bits that is not reflected, bit by bit.
quint32 unreflected(quint32 polynomial, quint32 crc, char c)
{
    crc ^= static_cast<quint32>(static_cast<unsigned char>(c)) << 8;
    for (int bit = 0; bit < 8; ++bit)
        crc = ((crc & 0x8000u) != 0 ? (crc << 1) ^ polynomial : crc << 1) & 0xFFFFu;
    return crc;
}

// Every byte on a few running values: all that a table holds, and how it is used.
template <typename Expected>
void checkStep(Step16 step, const Expected &expected)
{
    RandomData random;
    SCOPED_TRACE(random.trace());
    for (int round = 0; round < 20; ++round) {
        const auto crc = static_cast<unsigned short>(round == 0 ? 0 : random.between(0, 0xFFFF));
        for (int c = -128; c < 128; ++c)
            ASSERT_EQ(step(crc, static_cast<char>(c)), expected(crc, static_cast<char>(c)))
                << crc << " " << c;
    }
}

void checkReflectedStep(Step16 step, quint32 polynomial)
{
    checkStep(step, [polynomial](quint32 crc, char c) { return reflected(polynomial, crc, c); });
}

} // namespace

TEST(Checksum, Sums)
{
    const QByteArray bytes = fromHex("FF FF FF");
    EXPECT_EQ(UShortCheckSum(bytesOf(bytes), 3), 0x02FD);
    EXPECT_EQ(UInt8CheckSum(bytesOf(bytes), 3), 0xFD);
    EXPECT_EQ(XorUInt8CheckSum(bytesOf(bytes), 3), 0xFF);
    EXPECT_EQ(XorUInt8CheckSum(bytesOf(bytes), 2), 0x00);
    EXPECT_EQ(UInt8CheckSum(bytesOf(fromHex("01 02")), 2), 0x03);
}

TEST(Checksum, SumsWrap)
{
    const QByteArray bytes(258, '\xFF');
    EXPECT_EQ(UShortCheckSum(bytesOf(bytes), 257), 0xFFFF);
    EXPECT_EQ(UShortCheckSum(bytesOf(bytes), 258), 0x00FE);
    EXPECT_EQ(UInt8CheckSum(bytesOf(bytes), 258), 0xFE);
}

TEST(Checksum, NothingGivesZero)
{
    const QByteArray bytes = fromHex("FF");
    for (const int length : {0, -1, std::numeric_limits<int>::min()}) {
        EXPECT_EQ(UInt8CheckSum(bytesOf(bytes), length), 0);
        EXPECT_EQ(UShortCheckSum(bytesOf(bytes), length), 0);
        EXPECT_EQ(XorUInt8CheckSum(bytesOf(bytes), length), 0);
        EXPECT_EQ(CRC16Calculate(bytesOf(bytes), length), 0);
    }
    EXPECT_EQ(CRC16Calculate(nullptr, 0), 0);
}

TEST(Checksum, AgreesWithPlainSums)
{
    RandomData random;
    SCOPED_TRACE(random.trace());
    for (int size = 0; size < 300; ++size) {
        const QByteArray bytes = random.bytes(size);
        int sum = 0;
        int exclusiveOr = 0;
        quint32 crc = 0;
        for (int i = 0; i < size; ++i) {
            sum += bytesOf(bytes)[i];
            exclusiveOr ^= bytesOf(bytes)[i];
            crc = reflected(0xA001, crc, bytes.at(i));
        }
        EXPECT_EQ(UInt8CheckSum(bytesOf(bytes), size), sum % 256);
        EXPECT_EQ(UShortCheckSum(bytesOf(bytes), size), sum % 65536);
        EXPECT_EQ(XorUInt8CheckSum(bytesOf(bytes), size), exclusiveOr);
        EXPECT_EQ(CRC16Calculate(bytesOf(bytes), size), crc);
    }
}

TEST(Crc, PublishedCheckValues)
{
    EXPECT_EQ(CRC16Calculate(bytesOf(CheckInput), sizeOf(CheckInput)), 0xBB3D);
    EXPECT_EQ(crcOver(CheckInput, update_crc_16, 0xFFFF), 0x4B37);
    EXPECT_EQ(crcOver(CheckInput, update_crc_ccitt, 0xFFFF), 0x29B1);
    EXPECT_EQ(crcOver(CheckInput, update_crc_ccitt, 0), 0x31C3);
    EXPECT_EQ(crcOver(CheckInput, update_crc_kermit, 0), 0x2189);
    EXPECT_EQ(crcOver(CheckInput, update_crc_dnp, 0) ^ 0xFFFF, 0xEA82);
    // Published as 56A6, in the order in which the two bytes travel.
    EXPECT_EQ(sickOver(CheckInput), 0xA656);
}

TEST(Crc, Crc32CountsWith32BitsWhateverALongHas)
{
    EXPECT_EQ(static_cast<quint32>(~crc32Over(CheckInput, 0xFFFFFFFFul)), 0xCBF43926u);
    EXPECT_EQ(crc32Over(CheckInput, 0xFFFFFFFFul), 0x340BC6D9ul);
    EXPECT_EQ(crc32Over(CheckInput, ~0ul), 0x340BC6D9ul);
}

TEST(Crc, EveryStepBitByBit)
{
    checkReflectedStep(update_crc_16, 0xA001);
    checkReflectedStep(update_crc_kermit, 0x8408);
    checkReflectedStep(update_crc_dnp, 0xA6BC);
    checkStep(update_crc_ccitt, [](quint32 crc, char c) { return unreflected(0x1021, crc, c); });
}

TEST(Crc, EveryStepOf32BitsBitByBit)
{
    RandomData random;
    SCOPED_TRACE(random.trace());
    for (int round = 0; round < 20; ++round) {
        const quint32 crc = round == 0 ? 0 : random.number();
        for (int c = -128; c < 128; ++c)
            ASSERT_EQ(update_crc_32(crc, static_cast<char>(c)),
                      reflected(0xEDB88320, crc, static_cast<char>(c)))
                << crc << " " << c;
    }
}

TEST(Crc, SickStepTakesTheByteBefore)
{
    EXPECT_EQ(update_crc_sick(0, 0x12, 0x34), 0x3412);
    EXPECT_EQ(update_crc_sick(0x4000, 0, 0), 0x8000);
    EXPECT_EQ(update_crc_sick(0x8000, 0, 0), 0x8005);
    EXPECT_EQ(update_crc_sick(0xC001, '\x01', '\x80'), 0x8006);
    EXPECT_EQ(update_crc_sick(0, '\xFE', '\xFF'), 0xFFFE);
}

// The compiler has made the tables; here the same functions run.
TEST(Crc, TablesAsTheyAreMade)
{
    volatile quint32 polynomial = 0x1021;
    const auto unreflectedEntries = crc_table::unreflectedTable(polynomial, crc_table::EveryByte());
    polynomial = 0x8408;
    const auto reflectedEntries = crc_table::reflectedTable<quint16>(polynomial, crc_table::EveryByte());
    polynomial = 0xEDB88320;
    const auto wideEntries = crc_table::reflectedTable<quint32>(polynomial, crc_table::EveryByte());
    for (int c = 0; c < 256; ++c) {
        EXPECT_EQ(unreflectedEntries.entries[c], unreflected(0x1021, 0, static_cast<char>(c)));
        EXPECT_EQ(reflectedEntries.entries[c], reflected(0x8408, 0, static_cast<char>(c)));
        EXPECT_EQ(wideEntries.entries[c], reflected(0xEDB88320, 0, static_cast<char>(c)));
    }
}
