#include "drivers/modbus_rtu_slave_over_tcp/address_text.h"
#include "tests/doubles/frames.h"
#include "tests/support/gtest_qt.h"

namespace
{

const int Untouched = -1;
const unsigned char BitBefore = 0xEE;

struct ParseCase {
    const char *text;
    const char *area;
    int offset;
    int bit;
};

void PrintTo(const ParseCase &c, std::ostream *out)
{
    *out << '"' << c.text << '"';
}

class Parse : public testing::TestWithParam<ParseCase>
{
};

struct Parsed {
    QByteArray area;
    unsigned short offset;
    unsigned char bit;
};

Parsed parse(const QString &text)
{
    Parsed parsed = {QByteArray(), 1234, BitBefore};
    ModbusRTUSlaveParseAddress(text, parsed.area, parsed.offset, parsed.bit);
    return parsed;
}

} // namespace

TEST_P(Parse, SplitsTheText)
{
    const ParseCase &c = GetParam();
    const Parsed parsed = parse(QString::fromUtf8(c.text));
    EXPECT_EQ(parsed.area, QByteArray(c.area));
    EXPECT_EQ(parsed.offset, c.offset);
    EXPECT_EQ(parsed.bit, c.bit == Untouched ? BitBefore : c.bit);
}

const ParseCase plainTexts[] = {
    {"HR100", "HR", 99, Untouched},
    {"IR3", "IR", 2, Untouched},
    {"DI17", "DI", 16, Untouched},
    {"DO5", "DO", 4, Untouched},
    {"FN5DO5", "FN5DO", 4, Untouched},
    {"FN6HR12", "FN6HR", 11, Untouched},
    {"fn5do12", "fn5do", 11, Untouched},
    {"hR1", "hR", 0, Untouched},
    {"SW10", "SW", 9, Untouched},
    {"HRSW10", "HRSW", 9, Untouched},
    {"HR7.3", "HR", 6, 3},
    {"FN6HR12.15", "FN6HR", 11, 15},
    {"AZaz1", "AZaz", 0, Untouched},
};
INSTANTIATE_TEST_SUITE_P(Plain, Parse, testing::ValuesIn(plainTexts));

const ParseCase textsWithoutNumber[] = {
    {"", "", 65535, Untouched},
    {"HR", "HR", 65535, Untouched},
    {"HR.2", "HR", 65535, 2},
    {".7", "", 65535, 7},
    {"HR 1", "HR", 65535, Untouched},
    {"HR-1", "HR", 65535, Untouched},
    {" HR1", "", 65535, Untouched},
    {"H_R1", "H", 65535, Untouched},
    {"HR@1", "HR", 65535, Untouched},
    {"HR[1", "HR", 65535, Untouched},
    {"HR`1", "HR", 65535, Untouched},
    {"HR{1", "HR", 65535, Untouched},
    {"HR/1", "HR", 65535, Untouched},
    {"HR:1", "HR", 65535, Untouched},
    {"HR-.4", "HR", 65535, Untouched},
    {"HR\xC3\xA9"
     "1",
     "HR", 65535, Untouched},
    {"\xC3\x84"
     "1",
     "", 65535, Untouched},
    {"HR\xEF\xBC\x91", "HR", 65535, Untouched},
};
INSTANTIATE_TEST_SUITE_P(WithoutNumber, Parse, testing::ValuesIn(textsWithoutNumber));

// The prefix is three characters whatever they are.
const ParseCase textsWithFunction[] = {
    {"F", "F", 65535, Untouched},
    {"FN", "FN", 65535, Untouched},
    {"FN5", "FN5", 65535, Untouched},
    {"fn6", "fn6", 65535, Untouched},
    {"FN5DO", "FN5DO", 65535, Untouched},
    {"f12", "f12", 65535, Untouched},
    {"f123", "f12", 2, Untouched},
    {"F.1.5", "F.1", 65535, 5},
    {"FN5.5", "FN5", 65535, 5},
    {"F 1DO2", "F 1DO", 1, Untouched},
    {"AFN5DO3", "AFN", 4, Untouched},
    {"F\xC3\xBF\xC4\x80X4", "F\xFF?X", 3, Untouched},
    {"F\xE2\x82\xAC\xC3\xA9X4", "F?\xE9X", 3, Untouched},
};
INSTANTIATE_TEST_SUITE_P(WithFunction, Parse, testing::ValuesIn(textsWithFunction));

