#include "desk/types/decimal.h"
#include "desk/types/value_parse.h"
#include "tests/peers/text_printing.h"

#include <gtest/gtest.h>

#include <limits>

namespace
{

ValueType typeOf(const char *name)
{
    return parseType(QLatin1String(name)).valueOr(ValueType());
}

QByteArray value(const char *hex)
{
    return QByteArray::fromHex(hex);
}

QString shown(const char *hex, const char *type, TextEncoding encoding = TextEncoding::Latin1)
{
    return textOf(value(hex), typeOf(type), encoding);
}

QString problemWith(const char *text, const char *type, const ValueParsing &parsing = {})
{
    return parseValue(QString::fromUtf8(text), typeOf(type), parsing).errorText();
}

QByteArray parsed(const char *text, const char *type, const ValueParsing &parsing = {})
{
    const Result<QByteArray> parsed = parseValue(QString::fromUtf8(text), typeOf(type), parsing);
    EXPECT_TRUE(parsed) << parsed.errorText().toStdString();
    return parsed.valueOr({}).toHex();
}

const ValueParsing Rounding{TextEncoding::Latin1, true};
const ValueParsing Utf8{TextEncoding::Utf8, false};

} // namespace

TEST(ValueText, ShowsEveryType)
{
    const struct {
        const char *hex;
        const char *type;
        const char *text;
    } cases[] = {{"01", "bit", "1"},
                 {"FF", "u8", "255"},
                 {"FF", "i8", "-1"},
                 {"FFFE", "u16", "65534"},
                 {"FFFE", "i16", "-2"},
                 {"001E", "hex", "0x001E"},
                 {"001E", "bin", "0b0000000000011110"},
                 {"1234", "bcd16", "1234"},
                 {"12A4", "bcd16", "0x12A4 (no BCD)"},
                 {"FFFFFFFF", "u32", "4294967295"},
                 {"80000000", "i32", "-2147483648"},
                 {"BDCCCCCD", "f32", "-0.1"},
                 {"7FC00000", "f32", "nan"},
                 {"FF800000", "f32", "-inf"},
                 {"FFFFFFFFFFFFFFFF", "u64", "18446744073709551615"},
                 {"8000000000000000", "i64", "-9223372036854775808"},
                 {"3FB999999999999A", "f64", "0.1"},
                 {"9999999999999999", "bcd64", "9999999999999999"},
                 {"50756D7020340000", "str8", "Pump 4"},
                 {"0041", "str2", ""},
                 {"4BFC686C", "str4", "K\xC3\xBChl"},
                 {"410A1B42", "str4", "A\\x0A\\x1BB"}};
    for (const auto &one : cases)
        EXPECT_EQ(shown(one.hex, one.type), QString::fromUtf8(one.text)) << one.hex << one.type;
    EXPECT_EQ(shown("4BC3BC686C", "str5", TextEncoding::Utf8), QString::fromUtf8("K\xC3\xBChl"));
}

TEST(ValueText, IsANumberOrNullOrATextInJson)
{
    EXPECT_EQ(jsonOf(value("FFFE"), typeOf("i16")), QJsonValue(-2));
    EXPECT_EQ(jsonOf(value("3DCCCCCD"), typeOf("f32")), QJsonValue(0.1));
    EXPECT_EQ(jsonOf(value("7FFFFFFFFFFFFFFF"), typeOf("u64")),
              QJsonValue(std::numeric_limits<qint64>::max()));
    EXPECT_EQ(jsonOf(value("8000000000000000"), typeOf("u64")),
              QJsonValue(QStringLiteral("9223372036854775808")));
    EXPECT_EQ(jsonOf(value("8000000000000000"), typeOf("i64")),
              QJsonValue(std::numeric_limits<qint64>::min()));
    EXPECT_EQ(jsonOf(value("0042"), typeOf("bcd16")), QJsonValue(42));
    EXPECT_EQ(jsonOf(value("410A"), typeOf("str2")), QJsonValue(QStringLiteral("A\n")));
    EXPECT_TRUE(jsonOf(value("7FC00000"), typeOf("f32")).isNull());
    EXPECT_TRUE(jsonOf(value("00FF"), typeOf("bcd16")).isNull());
    EXPECT_FALSE(numberOf(value("4142"), typeOf("str2")));
    EXPECT_FALSE(numberOf(value("00FF"), typeOf("bcd16")));
    EXPECT_EQ(numberOf(value("C0000000"), typeOf("f32")), -2.0);
}

