#include "desk/types/byte_order.h"
#include "desk/types/typed_text.h"
#include "tests/peers/text_printing.h"

#include <gtest/gtest.h>

namespace
{

ValueType typeOf(const char *name)
{
    const Result<ValueType> type = parseType(QLatin1String(name));
    EXPECT_TRUE(type) << type.errorText().toStdString();
    return type.valueOr(ValueType());
}

TypedText parsed(const char *text)
{
    const Result<TypedText> typed = parseTypedText(QLatin1String(text));
    EXPECT_TRUE(typed) << typed.errorText().toStdString();
    return typed.valueOr(TypedText());
}

QString problemWith(const char *text)
{
    return parseTypedText(QLatin1String(text)).errorText();
}

} // namespace

TEST(ValueType, HasShortAndLongNames)
{
    const struct {
        const char *name;
        const char *shortName;
        int registers;
    } cases[] = {
        {"bit", "bit", 1},         {"u8", "u8", 1},       {"u16", "u16", 1},      {"i16", "i16", 1},
        {"u32", "u32", 2},         {"i32", "i32", 2},     {"f32", "f32", 2},      {"u64", "u64", 4},
        {"i64", "i64", 4},         {"f64", "f64", 4},     {"hex", "hex", 1},      {"bin", "bin", 1},
        {"bcd16", "bcd16", 1},     {"bcd32", "bcd32", 2}, {"bcd64", "bcd64", 4},  {"float", "f32", 2},
        {"double", "f64", 4},      {"signed", "i16", 1},  {"unsigned", "u16", 1}, {"int64", "i64", 4},
        {"uint64", "u64", 4},      {"int16", "i16", 1},   {"uint32", "u32", 2},   {"byte", "u8", 1},
        {"string7", "str7", 4},    {"str16", "str16", 8}, {"str1", "str1", 1},    {"FLOAT", "f32", 2},
        {"Str250", "str250", 125}, {"hex32", "hex32", 2}, {"binary", "bin", 1},   {"bool", "bit", 1}};
    for (const auto &one : cases) {
        EXPECT_EQ(nameOf(typeOf(one.name)), QLatin1String(one.shortName)) << one.name;
        EXPECT_EQ(typeOf(one.name).registers(), one.registers) << one.name;
    }
}

TEST(ValueType, RefusesOtherNamesAndSaysWhatIsExpected)
{
    for (const char *name : {"", "f16", "u128", "str", "str0", "str251", "string", "int", "f32 ", "str-1"})
        EXPECT_FALSE(parseType(QLatin1String(name))) << name;
    EXPECT_TRUE(parseType(QStringLiteral("f16")).errorText().contains(QLatin1String("f32")));
    EXPECT_TRUE(parseType(QStringLiteral("str300")).errorText().contains(QLatin1String("1 to 250 bytes")));
}

TEST(ByteOrder, HasTheLettersOfItsTypesBytes)
{
    const struct {
        const char *type;
        const char *name;
        const char *fullName;
    } cases[] = {{"u32", "ABCD", "ABCD"},     {"f32", "cdab", "CDAB"},     {"i32", "BADC", "BADC"},
                 {"bcd32", "DCBA", "DCBA"},   {"u64", "ABCD", "ABCDEFGH"}, {"u64", "CDAB", "GHEFCDAB"},
                 {"f64", "BADC", "BADCFEHG"}, {"f64", "DCBA", "HGFEDCBA"}, {"i64", "ABCDEFGH", "ABCDEFGH"},
                 {"u16", "AB", "AB"},         {"u16", "BA", "BA"},         {"u16", "CDAB", "AB"},
                 {"u16", "BADC", "BA"},       {"str9", "DCBA", "BA"},      {"str9", "AB", "AB"},
                 {"u8", "BA", "BA"}};
    for (const auto &one : cases) {
        const Result<ByteOrder> order = parseOrder(QLatin1String(one.name), typeOf(one.type));
        ASSERT_TRUE(order) << order.errorText().toStdString();
        EXPECT_EQ(nameOf(*order, typeOf(one.type)), QLatin1String(one.fullName)) << one.type << one.name;
    }
}

TEST(ByteOrder, RefusesLettersThatItsTypeHasNot)
{
    const struct {
        const char *type;
        const char *name;
        const char *expected;
    } cases[] = {{"u32", "ABCDEFGH", "expected ABCD, CDAB, BADC or DCBA of a u32"},
                 {"u32", "AB", "expected ABCD"},
                 {"u64", "AB", "expected ABCDEFGH"},
                 {"u64", "ACBD", "for short ABCD"},
                 {"u16", "ABCDEFGH", "expected AB, BA"},
                 {"u16", "", "expected AB, BA"},
                 {"bit", "ABCD", "a bit has no order of bytes"}};
    for (const auto &one : cases) {
        const QString problem = parseOrder(QLatin1String(one.name), typeOf(one.type)).errorText();
        EXPECT_TRUE(problem.contains(QLatin1String(one.expected))) << problem.toStdString();
    }
}

TEST(TypedText, IsTakenApart)
{
    const struct {
        const char *text;
        const char *address;
        const char *type;
        int count;
        const char *order;
    } cases[] = {{"HR5:f32", "HR5", "f32", 1, ""},
                 {"HR9:i16x4", "HR9", "i16", 4, ""},
                 {"HR10:f64@ABCDEFGH", "HR10", "f64", 1, "ABCDEFGH"},
                 {"HR20:str16", "HR20", "str16", 1, ""},
                 {"DI1:bitx8", "DI1", "bit", 8, ""},
                 {"HR7.3", "HR7.3", "", 1, ""},
                 {"2-HRSW10:f32x2@ABCD", "2-HRSW10", "f32", 2, "ABCD"},
                 {"HR1@CDAB", "HR1", "", 1, "CDAB"},
                 {"HR1:hexx8", "HR1", "hex", 8, ""},
                 {"HR1:hex8", "HR1", "hex8", 1, ""},
                 {"HR1:str8X2", "HR1", "str8", 2, ""}};
    for (const auto &one : cases) {
        const TypedText typed = parsed(one.text);
        EXPECT_EQ(typed.address, QLatin1String(one.address)) << one.text;
        EXPECT_EQ(typed.type ? nameOf(*typed.type) : QString(), QLatin1String(one.type)) << one.text;
        EXPECT_EQ(typed.count.value_or(1), one.count) << one.text;
        EXPECT_EQ(typed.order, QLatin1String(one.order)) << one.text;
    }
}

TEST(TypedText, SaysWhatIsWrong)
{
    EXPECT_TRUE(
        problemWith("HR5:f16").startsWith(QLatin1String("address \"HR5:f16\": type \"f16\": expected bit")));
    EXPECT_TRUE(problemWith("HR5:").contains(QLatin1String("type \"\": expected bit")));
    EXPECT_TRUE(problemWith("HR5:f32x65537").contains(QLatin1String("count \"65537\": expected 1 to 65536")));
    EXPECT_TRUE(problemWith("HR5:f32x0").contains(QLatin1String("count \"0\": expected 1 to 65536")));
    EXPECT_TRUE(problemWith("HR5:f32x99999999999").contains(QLatin1String("expected 1 to 65536")));
    EXPECT_TRUE(problemWith("HR5:f32@").contains(QLatin1String("no order after \"@\"")));
    EXPECT_TRUE(problemWith("HR5:f32x").contains(QLatin1String("type \"f32x\"")));
}
