#include "desk/plan/tag_readings.h"

#include "tests/peers/text_printing.h"

#include <gtest/gtest.h>

namespace
{

TagReadings readingsOf(std::initializer_list<const char *> tags)
{
    QStringList texts;
    for (const char *tag : tags)
        texts += QLatin1String(tag);
    return tagReadingsOf(texts, WordItem, ValueForm());
}

} // namespace

TEST(TagReadings, AreInTheOrderOfTheirAddresses)
{
    const TagReadings tags = readingsOf({"HR9:f32", "2-DO3", "HRSW7", "DI1:bit", "HR5.3", "HR5"});
    QStringList shown;
    for (const Reading &reading : tags.readings)
        shown += labelOf(reading) + QLatin1Char(' ') + reading.shown.front().point->at.kindName();
    EXPECT_EQ(shown, (QStringList{QStringLiteral("DI1 bit"), QStringLiteral("HR5 word"),
                                  QStringLiteral("HR5.3 bit"), QStringLiteral("HRSW7 dword"),
                                  QStringLiteral("HR9 f32"), QStringLiteral("2-DO3 bit")}));
    EXPECT_TRUE(tags.skipped.isEmpty());
}

TEST(TagReadings, SayWhyTheyLeaveOneOut)
{
    const struct {
        const char *tag;
        const char *reason;
    } cases[] = {
        {"HR5:f32x2", "tag \"HR5:f32x2\": expected one value, and of HR a bit"},
        {"DI1:u16", "tag \"DI1:u16\": expected one value, and of DI a bit"},
        {"HR5:f99", "address \"HR5:f99\": type \"f99\": expected bit"},
        {"XX5", "address \"XX5\": unknown area \"XX\""},
        {"HR65537", "address \"HR65537\""},
    };
    for (const auto &one : cases) {
        const TagReadings tags = readingsOf({one.tag});
        EXPECT_TRUE(tags.readings.empty());
        EXPECT_TRUE(tags.skipped.value(0).startsWith(QLatin1String(one.reason)))
            << tags.skipped.value(0).toStdString();
    }
}