TEST(ValueParse, TakesWhatTheTypeHolds)
{
    const struct {
        const char *text;
        const char *type;
        const char *hex;
    } cases[] = {{"on", "bit", "01"},
                 {"FALSE", "bit", "00"},
                 {"255", "u8", "ff"},
                 {"-128", "i8", "80"},
                 {"65535", "u16", "ffff"},
                 {"1e3", "u16", "03e8"},
                 {"5.0", "i16", "0005"},
                 {"-0", "u16", "0000"},
                 {"0x7fff", "i16", "7fff"},
                 {"0b101", "u16", "0005"},
                 {"beef", "hex", "beef"},
                 {"0xBEEF", "hex", "beef"},
                 {"0B10", "hex", "0b10"},
                 {"101", "bin", "0005"},
                 {"0b101", "bin", "0005"},
                 {"0x1F", "bin", "001f"},
                 {"9999", "bcd16", "9999"},
                 {"4294967295", "u32", "ffffffff"},
                 {"-2147483648", "i32", "80000000"},
                 {"0.1", "f32", "3dcccccd"},
                 {"16777216", "f32", "4b800000"},
                 {"16777218", "f32", "4b800001"},
                 {"+1.5e2", "f32", "43160000"},
                 {"100000000000000000000", "f32", "60ad78ec"},
                 {"-inf", "f32", "ff800000"},
                 {"nan", "f32", "7fc00000"},
                 {"18446744073709551615", "u64", "ffffffffffffffff"},
                 {"-9223372036854775808", "i64", "8000000000000000"},
                 {"9007199254740993", "i64", "0020000000000001"},
                 {"0.1", "f64", "3fb999999999999a"},
                 {"9999999999999999", "bcd64", "9999999999999999"},
                 {"AB", "str4", "41420000"},
                 {"", "str2", "0000"}};
    for (const auto &one : cases)
        EXPECT_EQ(parsed(one.text, one.type), one.hex) << one.text << " as " << one.type;
    EXPECT_EQ(parsed("\xC3\xBC", "str2"), "fc00");
    EXPECT_EQ(parsed("\xC3\xBC", "str2", Utf8), "c3bc");
}

TEST(ValueParse, RefusesWhatTheTypeCannotHold)
{
    const struct {
        const char *text;
        const char *type;
        const char *expected;
    } cases[] = {
        {"2", "bit", "value \"2\" does not fit bit; expected 0 or 1"},
        {"256", "u8", "does not fit u8; expected 0 to 255"},
        {"-1", "u16", "does not fit u16; expected 0 to 65535"},
        {"65536", "u16", "expected 0 to 65535"},
        {"0xFFFF", "i16", "expected -32768 to 32767"},
        {"-32769", "i16", "expected -32768 to 32767"},
        {"10000", "bcd16", "expected 0 to 9999"},
        {"-1", "bcd32", "expected 0 to 99999999"},
        {"10000", "hex", "at most 4 hexadecimal digits"},
        {"12", "bin", "at most 16 binary digits"},
        {"18446744073709551616", "u64", "expected 0 to 18446744073709551615"},
        {"9223372036854775808", "i64", "expected -9223372036854775808 to 9223372036854775807"},
        {"1e39", "f32", "a number that 32 bits can hold"},
        {"1e-50", "f32", "a number that 32 bits can hold"},
        {"1e400", "f64", "a number that 64 bits can hold"},
        {"abc", "f32", "a number that 32 bits can hold"},
        {"+-1", "f32", "a number that 32 bits can hold"},
        {"1e999999999", "u16", "expected 0 to 65535"},
        {"", "u16", "does not fit"},
        {"0x", "u16", "does not fit"},
        {"0x-1", "u16", "does not fit"},
        {"1 2", "u16", "does not fit"},
        {"12a", "u16", "does not fit"},
        {"ABC", "str2", "value \"ABC\" has 3 bytes; str2 holds 2"},
        {"\xE2\x82\xAC", "str4", "not in Latin-1"},
    };
    for (const auto &one : cases)
        EXPECT_TRUE(problemWith(one.text, one.type).contains(QLatin1String(one.expected)))
            << one.text << " as " << one.type << ": " << problemWith(one.text, one.type).toStdString();
    EXPECT_TRUE(problemWith("\xC3\xBC", "str1", Utf8).contains(QLatin1String("has 2 bytes; str1 holds 1")));
}

