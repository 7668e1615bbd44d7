#include "drivers/qt/qt_lines.h"
#include "drivers/tools/format_pack.h"
#include "tests/doubles/frames.h"
#include "tests/support/gtest_qt.h"

#include <cstdarg>
#include <string>
#include <vector>

namespace
{

const unsigned char Untouched = 0xEE;

// A buffer to pack into, with what the last call returned.
struct Packed {
    Packed() : result(-99), bytes(32, Untouched) {}

    QByteArray first(int count) const
    {
        return QByteArray(reinterpret_cast<const char *>(bytes.data()), count);
    }

    int result;
    std::vector<unsigned char> bytes;
};

Packed packed(const char *format, ...)
{
    Packed buffer;
    va_list args;
    va_start(args, format);
    buffer.result = VDataPack(buffer.bytes.data(), format, args);
    va_end(args);
    return buffer;
}

void expectPacked(const Packed &buffer, const char *hexText)
{
    const QByteArray expected = fromHex(hexText);
    EXPECT_EQ(buffer.result, expected.size());
    EXPECT_EQ(buffer.first(sizeOf(expected)), expected);
    EXPECT_EQ(buffer.bytes.at(static_cast<size_t>(expected.size())), Untouched);
}

int unpacked(const char *hexText, const char *format, ...)
{
    const QByteArray in = fromHex(hexText);
    va_list args;
    va_start(args, format);
    const int result = VDataUnpack(reinterpret_cast<const unsigned char *>(in.constData()), format, args);
    va_end(args);
    return result;
}

const unsigned char Source[] = {1, 2, 3, 4, 5, 6, 7, 8};

const char *const CountErrors[] = {"0C",          "0c",
                                   "0v",          "0n",
                                   "0V",          "0N",
                                   "000C",        "2s",
                                   "2S",          "2i",
                                   "2I",          "2l",
                                   "2L",          "2q",
                                   "2",           "12",
                                   "2 ",          "2y",
                                   "2-",          "2\xFF",
                                   "2147483648C", "99999999999999999999C",
                                   "1073741824v", "536870912N",
                                   "2147483648X"};
const char *const LetterErrors[] = {"q", "a", "y", "z", " ",    "-",    "/",
                                    ":", "@", "[", "{", "\xFF", "\x01", "%"};

} // namespace

TEST(DataPack, EmptyFormat)
{
    expectPacked(packed(""), "");
}

TEST(DataPack, SingleItems)
{
    expectPacked(packed("nN", 0x1234, 0x01020304), "12 34 01 02 03 04");
    expectPacked(packed("Cv", 0x1FF, 0xABCD), "FF CD AB");
    for (const char *format : {"c", "C"})
        expectPacked(packed(format, 0x12345678), "78");
    for (const char *format : {"s", "S", "v"})
        expectPacked(packed(format, 0x12345678), "78 56");
    expectPacked(packed("n", 0x12345678), "56 78");
    for (const char *format : {"i", "I", "l", "L", "V"})
        expectPacked(packed(format, 0x12345678), "78 56 34 12");
    expectPacked(packed("N", 0x12345678), "12 34 56 78");
    expectPacked(packed("cnN", -1, -2, -3), "FF FF FE FF FF FF FD");
}

TEST(DataPack, Gaps)
{
    expectPacked(packed("x"), "00");
    const Packed gap = packed("CXC", 1, 2);
    EXPECT_EQ(gap.result, 3);
    EXPECT_EQ(gap.first(4), fromHex("01 EE 02 EE"));
    const Packed counted = packed("3x2X");
    EXPECT_EQ(counted.result, 5);
    EXPECT_EQ(counted.first(6), fromHex("00 00 00 EE EE EE"));
    expectPacked(packed("0x0XC", 7), "07");
}

