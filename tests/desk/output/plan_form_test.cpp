#include "desk/output/plan_form.h"

#include "desk/time_text.h"
#include "tests/peers/text_printing.h"

#include <gtest/gtest.h>

#include <QDateTime>

namespace
{

const qint64 Again = 1800000000000;

PlanReport report()
{
    PlanReport report;
    report.terms = {{1, false, {52000, 2300}, true, 125}, {2, true, {12000, 850}, false, 2000}};
    report.requests = {
        {{1, Area::HoldingRegisters, 0, 9}, 3, 7, 75000, QStringLiteral("fills 7 registers in 1 gap")},
        {{2, Area::Coils, 0, 0}, 1, 0, 850, QString()}};
    report.refused = {{{1, Area::HoldingRegisters, 100, 101}, 2, {{100, 101}, true, 2, Again, 60000}}};
    return report;
}

} // namespace

TEST(PlanForm, TellsPeopleWhatItGoesBy)
{
    EXPECT_EQ(linesOf(report(), OutputFormat::Text),
              (QStringList{
                  "station 1: 52.0 ms a request, 2.3 ms a register, at most 125 at once; measured",
                  "station 2: 12.0 ms a request, 0.850 ms eight bits, at most 2000 at once; assumed",
                  "request    values  filled      time  why",
                  "1-HR1..10       3       7   75.0 ms  fills 7 registers in 1 gap",
                  "2-DO1           1       0  0.850 ms",
                  "1-HR101..102 (2 values): refused with exception 2, not asked for until " +
                      dateAndTimeText(QDateTime::fromMSecsSinceEpoch(Again)),
                  "2 requests, 75.8 ms a round",
              }));
}

TEST(PlanForm, HasARowForPrograms)
{
    EXPECT_EQ(linesOf(report(), OutputFormat::Csv),
              (QStringList{"station,address,values,filled,ms,why",
                           "1,1-HR1..10,3,7,75,fills 7 registers in 1 gap", "2,2-DO1,1,0,0.85,"}));
}
