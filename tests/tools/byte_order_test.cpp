#include "drivers/tools/byte_order.h"
#include "tests/doubles/frames.h"
#include "tests/support/gtest_qt.h"
#include "tests/support/random_data.h"

#include <limits>

namespace
{

const unsigned char *bytesOf(const QByteArray &bytes)
{
    return reinterpret_cast<const unsigned char *>(bytes.constData());
}

// The bytes with every whole item of `width` reversed, and what is left at the end as it was.
QByteArray itemsReversed(const QByteArray &bytes, int width)
{
    QByteArray reversed = bytes;
    for (int i = 0; i < bytes.size() / width * width; ++i)
        reversed[i] = bytes.at(i / width * width + width - 1 - i % width);
    return reversed;
}

QByteArray paddedTo(const QByteArray &bytes, int width)
{
    QByteArray padded = bytes;
    while (padded.size() % width != 0)
        padded.append('\0');
    return padded;
}

} // namespace

TEST(ByteOrder, IntegersToBytes)
{
    EXPECT_EQ(wordToByteArray(0x1234), fromHex("34 12"));
    EXPECT_EQ(wordToByteArray(0xFFFE), fromHex("FE FF"));
    EXPECT_EQ(shortToByteArray(0x1234), fromHex("34 12"));
    EXPECT_EQ(shortToByteArray(-2), fromHex("FE FF"));
    EXPECT_EQ(shortToByteArray(std::numeric_limits<short>::min()), fromHex("00 80"));
    EXPECT_EQ(intToByteArray(0x11223344), fromHex("44 33 22 11"));
    EXPECT_EQ(intToByteArray(-2), fromHex("FE FF FF FF"));
    EXPECT_EQ(intToByteArray(std::numeric_limits<int>::min()), fromHex("00 00 00 80"));
}

TEST(ByteOrder, BytesToInt)
{
    EXPECT_EQ(QByteArrayToInt(QByteArray()), 0);
    EXPECT_EQ(QByteArrayToInt(fromHex("F1")), 0xF1);
    EXPECT_EQ(QByteArrayToInt(fromHex("01 F2")), 0xF201);
    EXPECT_EQ(QByteArrayToInt(fromHex("01 02 03")), 0x030201);
    EXPECT_EQ(QByteArrayToInt(fromHex("01 02 03 04")), 0x04030201);
    EXPECT_EQ(QByteArrayToInt(fromHex("01 02 03 04 05")), 0x04030201);
    EXPECT_EQ(QByteArrayToInt(fromHex("FE FF FF FF")), -2);
}

TEST(ByteOrder, BytesToWordAndShort)
{
    EXPECT_EQ(QByteArrayToWord(QByteArray()), 0);
    EXPECT_EQ(QByteArrayToWord(fromHex("F1")), 0xF1);
    EXPECT_EQ(QByteArrayToWord(fromHex("F1 F2")), 0xF2F1);
    EXPECT_EQ(QByteArrayToWord(fromHex("F1 F2 F3")), 0xF2F1);
    EXPECT_EQ(QByteArrayToShort(QByteArray()), 0);
    EXPECT_EQ(QByteArrayToShort(fromHex("F1")), 0xF1);
    EXPECT_EQ(QByteArrayToShort(fromHex("FE FF")), -2);
    EXPECT_EQ(QByteArrayToShort(fromHex("FF 7F 80")), 0x7FFF);
}

TEST(ByteOrder, IntegersComeBack)
{
    RandomData random;
    SCOPED_TRACE(random.trace());
    for (int i = 0; i < 1000; ++i) {
        const auto number = static_cast<int>(random.number());
        EXPECT_EQ(QByteArrayToInt(intToByteArray(number)), number);
        const auto shortNumber = static_cast<short>(number);
        EXPECT_EQ(QByteArrayToShort(shortToByteArray(shortNumber)), shortNumber);
        const auto word = static_cast<unsigned short>(number);
        EXPECT_EQ(QByteArrayToWord(wordToByteArray(word)), word);
    }
}

TEST(ByteOrder, AppendsHighByteFirst)
{
    QByteArray bytes = fromHex("AA");
    appendBigEndianUShort(bytes, 0x12F4);
    EXPECT_EQ(bytes, fromHex("AA 12 F4"));
}

TEST(ByteOrder, AnswersBigEndianWhateverTheProcessor)
{
    EXPECT_TRUE(isBigEndian());
}

