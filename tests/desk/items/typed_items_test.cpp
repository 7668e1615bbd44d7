#include "desk/items/portions.h"
#include "desk/items/value_place.h"
#include "desk/types/value_parse.h"
#include "tests/peers/text_printing.h"

#include <gtest/gtest.h>

namespace
{

Result<TypedItems> itemsAt(const char *text)
{
    const Result<TypedText> typed = parseTypedText(QLatin1String(text));
    if (!typed)
        return typed.error();
    const Result<Address> address = parseAddress(typed->address);
    if (!address)
        return address.error();
    return typedItems(*address, typed->type.value_or(ValueType()), typed->count.value_or(1), typed->order);
}

TypedItems good(const char *text)
{
    const Result<TypedItems> typed = itemsAt(text);
    EXPECT_TRUE(typed) << typed.errorText().toStdString();
    return typed.valueOr(TypedItems());
}

QString commandText(const TypedItems &typed)
{
    const CommunicatorCommand command = typed.items.command();
    return QStringLiteral("%1 %2 x%3")
        .arg(nameOf(ItemKind(command.dataType)), command.address)
        .arg(command.count);
}

} // namespace

TEST(TypedItems, GoThroughTheDriverAsWhatItHas)
{
    const struct {
        const char *text;
        const char *command;
    } cases[] = {{"HR5:u16", "word HR5 x1"},         {"HR5:i16x4", "word HR5 x4"},
                 {"HR5:i16x4@BA", "word HR5 x4"},    {"HR5:f32", "dword HR5 x1"},
                 {"HR5:f32@CDAB", "dword HR5 x1"},   {"HR5:f32x3@ABCD", "dword HRSW5 x3"},
                 {"HRSW5:u32", "dword HRSW5 x1"},    {"HRSW5:u32@ABCD", "dword HRSW5 x1"},
                 {"IR5:f32@BADC", "word IR5 x2"},    {"HRSW5:f32@BADC", "word HR5 x2"},
                 {"HR5:f32x2@DCBA", "word HR5 x4"},  {"HRSW5:f64", "word HR5 x4"},
                 {"FN6HR5:u64x2", "word FN6HR5 x8"}, {"HR20:str16", "word HR20 x8"},
                 {"HR20:str4", "word HR20 x2"},      {"HR20:str7x2", "word HR20 x8"},
                 {"HR5:u8x3", "byte HR5 x3"},        {"HR5:u8x3@AB", "word HR5 x2"},
                 {"DI1:bitx8", "bit DI1 x8"},        {"HR7.3:bitx20", "bit HR7.3 x20"},
                 {"DO9:u8x2", "byte DO9 x2"},        {"DO9:bin8", "byte DO9 x1"}};
    for (const auto &one : cases)
        EXPECT_EQ(commandText(good(one.text)), QLatin1String(one.command)) << one.text;
}

TEST(TypedItems, NameEachValue)
{
    EXPECT_EQ(good("HR5:f32x3@ABCD").label(2), QStringLiteral("HR9"));
    EXPECT_EQ(good("HRSW5:f64x2").label(1), QStringLiteral("HRSW9"));
    EXPECT_EQ(good("HR20:str7x2").label(1), QStringLiteral("HR24"));
    EXPECT_EQ(good("HR7.14:bitx4").label(2), QStringLiteral("HR8.0"));
    EXPECT_EQ(good("HR5:u8x4").label(0), QStringLiteral("HR5 low"));
    EXPECT_EQ(good("HR5:u8x4").label(3), QStringLiteral("HR6 high"));
    EXPECT_EQ(good("HR5:u8x4@AB").label(0), QStringLiteral("HR5 high"));
    EXPECT_EQ(good("DI9:u8x2").label(1), QStringLiteral("DI17"));
}

