#include "desk/learning/station_facts.h"

#include <gtest/gtest.h>

#include <random>

namespace
{

const RequestCost Start{24000, 1000};
const RequestCost Line{53000, 2300};

double ratioOf(CostLearner &learner)
{
    return learner.cost().perRequest / learner.cost().perUnit;
}

AreaRange registers(int first, int last)
{
    return {1, Area::HoldingRegisters, first, last};
}

} // namespace

TEST(CostLearner, GoesByTheStartUntilLengthsDiffer)
{
    CostLearner learner(Start);
    EXPECT_EQ(learner.cost().perUnit, Start.perUnit);
    EXPECT_FALSE(learner.wantedLengths());
    learner.add(6, 2 * Start.of(6));
    learner.add(8, 2 * Start.of(8));
    EXPECT_NEAR(learner.cost().perRequest, 2 * Start.perRequest, 1e-6);
    EXPECT_NEAR(learner.cost().perUnit, 2 * Start.perUnit, 1e-6);
    ASSERT_TRUE(learner.wantedLengths());
    EXPECT_EQ(learner.wantedLengths()->shortest, 8 + 16);
}

TEST(CostLearner, TellsRequestsFromUnitsOnceTheyDiffer)
{
    CostLearner learner(Start);
    learner.add(1, Line.of(1));
    learner.add(60, Line.of(60));
    EXPECT_NEAR(learner.cost().perRequest, Line.perRequest, 1);
    EXPECT_NEAR(learner.cost().perUnit, Line.perUnit, 1);
    EXPECT_TRUE(learner.wantedLengths()) << "one time at either end may be far out";
    for (int i = 0; i < 2; ++i) {
        learner.add(1, Line.of(1));
        learner.add(60, Line.of(60));
    }
    EXPECT_FALSE(learner.wantedLengths());
    EXPECT_TRUE(learner.isKnown());
}

TEST(CostLearner, AsksForShorterOnesWhenAllAreLong)
{
    CostLearner learner(Start);
    learner.add(120, Line.of(120));
    ASSERT_TRUE(learner.wantedLengths());
    EXPECT_EQ(learner.wantedLengths()->shortest, 1);
    EXPECT_EQ(learner.wantedLengths()->longest, 120 - 16);
}

TEST(CostLearner, IsNotMovedByTimesFarOut)
{
    std::mt19937 random(7);
    for (int round = 0; round < 200; ++round) {
        CostLearner learner(Start);
        for (int i = 0; i < 60; ++i) {
            const int units = std::uniform_int_distribution<>(1, 125)(random);
            const double noise = std::uniform_real_distribution<>(1, 1.05)(random);
            learner.add(units, Line.of(units) * noise * (i % 5 == 4 ? 10 : 1));
        }
        ASSERT_NEAR(ratioOf(learner), 23, 4) << "round " << round;
    }
}

TEST(CostLearner, FollowsALineThatHasChanged)
{
    CostLearner learner(Start);
    for (int i = 0; i < 300; ++i)
        learner.add(1 + i % 100, Line.of(1 + i % 100));
    const RequestCost faster{8000, 190};
    for (int i = 0; i < 300; ++i)
        learner.add(1 + i % 100, faster.of(1 + i % 100));
    EXPECT_NEAR(learner.cost().perRequest, faster.perRequest, 1);
    EXPECT_NEAR(learner.cost().perUnit, faster.perUnit, 1);
}

TEST(CostLearner, KeepsWhatWasLearntBefore)
{
    CostLearner learner(Start);
    learner.restore(Line);
    EXPECT_EQ(ratioOf(learner), Line.perRequest / Line.perUnit);
    learner.add(1, Line.of(1) / 2);
    EXPECT_NEAR(ratioOf(learner), Line.perRequest / Line.perUnit, 1e-9);
    EXPECT_FALSE(learner.wantedLengths());
}

TEST(CostLearner, KeepsWhatWasLearntBeforeWhateverItBeginsWith)
{
    CostLearner learner(Start);
    EXPECT_FALSE(learner.hasMeasured());
    learner.restore(Line);
    learner.setStart(Start);
    EXPECT_EQ(learner.cost().perRequest, Line.perRequest);
    EXPECT_TRUE(learner.hasMeasured());
    CostLearner other(Start);
    other.add(1, Line.of(1));
    EXPECT_TRUE(other.hasMeasured());
}