TEST(DataPack, CountedItems)
{
    expectPacked(packed("3C", Source), "01 02 03");
    expectPacked(packed("3c", Source), "01 02 03");
    expectPacked(packed("2v", Source), "01 02 03 04");
    expectPacked(packed("2n", Source), "02 01 04 03");
    expectPacked(packed("2V", Source), "01 02 03 04 05 06 07 08");
    expectPacked(packed("2N", Source), "04 03 02 01 08 07 06 05");
    expectPacked(packed("1n1N", Source, Source), "02 01 04 03 02 01");
    expectPacked(packed("002n", Source), "02 01 04 03");
    expectPacked(packed("C2nC", 0xAA, Source, 0xBB), "AA 02 01 04 03 BB");
}

TEST(DataPack, CountOfManyDigits)
{
    const std::vector<unsigned char> source(12345, 0x5A);
    std::vector<unsigned char> out(12346, 0);
    EXPECT_EQ(DataPack(out.data(), "12345C", source.data()), 12345);
    EXPECT_EQ(out[12344], 0x5A);
    EXPECT_EQ(out[12345], 0);
}

TEST(DataPack, InPlace)
{
    Packed buffer;
    buffer.bytes.assign(Source, Source + 8);
    EXPECT_EQ(DataPack(buffer.bytes.data(), "2N", buffer.bytes.data()), 8);
    EXPECT_EQ(buffer.first(8), fromHex("04 03 02 01 08 07 06 05"));
}

TEST(DataPack, ErrorInACountedItemIsMinusOne)
{
    for (const char *format : CountErrors)
        EXPECT_EQ(packed(format, Source).result, -1) << format;
}

TEST(DataPack, UnknownLetterIsZero)
{
    for (const char *format : LetterErrors)
        EXPECT_EQ(packed(format, 1).result, 0) << format;
}

TEST(DataPack, KeepsWhatItWroteBeforeAnError)
{
    const Packed letter = packed("nq", 0x1234, 1);
    EXPECT_EQ(letter.result, 0);
    EXPECT_EQ(letter.first(3), fromHex("12 34 EE"));
    const Packed count = packed("n0C", 0x1234, Source);
    EXPECT_EQ(count.result, -1);
    EXPECT_EQ(count.first(3), fromHex("12 34 EE"));
}

TEST(DataPack, SumOfGapsThatNoIntHolds)
{
    EXPECT_EQ(packed("2147483647X").result, 2147483647);
    EXPECT_EQ(packed("2147483647X1X").result, -1);
    EXPECT_EQ(packed("2147483647X0X").result, 2147483647);
    EXPECT_EQ(packed("2147483647XC", 1).result, 0);
}

TEST(ByteArrayPack, Items)
{
    EXPECT_EQ(ByteArrayPack(""), QByteArray());
    EXPECT_EQ(ByteArrayPack("2n", Source), fromHex("02 01 04 03"));
    EXPECT_EQ(ByteArrayPack("CsniN", 1, 0x0203, 0x0405, 0x06070809, 0x0A0B0C0D),
              fromHex("01 03 02 04 05 09 08 07 06 0A 0B 0C 0D"));
    EXPECT_EQ(ByteArrayPack("2C1v1V1N", Source, Source, Source, Source),
              fromHex("01 02 01 02 01 02 03 04 04 03 02 01"));
    EXPECT_EQ(ByteArrayPack("CxXC", 1, 2), fromHex("01 00 00 02"));
}

TEST(ByteArrayPack, AnyErrorGivesNothing)
{
    for (const char *format : CountErrors)
        EXPECT_EQ(ByteArrayPack(format, Source), QByteArray()) << format;
    for (const char *format : LetterErrors)
        EXPECT_EQ(ByteArrayPack(format, 1), QByteArray()) << format;
    for (const char *format : {"2x", "2X", "0x", "0X"})
        EXPECT_EQ(ByteArrayPack(format), QByteArray()) << format;
    EXPECT_EQ(ByteArrayPack("nq", 0x1234, 1), QByteArray());
    EXPECT_EQ(ByteArrayPack("n2x", 0x1234), QByteArray());
}