const ParseCase numbers[] = {
    {"HR0", "HR", 65535, Untouched},
    {"HR00012", "HR", 11, Untouched},
    {"HR65535", "HR", 65534, Untouched},
    {"HR65536", "HR", 65535, Untouched},
    {"HR65537", "HR", 0, Untouched},
    {"HR131072", "HR", 65535, Untouched},
    {"HR4294967295", "HR", 65534, Untouched},
    {"HR4294967296", "HR", 65535, Untouched},
    {"HR4294967297", "HR", 0, Untouched},
    {"HR99999999999999999999", "HR", 65534, Untouched},
    {"100", "", 99, Untouched},
    {"1-HR100", "", 0, Untouched},
};
INSTANTIATE_TEST_SUITE_P(Numbers, Parse, testing::ValuesIn(numbers));

const ParseCase bits[] = {
    {"HR7.", "HR", 6, 0},           {"HR7.x", "HR", 6, 0},         {"HR7.15", "HR", 6, 15},
    {"HR7.255", "HR", 6, 255},      {"HR7.256", "HR", 6, 0},       {"HR7.259", "HR", 6, 3},
    {"HR7.3x", "HR", 6, 3},         {"HR7.3.4", "HR", 6, 3},       {"HR7.-3", "HR", 6, 0},
    {"HR7x.3", "HR", 6, Untouched}, {"HR7-3", "HR", 6, Untouched}, {"DO5.3", "DO", 4, 3},
    {"HR7.4294967299", "HR", 6, 3},
};
INSTANTIATE_TEST_SUITE_P(Bits, Parse, testing::ValuesIn(bits));

TEST(AddressText, AreaIsAppendedTo)
{
    QByteArray area("FN6");
    unsigned short offset = 0;
    unsigned char bit = 0;
    ModbusRTUSlaveParseAddress(QLatin1String("HR2"), area, offset, bit);
    EXPECT_EQ(area, QByteArray("FN6HR"));
}

TEST(AddressText, NoTextIsTooLong)
{
    const QString letters(600, QLatin1Char('x'));
    const Parsed parsed = parse(letters + QString(600, QLatin1Char('0')) + QLatin1String("21.") +
                                QString(600, QLatin1Char('0')) + QLatin1Char('9'));
    EXPECT_EQ(parsed.area, QByteArray(600, 'x'));
    EXPECT_EQ(parsed.offset, 20);
    EXPECT_EQ(parsed.bit, 9);
}

TEST(AddressText, AZeroCharacterEndsTheArea)
{
    const QString text = QString::fromLatin1("HR1").replace(2, 1, QChar(0));
    EXPECT_EQ(parse(text).area, QByteArray("HR"));
    EXPECT_EQ(parse(text).offset, 65535);
}

TEST(AddressText, AreasStartInAnyCase)
{
    EXPECT_TRUE(isHoldingRegisterArea("hrX"));
    EXPECT_TRUE(isHoldingRegisterArea("Fn6Hr"));
    EXPECT_FALSE(isHoldingRegisterArea("H"));
    EXPECT_FALSE(isHoldingRegisterArea("FN6H"));
    EXPECT_FALSE(isHoldingRegisterArea("FN5HR"));
    EXPECT_FALSE(isHoldingRegisterArea("IR"));
    EXPECT_FALSE(isHoldingRegisterArea(""));
    EXPECT_TRUE(isCoilArea("doX"));
    EXPECT_TRUE(isCoilArea("Fn5Do"));
    EXPECT_FALSE(isCoilArea("D"));
    EXPECT_FALSE(isCoilArea("FN5D"));
    EXPECT_FALSE(isCoilArea("FN6DO"));
    EXPECT_FALSE(isCoilArea("DI"));
}

TEST(AddressText, NamesAreWhole)
{
    EXPECT_TRUE(areaIs("dI", "DI"));
    EXPECT_FALSE(areaIs("DIX", "DI"));
    EXPECT_FALSE(areaIs("D", "DI"));
    EXPECT_FALSE(areaIs("", "DI"));
}

TEST(AddressText, HighWordFirstAnywhereInTheText)
{
    const char *const marked[] = {"SW10", "sw10", "HRSW10", "HR10sW", "HR1 xSw"};
    for (const char *text : marked)
        EXPECT_TRUE(hasHighWordFirst(QLatin1String(text))) << text;
    const char *const plain[] = {"", "HR10", "S", "W", "S W", "WS10", "HRS1W"};
    for (const char *text : plain)
        EXPECT_FALSE(hasHighWordFirst(QLatin1String(text))) << text;
}
