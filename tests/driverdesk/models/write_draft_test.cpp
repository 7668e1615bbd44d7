#include "apps/driverdesk/models/write_draft.h"
#include "tests/driverdesk/support/point_rows.h"
#include "tests/peers/text_printing.h"

#include <gtest/gtest.h>

TEST(WriteDraft, ChecksTypeAndRange)
{
    struct Case {
        const char *point;
        const char *text;
        bool isGood;
        const char *bytes;
    };
    const Case cases[] = {
        {"HR1,u16", "65535", true, "ffff"},
        {"HR1,u16", "65536", false, ""},
        {"HR1,u16", "-1", false, ""},
        {"HR1,i16", "-32768", true, "8000"},
        {"HR1,i16", "32768", false, ""},
        {"HR1,u16,0.1", "21.5", true, "00d7"},
        {"HR1,u16,0.1", "21.55", false, ""},
        {"HR1,f32", "1.5", true, "3fc00000"},
        {"HR1,u16", "0x1F", true, "001f"},
        {"HR1,u16", "twelve", false, ""},
        {"HR1,u16,,,,,0=off;1=on", "on", true, "0001"},
        {"DO1,bit", "1", true, "01"},
        {"DO1,bit", "2", false, ""},
    };
    for (const Case &known : cases) {
        const WriteDraft draft(rowOfPoint(known.point));
        const Result<QByteArray> value = draft.valueOf(QLatin1String(known.text), false);
        EXPECT_EQ(value.isGood(), known.isGood) << known.point << " " << known.text;
        EXPECT_EQ(value.valueOr({}).toHex(), QByteArray(known.bytes)) << known.point << " " << known.text;
        EXPECT_EQ(value.errorText().isEmpty(), known.isGood);
    }
}

TEST(WriteDraft, RoundsOnlyWhenItMay)
{
    const WriteDraft draft(rowOfPoint("HR1,u16,0.1"));
    EXPECT_FALSE(draft.valueOf(QStringLiteral("21.55"), false));
    ASSERT_TRUE(draft.valueOf(QStringLiteral("21.54"), true));
    EXPECT_EQ(draft.valueOf(QStringLiteral("21.54"), true)->toHex(), QByteArray("00d7"));
}

TEST(WriteDraft, RefusesInputs)
{
    for (const char *input : {"IR1,u16", "DI1,bit"}) {
        const WriteDraft draft(rowOfPoint(input));
        EXPECT_TRUE(draft.problem().contains(QStringLiteral("is an input"))) << input;
        EXPECT_FALSE(draft.valueOf(QStringLiteral("1"), false)) << input;
    }
}

TEST(WriteDraft, RefusesToBroadcastABitOfARegister)
{
    EXPECT_FALSE(WriteDraft(rowOfPoint("HR1.3,bit", 0)).problem().isEmpty());
    EXPECT_TRUE(WriteDraft(rowOfPoint("HR1.3,bit", 1)).problem().isEmpty());
    EXPECT_TRUE(WriteDraft(rowOfPoint("HR1,u16", 0)).problem().isEmpty());
}

TEST(WriteDraft, SaysWhatIsExpected)
{
    const std::pair<const char *, const char *> cases[] = {
        {"HR1,u16", "u16, 0 to 65535"},
        {"HR1,i16,0.1,bar", "i16, -3276.8 to 3276.7 bar"},
        {"HR1,bcd16", "bcd16, 0 to 9999"},
        {"HR1,f32", "f32, any number"},
        {"HR1,str6", "str6, at most 6 bytes"},
        {"DO1,bit", "bit, 0 or 1"},
        {"HR1,u16,,,,,0=off;1=on", "u16, 0 to 65535; or off, on"},
    };
    for (const auto &[point, text] : cases)
        EXPECT_EQ(WriteDraft(rowOfPoint(point)).expectedText(), QLatin1String(text)) << point;
}

TEST(WriteDraft, ShowsBitsAsSwitchesWhereTheyMakeSense)
{
    const std::pair<const char *, int> cases[] = {
        {"DO1,bit", 1},         {"HR1.3,bit", 1}, {"HR1,u16", 16}, {"HR1,i16", 16},
        {"HR1,u16,0.1", 0},     {"HR1,u32", 0},   {"HR1,f32", 0},  {"HR1,u16,,,,,0=off;1=on", 0},
        {"HR1,u16,,,,,0:a", 16}};
    for (const auto &[point, switches] : cases)
        EXPECT_EQ(WriteDraft(rowOfPoint(point)).switches(), switches) << point;
    const WriteDraft draft(rowOfPoint("HR1,i16,,,,,15:fault"));
    EXPECT_EQ(draft.switchName(15), QStringLiteral("15 fault"));
    EXPECT_EQ(draft.switchName(3), QStringLiteral("3"));
    EXPECT_EQ(draft.textOfBits(0x8001), QStringLiteral("-32767"));
    EXPECT_EQ(draft.bitsOf(QStringLiteral("-32767")), std::optional<quint64>(0x8001));
    EXPECT_EQ(draft.bitsOf(QStringLiteral("x")), std::nullopt);
}

TEST(WriteDraft, WritesOneValueOfSeveral)
{
    const Result<TypedItems> items =
        typedItems(*parseAddress(QStringLiteral("HR10")), *parseType(QStringLiteral("u32")), 4);
    ASSERT_TRUE(items);
    Point point;
    point.at = *items;
    const WriteDraft draft({std::make_shared<const Point>(point), 2, 1});
    const WriteOrder order = draft.order(*draft.valueOf(QStringLiteral("7"), false), false);
    EXPECT_EQ(order.point.at.label(0), QStringLiteral("HR14"));
    EXPECT_EQ(order.point.at.count, 1);
    EXPECT_FALSE(order.isPreview);
}
