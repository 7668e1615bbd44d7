#include "desk/items/items.h"
#include "desk/items/portions.h"
#include "desk/items/value_place.h"
#include "desk/project/needed_tags.h"
#include "desk/types/value_bits.h"
#include "desk/types/value_text.h"
#include "tests/peers/text_printing.h"

#include <gtest/gtest.h>

namespace
{

Items itemsAt(const char *text, ItemKind kind, int count)
{
    Items items;
    items.address = parseAddress(QLatin1String(text)).valueOr(Address());
    items.kind = kind;
    items.count = count;
    return items;
}

TypedItems typedAt(const char *text, ItemKind kind, int count)
{
    return typedItems(itemsAt(text, kind, count), ValueForm::Unsigned);
}

bool fits(const char *text, ItemKind kind, int count)
{
    return checkItems(itemsAt(text, kind, count)).isGood();
}

std::optional<quint32> value(const char *text, ItemKind kind, ValueForm form = ValueForm::Unsigned)
{
    const Result<QByteArray> value = parseValue(QLatin1String(text), kind, form);
    EXPECT_EQ(value.isGood(), value.errorText().isEmpty()) << text;
    return value ? std::optional<quint32>(static_cast<quint32>(bitsOf(*value))) : std::nullopt;
}

} // namespace

TEST(HostItems, EndInsideTheirArea)
{
    EXPECT_TRUE(fits("HR65536", WordItem, 1));
    EXPECT_FALSE(fits("HR65536", WordItem, 2));
    EXPECT_TRUE(fits("HR65535", DoubleWordItem, 1));
    EXPECT_FALSE(fits("HR65536", DoubleWordItem, 1));
    EXPECT_TRUE(fits("HR65536.15", BitItem, 1));
    EXPECT_FALSE(fits("HR65536.15", BitItem, 2));
    EXPECT_TRUE(fits("HR65535", ByteItem, 4));
    EXPECT_FALSE(fits("HR65535", ByteItem, 5));
    EXPECT_TRUE(fits("DO65529", ByteItem, 1));
    EXPECT_FALSE(fits("DO65530", ByteItem, 1));
    EXPECT_FALSE(fits("HR1", WordItem, 0));
    EXPECT_FALSE(fits("HR2", DoubleWordItem, 2000000000));
}

TEST(HostItems, HaveKindsThatTheirAreaHas)
{
    EXPECT_FALSE(fits("DO1", WordItem, 1));
    EXPECT_FALSE(fits("HR1", BitItem, 1));
    EXPECT_FALSE(fits("HR1.0", WordItem, 1));
    EXPECT_FALSE(fits("HRSW1", WordItem, 1));
    EXPECT_TRUE(fits("HRSW1", DoubleWordItem, 1));
    EXPECT_TRUE(fits("FN5DO1", BlockItem, 1));
}

TEST(HostItems, AreSplitIntoWhatOneRequestCarries)
{
    const std::vector<TypedItems> words = portionsOf(typedAt("HR10", WordItem, 251));
    ASSERT_EQ(words.size(), 3u);
    EXPECT_EQ(words[1].address.text(), QStringLiteral("HR135"));
    EXPECT_EQ(words[2].address.text(), QStringLiteral("HR260"));
    EXPECT_EQ(words[2].count, 1);
    EXPECT_EQ(portionsOf(typedAt("HR1", WordItem, 125)).size(), 1u);

    const std::vector<TypedItems> doubles = portionsOf(typedAt("HRSW1", DoubleWordItem, 63));
    ASSERT_EQ(doubles.size(), 2u);
    EXPECT_EQ(doubles[1].items.command().address, QStringLiteral("HRSW125"));

    const std::vector<TypedItems> bits = portionsOf(typedAt("HR1.15", BitItem, 3000));
    ASSERT_EQ(bits.size(), 2u);
    EXPECT_EQ(bits[1].address.text(), QStringLiteral("HR125.15"));
    EXPECT_LE(extentOf(bits[0].items), 125);

    EXPECT_EQ(portionsOf(typedAt("DI1", BitItem, 2000)).size(), 1u);
    EXPECT_EQ(portionsOf(typedAt("DI1", BitItem, 2001)).size(), 2u);
    EXPECT_EQ(portionsOf(typedAt("DO1", ByteItem, 251))[1].address.text(), QStringLiteral("DO2001"));
}