TEST(ValueParse, RoundsOnlyWhenItMay)
{
    EXPECT_EQ(problemWith("16777217", "f32"),
              QStringLiteral("value \"16777217\" is more exact than f32 can be; the nearest is 16777216"));
    EXPECT_EQ(parsed("16777217", "f32", Rounding), "4b800000");
    EXPECT_TRUE(problemWith("3.14159265358979", "f32").contains(QLatin1String("the nearest is 3.1415927")));
    EXPECT_EQ(parsed("3.14159265358979", "f64"), "400921fb54442d11");
    EXPECT_TRUE(problemWith("9007199254740993", "f64").contains(QLatin1String("more exact")));
    EXPECT_TRUE(problemWith("1.5", "u16").contains(QLatin1String("the nearest is 2")));
    EXPECT_EQ(parsed("1.5", "u16", Rounding), "0002");
    EXPECT_EQ(parsed("-1.5", "i16", Rounding), "fffe");
    EXPECT_EQ(parsed("65535.4", "u16", Rounding), "ffff");
    EXPECT_TRUE(problemWith("65535.5", "u16", Rounding).contains(QLatin1String("expected 0 to 65535")));
    EXPECT_EQ(parsed("-0.4", "u16", Rounding), "0000");
    // All the digits of a float are that float.
    EXPECT_EQ(parsed("0.100000001490116119384765625", "f32"), "3dcccccd");
    EXPECT_TRUE(problemWith("0.1000000014901161193847656251", "f32").contains(QLatin1String("more exact")));
}

TEST(Decimal, KeepsWhatIsWritten)
{
    EXPECT_EQ(parseDecimal(QStringLiteral("0100.50")), parseDecimal(QStringLiteral("1.005e2")));
    EXPECT_EQ(parseDecimal(QStringLiteral("-0")), parseDecimal(QStringLiteral("0.00")));
    for (const char *other : {"50", "-5", "0.5", "4"})
        EXPECT_FALSE(parseDecimal(QStringLiteral("5")) == parseDecimal(QLatin1String(other))) << other;
    EXPECT_FALSE(parseDecimal(QStringLiteral("0.1")) == parseDecimal(QStringLiteral("0.10000000000000001")));
    for (const char *text : {"", ".", "-", "1e", "1.2.3", "0x1", " 1", "1 ", "e5", "1e12345", "nan"})
        EXPECT_FALSE(parseDecimal(QLatin1String(text))) << text;
    for (const char *text : {".5", "5.", "+1", "1E-3"})
        EXPECT_TRUE(parseDecimal(QLatin1String(text))) << text;
}

TEST(Decimal, IsRoundedHalvesAway)
{
    const struct {
        const char *text;
        quint64 magnitude;
    } cases[] = {{"0.4", 0},  {"0.5", 1},     {"0.05", 0}, {"9.5", 10},   {"99.5", 100},
                 {"-2.5", 3}, {"12e2", 1200}, {"1.49", 1}, {"0.0049", 0}, {"199.9", 200}};
    for (const auto &one : cases)
        EXPECT_EQ(magnitudeOf(rounded(*parseDecimal(QLatin1String(one.text)))), one.magnitude) << one.text;
    EXPECT_FALSE(magnitudeOf(*parseDecimal(QStringLiteral("1e20"))));
    EXPECT_FALSE(magnitudeOf(*parseDecimal(QStringLiteral("18446744073709551616"))));
    EXPECT_EQ(magnitudeOf(*parseDecimal(QStringLiteral("18446744073709551615"))), 18446744073709551615u);
}
