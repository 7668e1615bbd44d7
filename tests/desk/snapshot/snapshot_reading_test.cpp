#include "desk/snapshot/snapshot_reading.h"
#include "tests/peers/text_printing.h"

#include <gtest/gtest.h>

#include <QStringList>

#include <set>

namespace
{

// A slave whose registers hold their numbers, and whose bits are set at odd ones.
struct FakeSlave {
    std::set<int> missing; // numbers
    int atOnce = 1000;
    int silentFrom = 100000;
    QStringList asked;

    RangeAnswer answer(const Items &items, QByteArray &data)
    {
        const int first = items.address.number;
        asked += QStringLiteral("%1x%2").arg(items.label(0)).arg(items.count);
        if (first + items.count > silentFrom)
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
    std::optional<KeptRange> kept;
    RunLimits limits;
};

Read read(FakeSlave &slave, const char *range, int until = 100000)
{
    SnapshotReading reading([&](const Items &items, QByteArray &data) { return slave.answer(items, data); });
    return {reading.read(*parseAreaRange(QLatin1String(range)), [=](int number) { return number < until; }),
            reading.limits()};
}

} // namespace

TEST(SnapshotReading, KeepsRegistersAndWhatIsMissing)
{
    FakeSlave slave;
    slave.missing = {3, 4, 300};
    const std::optional<KeptRange> kept = read(slave, "2-HR1..300").kept;
    ASSERT_TRUE(kept);
    ASSERT_EQ(kept->values.size(), 300u);
    for (int number = 1; number <= 300; ++number) {
        const std::optional<quint16> &value = kept->values[static_cast<size_t>(number - 1)];
        EXPECT_EQ(value, slave.missing.count(number) > 0 ? std::nullopt : std::optional<quint16>(number));
    }
    EXPECT_EQ(slave.asked.first(), QStringLiteral("2-HR1x64"));
    EXPECT_LT(slave.asked.size(), 40);
}

TEST(SnapshotReading, KeepsBits)
{
    FakeSlave slave;
    slave.missing = {20};
    const std::optional<KeptRange> kept = read(slave, "1-DI5..23").kept;
    ASSERT_TRUE(kept);
    for (int number = 5; number <= 23; ++number) {
        const std::optional<quint16> &value = kept->values[static_cast<size_t>(number - 5)];
        EXPECT_EQ(value, number == 20 ? std::nullopt : std::optional<quint16>(number % 2)) << number;
    }
}

TEST(SnapshotReading, AsksForLessWhereTheSlaveGivesLess)
{
    FakeSlave slave;
    slave.atOnce = 10;
    const Read result = read(slave, "1-IR1..100");
    ASSERT_TRUE(result.kept);
    EXPECT_EQ(result.kept->values.back(), quint16(100));
    EXPECT_LE(result.limits.registers, 10);
    EXPECT_GE(result.limits.registers, 4);
    EXPECT_EQ(result.limits.coils, RunLimits().coils);
}

TEST(SnapshotReading, IsWholeOrNothing)
{
    FakeSlave slave;
    slave.silentFrom = 100;
    EXPECT_FALSE(read(slave, "1-HR1..200").kept);
    FakeSlave other;
    EXPECT_FALSE(read(other, "1-HR1..200", 70).kept) << "interrupted";
    EXPECT_EQ(other.asked.size(), 2);
}
