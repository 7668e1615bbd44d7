#include "desk/plan/station_scan.h"

#include <gtest/gtest.h>

#include <numeric>

namespace
{

std::vector<int> stationsTo(int last)
{
    std::vector<int> stations(static_cast<size_t>(last));
    std::iota(stations.begin(), stations.end(), 1);
    return stations;
}

StationAnswer answer(StationAnswer::Kind kind, int other = -1)
{
    return {kind, other, QString(), QString()};
}

bool always(int /*done*/, int /*total*/, int /*found*/)
{
    return true;
}

} // namespace

TEST(StationScan, DoubtsEverybodyWhenNobodyIsFound)
{
    StationScan scan(
        [](int station) { return answer(station == 3 ? StationAnswer::Absent : StationAnswer::Silent); });
    EXPECT_TRUE(scan.run(stationsTo(4), always));
    EXPECT_EQ(scan.doubtful(), (std::vector<int>{1, 2, 4}));
    EXPECT_EQ(scan.scannedTo(), 4);
}

TEST(StationScan, DoubtsOnlyWhatWasDisturbedWhenSomebodyIsFound)
{
    StationScan scan([](int station) {
        if (station == 1)
            return answer(StationAnswer::Refuses);
        return station == 4 ? answer(StationAnswer::Disturbed, 2) : answer(StationAnswer::Silent);
    });
    EXPECT_TRUE(scan.run(stationsTo(5), always));
    EXPECT_EQ(scan.doubtful(), (std::vector<int>{2, 4})) << "station 2 has replied too late";
    EXPECT_EQ(scan.found().size(), 1u);
    EXPECT_EQ(scan.disturbed().size(), 1u);
}

TEST(StationScan, DoubtsNobodyOnALineThatEchoes)
{
    StationScan scan([](int) { return answer(StationAnswer::Echo); });
    EXPECT_TRUE(scan.run(stationsTo(4), always));
    EXPECT_TRUE(scan.doubtful().empty());
    EXPECT_EQ(scan.count(StationAnswer::Echo), 4);
}

TEST(StationScan, KeepsTheLastAnswerOfEachStation)
{
    int pass = 0;
    StationScan scan([&](int station) {
        return answer(pass == 1 && station == 2 ? StationAnswer::Answers : StationAnswer::Silent);
    });
    scan.run(stationsTo(3), always);
    pass = 1;
    EXPECT_TRUE(scan.run(scan.doubtful(), always));
    ASSERT_EQ(scan.found().size(), 1u);
    EXPECT_EQ(scan.found().front().station, 2);
    EXPECT_EQ(scan.scanned(), 3);
}

TEST(StationScan, ListsStationsInTheirOrderAndEndsWhenItMayNotGoOn)
{
    StationScan scan([](int) { return answer(StationAnswer::Answers); });
    EXPECT_FALSE(scan.run({5, 3, 4}, [](int done, int total, int found) {
        EXPECT_EQ(total, 3);
        EXPECT_EQ(found, done);
        return done < 2;
    }));
    ASSERT_EQ(scan.found().size(), 2u);
    EXPECT_EQ(scan.found().front().station, 3);
    EXPECT_EQ(scan.scannedTo(), 5);
}

TEST(StationScan, EndsWhereThereIsNoHope)
{
    StationScan scan(
        [](int station) { return answer(station == 3 ? StationAnswer::Hopeless : StationAnswer::Silent); });
    EXPECT_FALSE(scan.run(stationsTo(9), always));
    EXPECT_EQ(scan.scannedTo(), 2);
}