TEST(DataUnpack, EmptyFormat)
{
    EXPECT_EQ(unpacked("01", ""), 0);
}

TEST(DataUnpack, SingleItems)
{
    unsigned short word = 0;
    unsigned int doubleWord = 0;
    EXPECT_EQ(unpacked("12 34 FF 01 00 00 00", "nxV", &word, &doubleWord), 7);
    EXPECT_EQ(word, 0x1234);
    EXPECT_EQ(doubleWord, 1u);
    for (const char *format : {"c", "C"}) {
        unsigned char byte = 0;
        EXPECT_EQ(unpacked("F2", format, &byte), 1);
        EXPECT_EQ(byte, 0xF2);
    }
    for (const char *format : {"s", "S", "v"}) {
        EXPECT_EQ(unpacked("F2 F1", format, &word), 2);
        EXPECT_EQ(word, 0xF1F2) << format;
    }
    for (const char *format : {"i", "I", "l", "L", "V"}) {
        EXPECT_EQ(unpacked("F4 F3 F2 F1", format, &doubleWord), 4);
        EXPECT_EQ(doubleWord, 0xF1F2F3F4) << format;
    }
    EXPECT_EQ(unpacked("F1 F2 F3 F4", "N", &doubleWord), 4);
    EXPECT_EQ(doubleWord, 0xF1F2F3F4);
}

TEST(DataUnpack, Gaps)
{
    unsigned char byte = 0;
    EXPECT_EQ(unpacked("01 02 03 04 05 06 07 08", "xX2x3X0x0XC", &byte), 8);
    EXPECT_EQ(byte, 8);
}

TEST(DataUnpack, CountedItems)
{
    unsigned short words[3] = {0, 0, 7};
    EXPECT_EQ(unpacked("01 02 03 04", "2n", words), 4);
    EXPECT_EQ(words[0], 0x0102);
    EXPECT_EQ(words[1], 0x0304);
    EXPECT_EQ(unpacked("01 02 03 04", "2v", words), 4);
    EXPECT_EQ(words[0], 0x0201);
    EXPECT_EQ(words[1], 0x0403);
    EXPECT_EQ(words[2], 7);
    unsigned int doubleWord = 0;
    EXPECT_EQ(unpacked("01 02 03 04", "1N", &doubleWord), 4);
    EXPECT_EQ(doubleWord, 0x01020304u);
    EXPECT_EQ(unpacked("01 02 03 04", "1V", &doubleWord), 4);
    EXPECT_EQ(doubleWord, 0x04030201u);
    unsigned char bytes[3] = {0, 0, 7};
    EXPECT_EQ(unpacked("01 02", "2C", bytes), 2);
    EXPECT_EQ(bytes[1], 2);
    EXPECT_EQ(unpacked("03 04", "2c", bytes), 2);
    EXPECT_EQ(bytes[1], 4);
    EXPECT_EQ(bytes[2], 7);
}

TEST(DataUnpack, AnyErrorIsMinusOne)
{
    unsigned char out[8] = {0};
    for (const char *format : CountErrors)
        EXPECT_EQ(unpacked("01 02 03 04 05 06 07 08", format, out), -1) << format;
    for (const char *format : LetterErrors)
        EXPECT_EQ(unpacked("01 02 03 04 05 06 07 08", format, out), -1) << format;
    EXPECT_EQ(unpacked("", "2147483647XX"), -1);
}

TEST(DataUnpack, KeepsWhatItReadBeforeAnError)
{
    unsigned short word = 0;
    EXPECT_EQ(unpacked("12 34", "nq", &word), -1);
    EXPECT_EQ(word, 0x1234);
}

TEST(DataUnpack, FrontEnd)
{
    unsigned char byte = 0;
    unsigned short word = 0;
    EXPECT_EQ(DataUnpack(Source, "Cn", &byte, &word), 3);
    EXPECT_EQ(byte, 1);
    EXPECT_EQ(word, 0x0203);
}
