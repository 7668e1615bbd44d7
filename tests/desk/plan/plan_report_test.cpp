#include "desk/plan/plan_report.h"

#include "tests/peers/text_printing.h"

#include <gtest/gtest.h>

namespace
{

struct Planned {
    explicit Planned(const std::vector<AreaRange> &points) : areas(areaPlansOf(points)) {}

    PlanReport report() { return planReportOf(areas, learnt); }
    QStringList lines()
    {
        QStringList lines;
        for (const PlannedRequest &request : report().requests)
            lines += QStringLiteral("%1 %2 %3 %4")
                         .arg(rangeText(request.range))
                         .arg(request.points)
                         .arg(request.filled)
                         .arg(request.why);
        return lines;
    }

    std::vector<AreaPlan> areas;
    Learnt learnt;
};

std::vector<AreaRange> registersAt(std::initializer_list<int> numbers)
{
    std::vector<AreaRange> points;
    for (const int number : numbers)
        points.push_back({1, Area::HoldingRegisters, number - 1, number - 1});
    return points;
}

} // namespace

TEST(PlanReport, SaysWhyRequestsEndWhereTheyDo)
{
    EXPECT_EQ(
        Planned(registersAt({1, 2, 2, 13, 100})).lines(),
        (QStringList{
            "1-HR1..13 4 10 fills 10 registers in 1 gap; the gap of 86 registers costs more than a request",
            "1-HR100 1 0 "}));
    EXPECT_EQ(Planned(registersAt({1, 20, 40, 60, 80, 90, 112, 124, 130})).lines().first(),
              QStringLiteral("1-HR1..90 6 84 fills 84 registers in 5 gaps; cut here, where it costs least"));
    Planned doubles({{1, Area::InputRegisters, 0, 1}, {1, Area::InputRegisters, 2, 3}});
    doubles.learnt[1].requests(Area::InputRegisters).limit.restore(2, 3);
    doubles.learnt[1].refusals(Area::InputRegisters).addStep({50, 51}, 2, 0);
    EXPECT_EQ(doubles.lines().first(), QStringLiteral("1-IR1..2 1 0 no more than 2 registers at once"));
}

TEST(PlanReport, SaysWhatWasRefused)
{
    Planned planned(registersAt({1, 3, 5, 9}));
    planned.learnt[1].refusals(Area::HoldingRegisters).addStep({2, 4}, 2, 0);
    planned.learnt[1].refusals(Area::HoldingRegisters).addWanted({8, 8}, 3, 0);
    EXPECT_EQ(planned.lines(),
              (QStringList{"1-HR1..3 2 1 fills 1 register in 1 gap; 1-HR3..5 was refused with exception 2",
                           "1-HR5 1 0 "}));
    const PlanReport report = planned.report();
    ASSERT_EQ(report.refused.size(), 1u);
    EXPECT_EQ(rangeText(report.refused.front().range), QStringLiteral("1-HR9"));
    EXPECT_EQ(report.refused.front().refusal.exception, 3);
    EXPECT_EQ(report.terms.size(), 1u);
}

TEST(PlanReport, CountsPointsThatWereRefusedTogether)
{
    Planned planned(registersAt({1, 9, 9, 12}));
    Refusals &refusals = planned.learnt[1].refusals(Area::HoldingRegisters);
    refusals.addWanted({8, 8}, 2, 0);
    refusals.addWanted({11, 11}, 2, 0);
    const PlanReport report = planned.report();
    ASSERT_EQ(report.refused.size(), 2u);
    EXPECT_EQ(report.refused.front().points, 2);
    EXPECT_EQ(report.refused.back().points, 1);
}

TEST(PlanReport, SaysWhatWasNotAnswered)
{
    Planned planned({{1, Area::Coils, 0, 0},
                     {1, Area::Coils, 2, 2},
                     {1, Area::Coils, 20, 20},
                     {1, Area::DiscreteInputs, 0, 0}});
    Refusals &refusals = planned.learnt[1].refusals(Area::Coils);
    refusals.addStep({0, 2}, 0, 0);
    refusals.addStep({25, 26}, 0, 0);
    EXPECT_EQ(planned.lines().mid(0, 2), (QStringList{"1-DI1 1 0 ", "1-DO1 1 0 1-DO1..3 was not answered"}));
    EXPECT_EQ(planned.lines().last(), QStringLiteral("1-DO3..21 2 17 fills 17 bits in 1 gap"));
    EXPECT_EQ(planned.report().terms.size(), 1u) << "all bits of a station cost alike";
}

TEST(PlanReport, NamesEachStationsTerms)
{
    Planned planned(
        {{1, Area::Coils, 0, 0}, {1, Area::HoldingRegisters, 0, 0}, {2, Area::HoldingRegisters, 0, 0}});
    const PlanReport report = planned.report();
    ASSERT_EQ(report.terms.size(), 3u);
    EXPECT_TRUE(report.terms[0].areBits);
    EXPECT_FALSE(report.terms[1].areBits);
    EXPECT_EQ(report.terms[2].station, 2);
}

TEST(PlanReport, SaysWhatThePersonWants)
{
    Planned planned(registersAt({1, 3}));
    planned.learnt[1].options.fillsGaps = false;
    EXPECT_EQ(planned.lines().first(), QStringLiteral("1-HR1 1 0 gaps are not to be filled"));
    Planned single(registersAt({1, 2}));
    single.learnt[1].options.isOneByOne = true;
    EXPECT_EQ(single.lines().first(), QStringLiteral("1-HR1 1 0 one by one"));
}

TEST(PlanReport, TellsAssumedCostsFromMeasuredOnes)
{
    Planned planned({{1, Area::HoldingRegisters, 0, 9}, {2, Area::Coils, 0, 0}});
    PlanReport report = planned.report();
    ASSERT_EQ(report.terms.size(), 2u);
    EXPECT_FALSE(report.terms[0].isMeasured);
    EXPECT_TRUE(report.terms[1].areBits);
    EXPECT_EQ(report.terms[1].maxCount, 2000);
    planned.learnt[1].requests(Area::HoldingRegisters).cost.restore({1000, 10});
    report = planned.report();
    EXPECT_TRUE(report.terms[0].isMeasured);
    EXPECT_EQ(report.requests.front().microseconds, 1100);
}