TEST(TypedItems, RefuseWhatDoesNotFitTogether)
{
    const struct {
        const char *text;
        const char *expected;
    } cases[] = {
        {"DI1:u16", "DI holds bits; expected the type bit or u8, not u16"},
        {"HR7:bit", "expected a bit after the register, such as HR7.0"},
        {"HR7.3:u16", "a u16 has no bit number; expected the type bit"},
        {"HRSW7:u16", "SW marks values of several words"},
        {"HRSW7:str8", "SW marks values of several words"},
        {"HRSW7:f32@CDAB", "SW in the address says the high word first, and the order \"CDAB\" the low"},
        {"HRSW7:f64@HGFEDCBA", "SW in the address says the high word first"},
        {"HR7:f32@ABCDEFGH", "expected ABCD, CDAB, BADC or DCBA of a f32"},
        {"DI1:bit@ABCD", "bits have no order of bytes"},
        {"DI1:u8@AB", "bits have no order of bytes"},
        {"HR65536:u32", "end beyond HR65536"},
        {"HR65533:f64x2", "end beyond HR65536"},
        {"HR65530:str16", "end beyond HR65536"}};
    for (const auto &one : cases)
        EXPECT_TRUE(itemsAt(one.text).errorText().contains(QLatin1String(one.expected)))
            << one.text << ": " << itemsAt(one.text).errorText().toStdString();
    EXPECT_TRUE(itemsAt("HR65533:f64"));
}

// What the driver hands over for registers is the same whatever it takes them for.
TEST(TypedItems, ValuesAndTheDriversDataAreEachOthersReverse)
{
    const struct {
        const char *text;
        const char *value;
        const char *data;
    } cases[] = {{"HR5:u16", "4660", "3412"},
                 {"HR5:u16@BA", "4660", "1234"},
                 {"HR5:u32", "0x12345678", "78563412"},
                 {"HR5:u32@ABCD", "0x12345678", "78563412"},
                 {"HR5:u32@BADC", "0x12345678", "12345678"},
                 {"HR5:u32@DCBA", "0x12345678", "56781234"},
                 {"HR5:f64@ABCD", "1.5", "f83f000000000000"},
                 {"HR5:f64", "1.5", "000000000000f83f"},
                 {"HR5:str3", "ABC", "42410043"},
                 {"HR5:u8@BA", "17", "11"},
                 {"HR5:u8@AB", "17", "0011"},
                 {"DO5:bit", "1", "01"},
                 {"DO5:hex8", "A5", "a5"}};
    for (const auto &one : cases) {
        const TypedItems typed = good(one.text);
        const QByteArray value = parseValue(QLatin1String(one.value), typed.type).valueOr({});
        EXPECT_EQ(dataOf({value}, typed).toHex(), one.data) << one.text;
        EXPECT_EQ(valuesIn(QByteArray::fromHex(one.data), typed), std::vector<QByteArray>{value}) << one.text;
    }
    const TypedItems bits = good("HR7.3:bitx10");
    const std::vector<QByteArray> values = valuesIn(QByteArray::fromHex("0102"), bits);
    ASSERT_EQ(values.size(), 10u);
    EXPECT_EQ(values[0], QByteArray(1, '\1'));
    EXPECT_EQ(values[9], QByteArray(1, '\1'));
    EXPECT_EQ(dataOf(values, bits), QByteArray::fromHex("0102"));
    EXPECT_EQ(valuesIn(QByteArray::fromHex("112233"), good("HR5:u8x3")).size(), 3u);
}

TEST(TypedItems, AreSplitIntoWholeValues)
{
    const std::vector<TypedItems> doubles = portionsOf(good("HR1:f64x40@ABCD"));
    ASSERT_EQ(doubles.size(), 2u);
    EXPECT_EQ(doubles[0].count, 31);
    EXPECT_EQ(commandText(doubles[1]), QStringLiteral("word HR125 x36"));
    EXPECT_EQ(doubles[1].label(0), QStringLiteral("HR125"));
    EXPECT_EQ(commandText(portionsOf(good("HR1:f32x63@ABCD"))[1]), QStringLiteral("dword HRSW125 x1"));
    EXPECT_EQ(commandText(portionsOf(good("HR1:u8x251"))[1]), QStringLiteral("byte HR126 x1"));
    EXPECT_EQ(commandText(portionsOf(good("HR1:u8x251@AB"))[1]), QStringLiteral("word HR126 x1"));
    EXPECT_EQ(portionsOf(good("HR1:str250x3")).size(), 3u);
    EXPECT_EQ(portionsOf(good("DI1:bitx2001")).size(), 2u);
}

