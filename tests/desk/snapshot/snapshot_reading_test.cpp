#include "desk/snapshot/snapshot_reading.h"
#include "tests/peers/text_printing.h"

#include <gtest/gtest.h>

#include <QStringList>

#include <random>
#include <set>

namespace
{

// A slave whose registers hold their numbers, and whose bits are set at odd ones.
struct FakeSlave {
    std::set<int> missing; // numbers
    int atOnce = 1000;
    int silentFrom = 100000;
    int silentAbove = 1000;
    QStringList asked;

    RangeAnswer answer(const Items &items, QByteArray &data)
    {
        data.clear();
        const int first = items.address.number;
        asked += QStringLiteral("%1x%2").arg(items.label(0)).arg(items.count);
        if (first + items.count > silentFrom || items.count > silentAbove)
            return RangeAnswer::None;
        if (items.count > atOnce)
            return RangeAnswer::TooMany;
        for (int number = first; number < first + items.count; ++number) {
            if (missing.count(number) > 0)
                return RangeAnswer::Missing;
            add(items.address.isBitArea(), number, number - first, data);
        }
        return RangeAnswer::There;
    }

private:
    static void add(bool isBit, int number, int index, QByteArray &data)
    {
        if (!isBit) {
            data += static_cast<char>(number & 0xFF);
            data += static_cast<char>(number >> 8);
            return;
        }
        if (index % 8 == 0)
            data += '\0';
        data[index / 8] = static_cast<char>(data.at(index / 8) | ((number % 2) << (index % 8)));
    }
};

struct Read {
    std::vector<KeptRange> kept; // empty when the slave did not give all
    RunLimits limits;
};

Read read(FakeSlave &slave, const QStringList &texts, int until = 100000)
{
    SnapshotReading reading([&](const Items &items, QByteArray &data) { return slave.answer(items, data); });
    std::vector<AreaRange> ranges;
    for (const QString &text : texts)
        ranges.push_back(*parseAreaRange(text));
    const auto kept = reading.read(ranges, [=](int done) { return done < until; });
    return {kept.value_or(std::vector<KeptRange>()), reading.limits()};
}

// Whether it holds what the slave does.
void expectValues(const KeptRange &kept, const FakeSlave &slave)
{
    const AreaRange &range = kept.range;
    ASSERT_EQ(kept.values.size(), static_cast<size_t>(range.last - range.first + 1));
    for (int number = range.first + 1; number <= range.last + 1; ++number) {
        const auto value = static_cast<quint16>(isBitArea(range.area) ? number % 2 : number);
        EXPECT_EQ(kept.values[static_cast<size_t>(number - range.first - 1)],
                  slave.missing.count(number) > 0 ? std::nullopt : std::optional<quint16>(value))
            << number;
    }
}

} // namespace

TEST(SnapshotReading, KeepsRegistersAndWhatIsMissing)
{
    FakeSlave slave;
    slave.missing = {3, 4, 300};
    const std::vector<KeptRange> kept = read(slave, {"2-HR1..300"}).kept;
    ASSERT_EQ(kept.size(), 1u);
    expectValues(kept.front(), slave);
    EXPECT_EQ(slave.asked.first(), QStringLiteral("2-HR1x1"));
    EXPECT_LT(slave.asked.size(), 30);
}

TEST(SnapshotReading, KeepsBits)
{
    FakeSlave slave;
    slave.missing = {20};
    const std::vector<KeptRange> kept = read(slave, {"1-DI5..23"}).kept;
    ASSERT_EQ(kept.size(), 1u);
    expectValues(kept.front(), slave);
}

TEST(SnapshotReading, TakesNeighboursTogetherAndNothingBetween)
{
    FakeSlave slave;
    const std::vector<KeptRange> kept = read(slave, {"1-HR20..21", "1-HR6..10", "1-HR1..5", "3-HR6"}).kept;
    ASSERT_EQ(kept.size(), 4u);
    EXPECT_EQ(rangeText(kept.front().range), QStringLiteral("1-HR20..21"));
    for (const KeptRange &range : kept)
        expectValues(range, slave);
    EXPECT_EQ(slave.asked, (QStringList{"1-HR1x10", "1-HR20x2", "3-HR6x1"}));
}

TEST(SnapshotReading, AsksForLessWhereTheSlaveGivesLess)
{
    FakeSlave slave;
    slave.atOnce = 10;
    const Read result = read(slave, {"1-IR1..100"});
    ASSERT_EQ(result.kept.size(), 1u);
    expectValues(result.kept.front(), slave);
    EXPECT_LE(result.limits.registers, 10);
    EXPECT_GE(result.limits.registers, 4);
    EXPECT_EQ(result.limits.coils, RunLimits().coils);
}

TEST(SnapshotReading, AsksForLessWhereMoreHasNoAnswer)
{
    FakeSlave slave;
    slave.silentAbove = 70;
    const Read result = read(slave, {"1-HR1..300"});
    ASSERT_EQ(result.kept.size(), 1u);
    expectValues(result.kept.front(), slave);
    EXPECT_LE(result.limits.registers, 70);
    EXPECT_GE(result.limits.registers, 60);
}

TEST(SnapshotReading, KeepsWhatOneByOneWouldFind)
{
    std::mt19937 random(5);
    const auto number = [&](int least, int most) {
        return std::uniform_int_distribution<>(least, most)(random);
    };
    for (int round = 0; round < 300; ++round) {
        FakeSlave slave;
        slave.atOnce = number(1, 130);
        for (int i = number(0, 8); i > 0; --i) {
            const int first = number(1, 400);
            for (int missing = first; missing < first + number(1, 40); ++missing)
                slave.missing.insert(missing);
        }
        const std::vector<KeptRange> kept =
            read(slave, {QStringLiteral("1-HR1..%1").arg(number(1, 400)), QStringLiteral("1-DO7..300")}).kept;
        ASSERT_EQ(kept.size(), 2u) << "round " << round;
        for (const KeptRange &range : kept)
            expectValues(range, slave);
    }
}

TEST(SnapshotReading, AsksOnceWhetherAStationAnswers)
{
    FakeSlave slave;
    EXPECT_EQ(read(slave, {"1-HR1..100", "1-HR201..300"}).kept.size(), 2u);
    EXPECT_EQ(slave.asked.first(), QStringLiteral("1-HR1x1"));
    EXPECT_FALSE(slave.asked.contains(QStringLiteral("1-HR201x1")));
}

TEST(SnapshotReading, IsWholeOrNothing)
{
    FakeSlave slave;
    slave.silentFrom = 100;
    EXPECT_TRUE(read(slave, {"1-HR1..200"}).kept.empty());
    FakeSlave dead;
    dead.silentFrom = 0;
    EXPECT_TRUE(read(dead, {"1-HR1..200", "1-IR1..200"}).kept.empty());
    EXPECT_EQ(dead.asked.size(), 1);
    FakeSlave other;
    EXPECT_TRUE(read(other, {"1-HR1..200"}, 70).kept.empty()) << "interrupted";
    EXPECT_EQ(other.asked.size(), 2);
}
