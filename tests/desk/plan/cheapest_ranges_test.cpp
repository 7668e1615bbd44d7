#include "desk/plan/cheapest_ranges.h"

#include "desk/plan/area_plan.h"
#include "tests/lines/best_plan.h"

#include <gtest/gtest.h>

#include <random>

namespace
{

const RequestCost Line{24, 1}; // a request costs as much as 24 units

struct Asked {
    std::vector<Span> spans;
    Refusals refusals = {};
    RangeRules rules{Line, 1, 125, true, false};
};

std::vector<Span> rangesFor(const Asked &asked)
{
    const CheapestRanges plan = cheapestRanges(asked.spans, asked.refusals, asked.rules);
    std::vector<Span> ranges;
    for (size_t span = 0; span < asked.spans.size();) {
        const auto last = static_cast<size_t>(plan.lastSpan[span]);
        ranges.push_back({asked.spans[span].first, asked.spans[last].last});
        span = last + 1;
    }
    return ranges;
}

std::vector<Span> singles(std::initializer_list<int> numbers)
{
    std::vector<Span> spans;
    for (const int number : numbers)
        spans.push_back({number, number});
    return spans;
}

using Ranges = std::vector<Span>;

} // namespace

TEST(CheapestRanges, FillsGapsThatCostLessThanARequest)
{
    EXPECT_EQ(rangesFor({singles({0, 24})}), (Ranges{{0, 24}}));
    EXPECT_EQ(rangesFor({singles({0, 26})}), (Ranges{{0, 0}, {26, 26}}));
    EXPECT_EQ(rangesFor({singles({0, 20, 40, 60, 80})}), (Ranges{{0, 80}}));
}

TEST(CheapestRanges, KeepsToTheLimitAndCutsWhereItCostsLeast)
{
    EXPECT_EQ(rangesFor({singles({0, 124})}), (Ranges{{0, 0}, {124, 124}}));
    // One cut is needed, and the gap before 112 is the widest.
    EXPECT_EQ(rangesFor({singles({0, 20, 40, 60, 80, 90, 112, 124, 130})}), (Ranges{{0, 90}, {112, 130}}));
    Asked few{singles({0, 1, 2, 3, 4})};
    few.rules.maxCount = 2;
    EXPECT_EQ(rangesFor(few).size(), 3u);
}

TEST(CheapestRanges, FillsNoGapWhereItMustNot)
{
    Asked asked{{{0, 0}, {1, 2}, {4, 4}, {5, 5}}};
    asked.rules.fillsGaps = false;
    EXPECT_EQ(rangesFor(asked), (Ranges{{0, 2}, {4, 5}}));
    asked.rules.isOneByOne = true;
    EXPECT_EQ(rangesFor(asked), asked.spans);
}

TEST(CheapestRanges, AvoidsWhatWasRefused)
{
    Asked asked{singles({0, 10, 20, 30})};
    asked.refusals.addStep({10, 20}, 2, 0);
    EXPECT_EQ(rangesFor(asked), (Ranges{{0, 10}, {20, 30}}));
    asked.refusals.addStep({30, 30}, 2, 0);
    EXPECT_EQ(rangesFor(asked), (Ranges{{0, 10}, {20, 20}, {30, 30}}));
}

TEST(CheapestRanges, KnowsThatBitsComeInBytes)
{
    Asked asked{singles({3, 10, 40}), {}, {{2, 1}, 8, 2000, true, false}};
    EXPECT_EQ(rangesFor(asked), (Ranges{{3, 10}, {40, 40}}));
    const auto costOf = [&](int first, int last) {
        return cheapestRanges({{first, last}}, asked.refusals, asked.rules).cost.front();
    };
    EXPECT_EQ(costOf(3, 10), 3);
    EXPECT_EQ(costOf(3, 11), 4);
    EXPECT_EQ(costOf(8, 15), 3);
    EXPECT_EQ(costOf(7, 15), 4);
}

TEST(CheapestRanges, PlansFromAnySpanOn)
{
    const Asked asked{singles({0, 24, 48, 90, 100})};
    const CheapestRanges whole = cheapestRanges(asked.spans, asked.refusals, asked.rules);
    const CheapestRanges rest = cheapestRanges(asked.spans, asked.refusals, asked.rules, 3);
    EXPECT_EQ(rest.lastSpan[3], 4);
    EXPECT_EQ(rest.cost[3], whole.cost[3]);
    EXPECT_EQ(whole.cost[5], 0);
}

// Any set of ranges whatever: the best is one of those that are looked at.
TEST(CheapestRanges, AreAsCheapAsTheBestOfAllSets)
{
    std::mt19937 random(20);
    const auto number = [&](int least, int most) {
        return std::uniform_int_distribution<>(least, most)(random);
    };
    for (int round = 0; round < 3000; ++round) {
        Layout layout;
        layout.device.timing = {9600, number(0, 1) * 30000.0};
        layout.device.maxRegisters = number(2, 40);
        layout.device.maxBits = number(8, 400);
        const Area area = number(0, 1) == 0 ? Area::HoldingRegisters : Area::Coils;
        const int step = number(2, isBitArea(area) ? 300 : 60);
        for (int i = 0, first = 0; i < 8; ++i, first += number(0, step))
            layout.points.push_back({1, area, first, first + (isBitArea(area) ? 0 : number(0, 1))});
        Refusals refusals;
        for (int i = number(0, 3); i > 0; --i) {
            const AreaRange &after = layout.points[static_cast<size_t>(number(0, 7))];
            layout.device.holes[{1, area}].insert(after.last + 1);
        }
        for (const auto &[place, holes] : layout.device.holes) {
            for (const int hole : holes)
                refusals.addWanted({hole, hole}, 2, 0);
        }
        std::vector<AreaPoint> points;
        for (const AreaRange &point : layout.points) {
            if (layout.device.isThere(point))
                points.push_back({{point.first, point.last}, 0});
        }
        const AreaPlan areaPlan(1, area, points);
        const std::vector<Span> spans = spansOf(areaPlan.points(), refusals);
        const RangeRules rules{layout.device.timing.cost(area), itemsPerUnit(area),
                               layout.device.maxCount(area), true, false};
        const double cost = cheapestRanges(spans, refusals, rules).cost.front();
        ASSERT_NEAR(cost, bestByBruteForce(layout), 1e-3) << "round " << round;
        ASSERT_NEAR(cost, bestPlan(layout).microseconds, 1e-3) << "round " << round;
    }
}