TEST(CostLearner, ForgetsTimesOfLongAgo)
{
    CostLearner learner(Start);
    for (const int units : {1, 1, 1, 60, 60, 60})
        learner.add(units, Line.of(units));
    EXPECT_FALSE(learner.wantedLengths());
    for (int i = 0; i < 12000; ++i)
        learner.add(1, Line.of(1));
    ASSERT_TRUE(learner.wantedLengths());
    EXPECT_EQ(learner.wantedLengths()->shortest, 1 + 16);
}

TEST(RequestCost, IsNearWhenPlansHardlyDiffer)
{
    EXPECT_TRUE(isNear({100, 5}, {200, 10}));
    EXPECT_TRUE(isNear({100, 5}, {100, 5.4}));
    EXPECT_FALSE(isNear({100, 5}, {100, 6}));
    EXPECT_TRUE(isNear({100, 0}, {100, 0.04}));
    EXPECT_FALSE(isNear({100, 0}, {100, 1}));
}

TEST(StationFacts, LetsBitsGoByRegisters)
{
    StationFacts facts;
    CostLearner &registers = facts.requests(Area::InputRegisters).cost;
    for (const int units : {1, 1, 1, 60, 60, 60})
        registers.add(units, Line.of(units));
    facts.compareCosts();
    const RequestCost bits = facts.requests(Area::DiscreteInputs).cost.cost();
    EXPECT_NEAR(bits.perRequest / bits.perUnit, 2 * Line.perRequest / Line.perUnit, 0.1);
}

TEST(CountLimit, IsTheProtocolsUntilSomethingIsRefused)
{
    CountLimit limit(125);
    EXPECT_EQ(limit.attempt(), 125);
    limit.addGiven(30);
    EXPECT_EQ(limit.attempt(), 125);
    EXPECT_TRUE(limit.isExact());
}

TEST(CountLimit, IsFoundByHalving)
{
    for (int actual = 1; actual < 125; ++actual) {
        CountLimit limit(125);
        limit.addRefused(registers(0, 124));
        int attempts = 0;
        for (; !limit.isExact(); ++attempts) {
            const int count = limit.attempt();
            if (count <= actual)
                limit.addGiven(count);
            else
                ASSERT_TRUE(limit.addRefused(registers(1000, 1000 + count - 1)));
        }
        EXPECT_EQ(limit.attempt(), actual);
        EXPECT_LE(attempts, 7);
    }
}

TEST(CountLimit, GoesOnFromWhatWasLearntBefore)
{
    CountLimit limit(125);
    limit.restore(10, 50);
    limit.addGiven(20);
    EXPECT_EQ(limit.refused(), 50);
    EXPECT_EQ(limit.attempt(), 35);
    limit.addGiven(60);
    EXPECT_FALSE(limit.hasRefused()) << "it gives more than it did";
    limit.restore(10, 126);
    EXPECT_FALSE(limit.hasRefused()) << "that is the protocol's";
    EXPECT_EQ(limit.attempt(), 125);
}

TEST(CountLimit, ForgetsWhatWasRefusedForAHole)
{
    CountLimit limit(125);
    limit.addGiven(10);
    EXPECT_TRUE(limit.addRefused(registers(0, 99)));
    EXPECT_TRUE(limit.addRefused(registers(200, 310)));
    EXPECT_EQ(limit.refused(), 100);
    limit.addHole({1, Area::InputRegisters, 50, 50});
    limit.addHole({2, Area::HoldingRegisters, 50, 50});
    EXPECT_EQ(limit.refused(), 100);
    limit.addHole(registers(50, 50));
    EXPECT_EQ(limit.refused(), 111);
    limit.addGiven(111);
    EXPECT_EQ(limit.attempt(), 125);
    EXPECT_FALSE(limit.addRefused(registers(0, 110))) << "as many were given";
}

TEST(SpanSet, JoinsWhatHasANumberInCommon)
{
    SpanSet set;
    set.add({0, 5});
    set.add({6, 9});
    EXPECT_TRUE(set.contains({0, 5}));
    EXPECT_FALSE(set.contains({5, 6})) << "side by side is not together";
    set.add({5, 6});
    EXPECT_TRUE(set.contains({0, 9}));
    set.add({20, 30});
    set.remove({4, 19});
    EXPECT_TRUE(set.contains({0, 3}));
    EXPECT_FALSE(set.contains({4, 4}));
    EXPECT_TRUE(set.contains({20, 30}));
    set.remove({25, 25});
    EXPECT_TRUE(set.contains({20, 24}));
    EXPECT_TRUE(set.contains({26, 30}));
    EXPECT_FALSE(set.contains({24, 26}));
}

