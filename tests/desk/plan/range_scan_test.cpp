#include "desk/plan/range_scan.h"

#include "tests/peers/text_printing.h"

#include <gtest/gtest.h>

#include <QStringList>

namespace
{

Items wordsOf(const char *address)
{
    Items items;
    items.address = *parseAddress(QLatin1String(address));
    items.kind = items.address.isBitArea() ? BitItem : WordItem;
    return items;
}

bool always(int /*number*/)
{
    return true;
}

// A slave that has the numbers from first to last and gives so many at once.
RangeScan::Reader slaveWith(int first, int last, int atOnce)
{
    return [=](const Items &items) {
        const int from = items.address.number;
        if (items.count > atOnce)
            return RangeAnswer::TooMany;
        return from >= first && from + items.count - 1 <= last ? RangeAnswer::There : RangeAnswer::Missing;
    };
}

} // namespace

TEST(RangeScan, FindsWhatIsThereHoweverLittleComesAtOnce)
{
    for (const int atOnce : {1, 2, 5, 64, 125}) {
        RangeScan scan(wordsOf("2-HR1"), slaveWith(7, 40, atOnce));
        EXPECT_TRUE(scan.run(1, 100, always));
        EXPECT_EQ(scan.found(), QStringList{QStringLiteral("2-HR7..40")}) << atOnce;
        EXPECT_EQ(scan.scannedTo(), 100);
    }
    RangeScan one(wordsOf("DI1"), slaveWith(7, 7, 2000));
    EXPECT_TRUE(one.run(1, 600, always));
    EXPECT_EQ(one.found(), QStringList{QStringLiteral("DI7")});
}

TEST(RangeScan, TakesAnAddressForMissingThatIsTooMuchByItself)
{
    RangeScan scan(wordsOf("HR1"), slaveWith(1, 9, 0));
    EXPECT_TRUE(scan.run(1, 9, always));
    EXPECT_TRUE(scan.found().isEmpty());
    EXPECT_EQ(scan.lastItems().count, 1);
}

// Of 64 registers of which it has the first eight, whole, in halves and so on, wherever it ends.
TEST(RangeScan, KeepsWhatItHasFoundWhenItEnds)
{
    const struct {
        int end; // from which number on nobody answers, or the scan may not go on
        const char *found;
        int scannedTo;
    } cases[] = {{1, "", 0}, {8, "HR1..8", 8}, {9, "HR1..8", 8}, {40, "HR1..8", 39}, {64, "HR1..8", 63}};
    for (const auto &one : cases) {
        const RangeScan::Reader slave = slaveWith(1, 8, 125);
        RangeScan silent(wordsOf("HR1"), [&](const Items &items) {
            return items.address.number >= one.end ? RangeAnswer::None : slave(items);
        });
        EXPECT_FALSE(silent.run(1, 64, always));
        RangeScan ended(wordsOf("HR1"), slave);
        EXPECT_FALSE(ended.run(1, 64, [&](int number) { return number < one.end; }));
        for (const RangeScan &scan : {silent, ended}) {
            EXPECT_EQ(scan.found().join(QLatin1Char(' ')), QLatin1String(one.found)) << one.end;
            EXPECT_EQ(scan.scannedTo(), one.scannedTo) << one.end;
        }
    }
}
