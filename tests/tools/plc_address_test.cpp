#include "drivers/tools/plc_address.h"
#include "tests/doubles/frames.h"
#include "tests/support/gtest_qt.h"

#include <vector>

namespace
{

QByteArray symbolOf(const char *text)
{
    return ExtractPrefixSymbol(QByteArray(text));
}

int numberOf(const char *text, int radix)
{
    return ExtractPLCDeviceAddress(QByteArray(text), radix);
}

} // namespace

TEST(PlcAddress, PrefixIsTheLeadingLettersAndUnderscores)
{
    EXPECT_EQ(symbolOf("_ab3c"), QByteArray("_ab"));
    EXPECT_EQ(symbolOf("HR100"), QByteArray("HR"));
    EXPECT_EQ(symbolOf("FN5DO12"), QByteArray("FN"));
    EXPECT_EQ(symbolOf("7HR"), QByteArray());
    EXPECT_EQ(symbolOf(""), QByteArray());
    EXPECT_EQ(symbolOf("azAZ_"), QByteArray("azAZ_"));
    EXPECT_EQ(symbolOf("A B"), QByteArray("A"));
    EXPECT_EQ(symbolOf("A\xC4"), QByteArray("A"));
}

TEST(PlcAddress, PrefixEndsAtEveryOtherCharacter)
{
    for (int c = 0; c < 256; ++c) {
        const bool belongs = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
        const QByteArray text = QByteArray("x").append(static_cast<char>(c));
        EXPECT_EQ(ExtractPrefixSymbol(text), belongs ? text : QByteArray("x")) << c;
    }
}

TEST(PlcAddress, TextsAreReadAsBytes)
{
    EXPECT_EQ(ExtractPrefixSymbol(QString::fromLatin1("HR100")), QByteArray("HR"));
    EXPECT_EQ(ExtractPrefixSymbol(QString(QChar(0x0416)) + QLatin1Char('1')), QByteArray());
    EXPECT_EQ(ExtractPLCDeviceAddress(QString::fromLatin1("HR100"), 10), 100);
    EXPECT_EQ(ExtractPLCDeviceAddress(QString(QChar(0x0416)) + QLatin1String("12"), 10), 12);
    EXPECT_EQ(ExtractPLCDeviceAddress(QString(QChar(0x0661)), 10), 0);
    EXPECT_EQ(ExtractPLCDeviceAddress(QString(), 10), 0);
}

TEST(PlcAddress, Decimal)
{
    EXPECT_EQ(numberOf("HR100", 10), 100);
    EXPECT_EQ(numberOf("DI007", 10), 7);
    EXPECT_EQ(numberOf("42", 10), 42);
    EXPECT_EQ(numberOf("HR-5", 10), 5);
    EXPECT_EQ(numberOf("HR2147483647", 10), 2147483647);
}

TEST(PlcAddress, Octal)
{
    EXPECT_EQ(numberOf("X17", 8), 15);
    EXPECT_EQ(numberOf("X19", 8), 0);
    EXPECT_EQ(numberOf("X9817", 8), 15);
}

TEST(PlcAddress, HexadecimalLettersOfTheSymbolBelongToTheNumber)
{
    EXPECT_EQ(numberOf("DA10", 16), 0xDA10);
    EXPECT_EQ(numberOf("HR1A", 16), 0x1A);
    EXPECT_EQ(numberOf("hrfF", 16), 0xFF);
}

TEST(PlcAddress, TheWholeRestMustBeANumber)
{
    EXPECT_EQ(numberOf("HR12.3", 10), 0);
    EXPECT_EQ(numberOf("HR12x", 10), 0);
    EXPECT_EQ(numberOf("FN5DO12", 10), 0);
    EXPECT_EQ(numberOf("HR", 10), 0);
    EXPECT_EQ(numberOf("", 10), 0);
    EXPECT_EQ(numberOf("HR2147483648", 10), 0);
    EXPECT_EQ(numberOf("X8", 8), 0);
    EXPECT_EQ(numberOf("HG", 16), 0);
}

TEST(PlcAddress, OtherRadixesAreRefused)
{
    for (const int radix : std::vector<int>{7, 0, 2, -10, 36, 1000})
        EXPECT_EQ(numberOf("HR100", radix), -1) << radix;
    EXPECT_EQ(ExtractPLCDeviceAddress(QString::fromLatin1("HR100"), 7), -1);
}

TEST(HexToUInt, DigitsWithAndWithoutPrefix)
{
    EXPECT_EQ(HexToUInt("0x1F", 4), 31u);
    EXPECT_EQ(HexToUInt("0X1f", 4), 31u);
    EXPECT_EQ(HexToUInt("0x1F", 3), 1u);
    EXPECT_EQ(HexToUInt("1F", 1), 1u);
    EXPECT_EQ(HexToUInt("ff", 10), 255u);
    EXPECT_EQ(HexToUInt("09afAF", 6), 0x09AFAFu);
    EXPECT_EQ(HexToUInt("012", 3), 0x12u);
    EXPECT_EQ(HexToUInt("0012", 4), 0x12u);
}

TEST(HexToUInt, ErrorsAreZero)
{
    EXPECT_EQ(HexToUInt("1G", 2), 0u);
    EXPECT_EQ(HexToUInt("0x", 2), 0u);
    EXPECT_EQ(HexToUInt("0x", 10), 0u);
    EXPECT_EQ(HexToUInt("0xx1", 4), 0u);
    EXPECT_EQ(HexToUInt("00x1", 4), 0u);
    EXPECT_EQ(HexToUInt("x1", 2), 0u);
    EXPECT_EQ(HexToUInt("", 5), 0u);
    EXPECT_EQ(HexToUInt("0", 1), 0u);
    EXPECT_EQ(HexToUInt("0", 5), 0u);
    EXPECT_EQ(HexToUInt("12", 0), 0u);
    EXPECT_EQ(HexToUInt("12", -1), 0u);
    EXPECT_EQ(HexToUInt(" 12", 3), 0u);
    EXPECT_EQ(HexToUInt("-1", 2), 0u);
}

TEST(HexToUInt, OverflowWraps)
{
    EXPECT_EQ(HexToUInt("FFFFFFFF", 8), 0xFFFFFFFFu);
    EXPECT_EQ(HexToUInt("123456789", 9), 0x23456789u);
}

TEST(HexToUInt, OnlyHexadecimalDigitsCount)
{
    for (int c = 1; c < 256; ++c) {
        const char text[] = {'1', static_cast<char>(c), '\0'};
        const int digit =
            static_cast<int>(QByteArray("0123456789abcdef").indexOf(QByteArray(text + 1).toLower()));
        EXPECT_EQ(HexToUInt(text, 2), digit < 0 ? 0u : 16u + static_cast<unsigned int>(digit)) << c;
    }
}

TEST(HexToUInt, ReadsNothingBeyondItsLength)
{
    // Of the exact size, for a memory checker to see a byte too many.
    for (const char *text : std::vector<const char *>{"0", "0x", "0x1", "12"}) {
        const std::vector<char> exact(text, text + qstrlen(text));
        EXPECT_EQ(HexToUInt(exact.data(), static_cast<int>(exact.size())),
                  HexToUInt(text, static_cast<int>(exact.size())));
        EXPECT_EQ(HexToUInt(exact.data() + exact.size(), 0), 0u);
    }
}