TEST(ByteOrder, FromBigEndian)
{
    const QByteArray wire = fromHex("01 02 03 04 05 06 07 08 09");
    EXPECT_EQ(fromBigEndianUShortArray(bytesOf(wire), 2), fromHex("02 01 04 03"));
    EXPECT_EQ(fromBigEndianULongArray(bytesOf(wire), 2), fromHex("04 03 02 01 08 07 06 05"));
    EXPECT_EQ(fromBigEndianUShortArray(bytesOf(wire), 0), QByteArray());
    EXPECT_EQ(fromBigEndianULongArray(bytesOf(wire), 0), QByteArray());
    EXPECT_EQ(fromBigEndianUShortArray(bytesOf(wire), -1), QByteArray());
    EXPECT_EQ(fromBigEndianULongArray(bytesOf(wire), -1), QByteArray());
}

TEST(ByteOrder, ToBigEndianPadsBeforeItSwaps)
{
    EXPECT_EQ(toBigEndianUShortArray(QByteArray()), QByteArray());
    EXPECT_EQ(toBigEndianUShortArray(fromHex("01 02 03 04")), fromHex("02 01 04 03"));
    EXPECT_EQ(toBigEndianUShortArray(fromHex("01 02 03")), fromHex("02 01 00 03"));
    EXPECT_EQ(toBigEndianULongArray(QByteArray()), QByteArray());
    EXPECT_EQ(toBigEndianULongArray(fromHex("01 02 03 04")), fromHex("04 03 02 01"));
    EXPECT_EQ(toBigEndianULongArray(fromHex("01 02 03 04 05")), fromHex("04 03 02 01 00 00 00 05"));
    EXPECT_EQ(toBigEndianULongArray(fromHex("01 02 03")), fromHex("00 03 02 01"));
}

TEST(ByteOrder, InPlaceSwapsLeaveAPartialItem)
{
    QByteArray words = fromHex("01 02 03 04 05");
    toLittleEndianUShortArray(words);
    EXPECT_EQ(words, fromHex("02 01 04 03 05"));
    QByteArray doubleWords = fromHex("01 02 03 04 05 06 07");
    toLittleEndianULongArray(doubleWords);
    EXPECT_EQ(doubleWords, fromHex("04 03 02 01 05 06 07"));
    QByteArray nothing;
    toLittleEndianUShortArray(nothing);
    toLittleEndianULongArray(nothing);
    EXPECT_EQ(nothing, QByteArray());
}

TEST(ByteOrder, InPlaceSwapsLeaveCopiesAlone)
{
    QByteArray words = fromHex("01 02 03 04");
    const QByteArray copy = words;
    toLittleEndianUShortArray(words);
    EXPECT_EQ(copy, fromHex("01 02 03 04"));
}

TEST(ByteOrder, Padding)
{
    EXPECT_EQ(To16bitsData(fromHex("01")), fromHex("01 00"));
    EXPECT_EQ(To16bitsData(fromHex("01 02")), fromHex("01 02"));
    EXPECT_EQ(To32bitsData(fromHex("01")), fromHex("01 00 00 00"));
    EXPECT_EQ(To32bitsData(fromHex("01 02 03 04 05 06 07")), fromHex("01 02 03 04 05 06 07 00"));
    EXPECT_EQ(To32bitsData(fromHex("01 02 03 04")), fromHex("01 02 03 04"));
}

TEST(ByteOrder, PaddingOfEightByteItemsStopsAtFour)
{
    const int expectedSizes[] = {0, 4, 4, 4, 4, 5, 6, 7, 8, 12, 12, 12, 12, 13, 14, 15, 16};
    for (int size = 0; size <= 16; ++size) {
        const QByteArray data(size, 'a');
        QByteArray expected = data;
        expected.append(QByteArray(expectedSizes[size] - size, '\0'));
        EXPECT_EQ(To64bitsData(data), expected) << size;
    }
}

TEST(ByteOrder, SwapsAgreeWithBytewiseReversal)
{
    RandomData random;
    SCOPED_TRACE(random.trace());
    for (int size = 0; size < 70; ++size) {
        const QByteArray bytes = random.bytes(size);
        EXPECT_EQ(toBigEndianUShortArray(bytes), itemsReversed(paddedTo(bytes, 2), 2));
        EXPECT_EQ(toBigEndianULongArray(bytes), itemsReversed(paddedTo(bytes, 4), 4));
        EXPECT_EQ(fromBigEndianUShortArray(bytesOf(bytes), size / 2),
                  itemsReversed(bytes.left(size / 2 * 2), 2));
        EXPECT_EQ(fromBigEndianULongArray(bytesOf(bytes), size / 4),
                  itemsReversed(bytes.left(size / 4 * 4), 4));
        QByteArray words = bytes;
        toLittleEndianUShortArray(words);
        EXPECT_EQ(words, itemsReversed(bytes, 2));
        QByteArray doubleWords = bytes;
        toLittleEndianULongArray(doubleWords);
        EXPECT_EQ(doubleWords, itemsReversed(bytes, 4));
    }
}