TEST(HostItems, NameEachItem)
{
    EXPECT_EQ(itemsAt("HR7.14", BitItem, 4).label(2), QStringLiteral("HR8.0"));
    EXPECT_EQ(itemsAt("HR7", ByteItem, 4).label(3), QStringLiteral("HR8 high"));
    EXPECT_EQ(itemsAt("HR7", DoubleWordItem, 2).label(1), QStringLiteral("HR9"));
    EXPECT_EQ(itemsAt("DO7", ByteItem, 2).label(1), QStringLiteral("DO15"));
    EXPECT_EQ(itemsAt("DO7", BitItem, 2).label(1), QStringLiteral("DO8"));
}

TEST(HostItems, AreTheDriversToJudgeWhereTheyAreRaw)
{
    Items raw;
    raw.rawText = QStringLiteral("fn5xy");
    raw.count = 0;
    EXPECT_TRUE(checkItems(raw));
    EXPECT_EQ(raw.label(0), QStringLiteral("fn5xy"));
    EXPECT_EQ(raw.label(2), QStringLiteral("fn5xy +2"));
    EXPECT_EQ(raw.command().address, QStringLiteral("fn5xy"));
    EXPECT_EQ(nameOf(static_cast<ItemKind>(99)), QStringLiteral("99"));
}

TEST(HostItems, AreWholeOnesInASpan)
{
    const auto count = [](const char *span, int bits, const char *name) {
        return countIn(*parseAddressSpan(QLatin1String(span)), bits, QLatin1String(name));
    };
    EXPECT_EQ(count("HR1..6", 32, "dword").valueOr(0), 3);
    EXPECT_EQ(count("DO1..16", 8, "byte").valueOr(0), 2);
    EXPECT_EQ(count("HR1..5", 32, "dword").errorText(),
              QStringLiteral("\"HR1..5\": a dword takes 2 registers, and these are 5"));
    EXPECT_EQ(count("DO1..9", 8, "byte").errorText(),
              QStringLiteral("\"DO1..9\": a byte takes 8 bits, and these are 9"));
}

TEST(HostItems, AskForTheTagsOfBytesOnBits)
{
    const QStringList tags = neededTags(itemsAt("FN5DO9", ByteItem, 2), 3);
    ASSERT_EQ(tags.size(), 16);
    EXPECT_EQ(tags.first(), QStringLiteral("3-DO9"));
    EXPECT_EQ(tags.last(), QStringLiteral("3-DO24"));
    EXPECT_TRUE(neededTags(itemsAt("DO9", BitItem, 2), 3).isEmpty());
    EXPECT_TRUE(neededTags(itemsAt("HR9", ByteItem, 2), 3).isEmpty());

    Items raw;
    raw.rawText = QStringLiteral("fn5do65530");
    raw.kind = ByteItem;
    EXPECT_EQ(neededTags(raw, 1).size(), 2 * 7);
    EXPECT_EQ(neededTags(raw, 1).first(), QStringLiteral("1-DO65530"));
}

TEST(HostItems, DataAndValuesAreEachOthersReverse)
{
    const auto dataFor = [](const char *address, ItemKind kind, const std::vector<quint64> &numbers) {
        const TypedItems typed = typedAt(address, kind, static_cast<int>(numbers.size()));
        std::vector<QByteArray> values;
        for (const quint64 number : numbers)
            values.push_back(valueOf(number, typed.type.bytes()));
        const QByteArray data = dataOf(values, typed);
        EXPECT_EQ(valuesIn(data, typed), values) << address;
        return data.toHex().toUpper();
    };
    EXPECT_EQ(dataFor("HR1", WordItem, {0x1234, 0xFFFF}), "3412FFFF");
    EXPECT_EQ(dataFor("HR1", DoubleWordItem, {0x11223344}), "44332211");
    EXPECT_EQ(dataFor("HRSW1", DoubleWordItem, {0x11223344}), "44332211");
    EXPECT_EQ(dataFor("HR1", ByteItem, {0x11, 0x22, 0x33}), "112233");
    EXPECT_EQ(dataFor("HR1", BlockItem, {0x11, 0x22, 0x33}), "112233");
    EXPECT_EQ(dataFor("DO1", BitItem, {1, 0, 0, 0, 0, 0, 0, 0, 0, 1}), "0102");
    EXPECT_EQ(dataFor("HR7.15", SecondBitItem, {1, 0, 1}), "05");
}

