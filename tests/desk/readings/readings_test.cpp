#include "desk/readings/value_readings.h"

#include "tests/peers/text_printing.h"

#include <gtest/gtest.h>

namespace
{

TypedItems valuesAt(const char *address, const char *type, int count = 1)
{
    return *typedItems(*parseAddress(QLatin1String(address)), *parseType(QLatin1String(type)), count);
}

// The driver is handed such text as it stands.
TypedItems rawItems()
{
    Items items;
    items.rawText = QStringLiteral("fn5hr1");
    items.kind = WordItem;
    return typedItems(items, ValueForm());
}

std::vector<Reading> valueReadings(const TypedItems &typed)
{
    return valueReadingsOf({namelessPoint(typed)});
}

QString linkRange(const TypedItems &typed)
{
    const std::optional<AreaRange> range = rangeOf(valueReadings(typed).front(), 3);
    return range ? rangeText(*range) : QStringLiteral("none");
}

} // namespace

TEST(Readings, AreOneForEachValue)
{
    const std::vector<Reading> readings = valueReadings(valuesAt("2-HR5", "f32", 3));
    ASSERT_EQ(readings.size(), 3u);
    EXPECT_EQ(labelOf(readings.back()), QStringLiteral("2-HR9"));
    EXPECT_EQ(readings.back().items.count, 2);
}

TEST(Readings, AreReadAsTheyAreWhereNobodyKnowsTheirItems)
{
    EXPECT_EQ(valueReadings(rawItems()).front().items.rawText, QStringLiteral("fn5hr1"));
    const std::vector<Reading> bytes = valueReadings(valuesAt("DO1", "u8", 2));
    ASSERT_EQ(bytes.size(), 1u) << "bytes of bits, in portions";
    EXPECT_EQ(bytes.front().items.kind, ByteItem);
    EXPECT_EQ(bytes.front().shown.size(), 2u);
}

TEST(Readings, LieInARangeWhereTheyCanBeReadAsOne)
{
    EXPECT_EQ(linkRange(valuesAt("HR5", "f32")), QStringLiteral("3-HR5..6"));
    EXPECT_EQ(linkRange(valuesAt("2-DI9", "bit")), QStringLiteral("2-DI9"));
    EXPECT_EQ(linkRange(valuesAt("DO1", "u8")), QStringLiteral("none"));
    EXPECT_EQ(linkRange(rawItems()), QStringLiteral("none"));
    Reading doubleWord{{}, {}};
    doubleWord.items.address = *parseAddress(QStringLiteral("HR1"));
    doubleWord.items.kind = DoubleWordItem;
    EXPECT_FALSE(rangeOf(doubleWord, 3));
    doubleWord.items.kind = WordItem;
    doubleWord.items.count = 126;
    EXPECT_FALSE(rangeOf(doubleWord, 3)) << "more than one reply carries";
}

TEST(Readings, AreCalledByTheirFirst)
{
    const std::vector<Reading> readings = valueReadings(valuesAt("HR5", "u16", 3));
    EXPECT_EQ(labelOf({&readings[0], &readings[1], &readings[2]}), QStringLiteral("HR5 and 2 more"));
    EXPECT_EQ(labelOf({&readings[1]}), QStringLiteral("HR6"));
    EXPECT_EQ(labelOf(std::vector<const Reading *>()), QString());
    EXPECT_EQ(labelOf(Reading{readings[2].items, {}}), QStringLiteral("HR7")) << "of which nothing is shown";
}