TEST(TypedItems, AreNotWrittenWhereANeighbourWouldChange)
{
    EXPECT_TRUE(checkWritable(good("HR5:u8x2")));
    EXPECT_TRUE(checkWritable(good("HR5:str7")));
    EXPECT_TRUE(checkWritable(good("HR5:f64")));
    EXPECT_TRUE(checkWritable(good("HR5:u8"))
                    .errorText()
                    .contains(QLatin1String("expected an even count such as u8x2")));
}

// However values were asked for, they are the same: on their own, or as part of all that lies around them.
TEST(TypedItems, LieInARangeAsTheyLieAlone)
{
    const QByteArray area = QByteArray::fromHex("1122334455667788AABBCCDDEEFF0102030405060708");
    const std::vector<quint16> registers = registersIn(area);
    AreaRange range;
    range.first = 2; // HR3
    for (const char *text :
         {"HR3:u16", "HR4:u16@BA", "HR5:f32", "HR5:f32@ABCD", "HR5:f32x2@BADC", "HR5:f64@DCBA", "HR4:str7",
          "HR4:str7@BA", "HR5:u8x3", "HR5:u8x3@AB", "HR7:bcd32@ABCD"}) {
        const TypedItems typed = good(text);
        const std::vector<quint16> own(registers.begin() + typed.address.wireOffset() - range.first,
                                       registers.end());
        const std::vector<QByteArray> expected = valuesIn(own, typed.type, typed.order, typed.count);
        for (int i = 0; i < typed.count; ++i)
            EXPECT_EQ(valueAt(area, placeIn(range, typed, i)), expected[static_cast<size_t>(i)]) << text << i;
    }
    const TypedItems bits = good("HR3.8:bitx20"); // 0x2211, 0x4433
    QByteArray found;
    for (int i = 0; i < bits.count; ++i)
        found += valueAt(area, placeIn(range, bits, i)) == QByteArray(1, '\1') ? '1' : '0';
    EXPECT_EQ(found, "01000100"
                     "110011000010");
}

TEST(TypedItems, LieInARangeOfBits)
{
    AreaRange range;
    range.area = Area::Coils;
    range.first = 4; // DO5
    const QByteArray coils = QByteArray::fromHex("A51C");
    EXPECT_EQ(valueAt(coils, placeIn(range, good("DO7:bit"))), QByteArray(1, '\1'));
    EXPECT_EQ(valueAt(coils, placeIn(range, good("DO6:bit"))), QByteArray(1, '\0'));
    EXPECT_EQ(valueAt(coils, placeIn(range, good("DO9:u8"))), QByteArray::fromHex("CA"));
}

TEST(TypedItems, NeedTheItemsThatTheyLieIn)
{
    const struct {
        const char *text;
        int index;
        int first;
        int last;
    } cases[] = {{"HR5:u16x3", 2, 6, 6}, {"HR5:f64x2", 1, 8, 11},   {"HR5:str7x2", 1, 8, 11},
                 {"HR5:u8x4", 3, 5, 5},  {"HR5.14:bitx4", 2, 5, 5}, {"DO5:bitx3", 2, 6, 6},
                 {"DO5:u8x2", 1, 12, 19}};
    for (const auto &one : cases) {
        const AreaRange range = rangeOf(good(one.text), one.index);
        EXPECT_EQ(range.first, one.first) << one.text;
        EXPECT_EQ(range.last, one.last) << one.text;
    }
}