TEST(HostValues, TakeWhatFitsAndNothingElse)
{
    EXPECT_EQ(value("65535", WordItem), 0xFFFFu);
    EXPECT_EQ(value("-1", WordItem), 0xFFFFu);
    EXPECT_EQ(value("-32768", WordItem), 0x8000u);
    EXPECT_EQ(value("0xBEEF", WordItem), 0xBEEFu);
    EXPECT_EQ(value("0b101", ByteItem), 5u);
    EXPECT_EQ(value("4294967295", DoubleWordItem), 0xFFFFFFFFu);
    EXPECT_EQ(value("-2147483648", DoubleWordItem), 0x80000000u);
    EXPECT_EQ(value("on", BitItem), 1u);
    EXPECT_EQ(value("FALSE", SecondBitItem), 0u);
    for (const char *text : {"65536", "-32769", "1.5", "", "0x", "0x10000", "12a", "on", "0x-1", "1 2"})
        EXPECT_FALSE(value(text, WordItem)) << text;
    for (const char *text : {"2", "-1", "", "yes"})
        EXPECT_FALSE(value(text, BitItem)) << text;
    EXPECT_FALSE(value("256", BlockItem));
    EXPECT_FALSE(value("4294967296", DoubleWordItem));
    EXPECT_FALSE(value("-2147483649", DoubleWordItem));
}

TEST(HostValues, AreReadInTheFormTheyAreWrittenIn)
{
    EXPECT_EQ(value("1010", WordItem, ValueForm::Binary), 10u);
    EXPECT_EQ(value("0b1010", WordItem, ValueForm::Binary), 10u);
    EXPECT_EQ(value("0x10", WordItem, ValueForm::Binary), 16u);
    EXPECT_EQ(value("10", WordItem, ValueForm::Hex), 16u);
    EXPECT_EQ(value("0x10", WordItem, ValueForm::Hex), 16u);
    EXPECT_EQ(value("beef", WordItem, ValueForm::Hex), 0xBEEFu);
    EXPECT_FALSE(value("0B10", WordItem, ValueForm::Hex)) << "binary, or hexadecimal?";
    EXPECT_FALSE(value("12", WordItem, ValueForm::Binary));
    EXPECT_FALSE(value("10000", WordItem, ValueForm::Hex));
    EXPECT_FALSE(value("beef", WordItem));
}

QString shown(quint32 value, ItemKind kind, ValueForm form)
{
    const ValueType type = typeOf(kind, form);
    return textOf(valueOf(value, type.bytes()), type);
}

QJsonValue json(quint32 value, ItemKind kind, ValueForm form)
{
    const ValueType type = typeOf(kind, form);
    return jsonOf(valueOf(value, type.bytes()), type);
}

TEST(HostValues, FloatsKeepTheirBits)
{
    EXPECT_EQ(value("1", DoubleWordItem, ValueForm::Float), 0x3F800000u);
    EXPECT_EQ(value("-0.1", DoubleWordItem, ValueForm::Float), 0xBDCCCCCDu);
    EXPECT_FALSE(value("1e39", DoubleWordItem, ValueForm::Float));
    EXPECT_FALSE(value("abc", DoubleWordItem, ValueForm::Float));
    EXPECT_EQ(shown(0xBDCCCCCD, DoubleWordItem, ValueForm::Float), QStringLiteral("-0.1"));
    EXPECT_EQ(json(0x3DCCCCCD, DoubleWordItem, ValueForm::Float), QJsonValue(0.1));
    EXPECT_TRUE(json(0x7FC00000, DoubleWordItem, ValueForm::Float).isNull());
}

TEST(HostValues, AreWrittenInEveryForm)
{
    EXPECT_EQ(shown(0xFFFE, WordItem, ValueForm::Unsigned), QStringLiteral("65534"));
    EXPECT_EQ(shown(0xFFFE, WordItem, ValueForm::Signed), QStringLiteral("-2"));
    EXPECT_EQ(shown(0x1E, WordItem, ValueForm::Hex), QStringLiteral("0x001E"));
    EXPECT_EQ(shown(0x1E, ByteItem, ValueForm::Binary), QStringLiteral("0b00011110"));
    EXPECT_EQ(shown(0x80000000, DoubleWordItem, ValueForm::Signed), QStringLiteral("-2147483648"));
    EXPECT_EQ(shown(0x80, ByteItem, ValueForm::Signed), QStringLiteral("-128"));
    EXPECT_EQ(shown(1, BitItem, ValueForm::Signed), QStringLiteral("1"));
    EXPECT_EQ(json(0xFFFE, WordItem, ValueForm::Signed), QJsonValue(-2));
    EXPECT_EQ(json(1, BitItem, ValueForm::Signed), QJsonValue(1));
}