TEST(Refusals, AreAskedForAgainEverMoreRarely)
{
    Refusals refusals;
    refusals.addWanted({5, 5}, modbus::IllegalDataAddress, 0);
    qint64 now = 0;
    std::vector<qint64> pauses;
    for (int i = 0; i < 10; ++i) {
        const qint64 due = refusals.all().front().askAgain;
        EXPECT_FALSE(refusals.due(due - 1));
        ASSERT_TRUE(refusals.due(due));
        pauses.push_back(due - now);
        now = due;
        refusals.addWanted({5, 5}, modbus::IllegalDataAddress, now);
    }
    EXPECT_EQ(pauses.front(), 60 * 1000);
    EXPECT_EQ(pauses[1], 2 * 60 * 1000);
    EXPECT_EQ(pauses.back(), 3600 * 1000);
}

TEST(Refusals, AreAskedForSoonWhenTheyWereGivenBefore)
{
    Refusals refusals;
    refusals.addGiven({0, 9});
    refusals.addWanted({5, 5}, modbus::IllegalDataAddress, 0);
    refusals.addWanted({7, 7}, modbus::IllegalDataAddress, 0);
    refusals.addWanted({20, 20}, modbus::IllegalDataAddress, 0);
    EXPECT_TRUE(refusals.due(4000));
    EXPECT_FALSE(refusals.wasGiven({0, 9}));
    // One that is back stands for the others, but not for what never was there.
    refusals.addGiven({5, 5});
    EXPECT_EQ(refusals.wanted({7, 7}), nullptr);
    EXPECT_NE(refusals.wanted({20, 20}), nullptr);
}

TEST(Refusals, StayOnesThatWereGivenBeforeHoweverOftenTheyAreRefused)
{
    Refusals refusals;
    refusals.addGiven({0, 9});
    refusals.addWanted({5, 5}, modbus::IllegalDataAddress, 0);
    refusals.addWanted({5, 5}, modbus::IllegalDataAddress, 4000);
    EXPECT_EQ(refusals.all().front().pause, 8000);
    refusals.addGiven({20, 20});
    EXPECT_NE(refusals.wanted({5, 5}), nullptr) << "not that is back";
}

TEST(Refusals, StayWantedWhereTheyAreAStepToo)
{
    Refusals refusals;
    refusals.addWanted({4, 5}, modbus::IllegalDataAddress, 0);
    refusals.addStep({4, 5}, modbus::IllegalDataAddress, 0);
    ASSERT_NE(refusals.wanted({4, 5}), nullptr);
    EXPECT_EQ(refusals.wanted({4, 5})->pause, 2 * 60 * 1000);
}

TEST(Refusals, ReplaceTheStepThatLedToThem)
{
    Refusals refusals;
    refusals.addStep({4, 5}, 2, 0);
    EXPECT_EQ(refusals.wanted({4, 5}), nullptr);
    refusals.addWanted({5, 5}, 2, 0);
    ASSERT_EQ(refusals.all().size(), 1u);
    EXPECT_TRUE(refusals.isBarred({0, 9}));
    EXPECT_FALSE(refusals.isBarred({0, 4}));
    EXPECT_FALSE(refusals.isBarred({6, 9}));
}

TEST(Refusals, TakeSilenceForARefusalOnlyAfterSeveralTimes)
{
    Refusals refusals;
    refusals.addLost({5, 5}, 0);
    refusals.addLost({5, 5}, 1);
    EXPECT_EQ(refusals.wanted({5, 5}), nullptr);
    EXPECT_TRUE(refusals.isBarred({5, 6}));
    refusals.addLost({5, 5}, 2);
    EXPECT_NE(refusals.wanted({5, 5}), nullptr);
    refusals.addGiven({5, 5});
    EXPECT_TRUE(refusals.all().empty());
}

TEST(Refusals, OfTheFunctionStandForAllUntilSomethingIsGiven)
{
    Refusals refusals;
    refusals.setNoFunction({3, 3}, 0);
    EXPECT_NE(refusals.wanted({100, 100}), nullptr);
    ASSERT_TRUE(refusals.due(60 * 1000));
    EXPECT_EQ(refusals.due(60 * 1000)->span.first, 3);
    refusals.addGiven({3, 3});
    EXPECT_EQ(refusals.wanted({100, 100}), nullptr);
}

TEST(Refusals, HaveANewVersionWheneverPlansHaveToChange)
{
    Refusals refusals;
    refusals.addWanted({5, 5}, 2, 0);
    const quint64 version = refusals.version();
    refusals.addWanted({5, 5}, 2, 10);
    refusals.addGiven({8, 9});
    EXPECT_EQ(refusals.version(), version);
    refusals.addStep({6, 7}, 2, 10);
    EXPECT_NE(refusals.version(), version);
}
