#include "desk/doctor/observing/wanted_value.h"
#include "tests/desk/doctor/written_observations.h"
#include "tests/peers/text_printing.h"
#include "tests/plants/plant_drawing.h"
#include "tests/plants/plant_line.h"

#include <gtest/gtest.h>

// What values that are not the expected ones come to.

namespace
{

DoctorOptions wanting(const std::vector<std::pair<const char *, const char *>> &values)
{
    DoctorOptions options;
    for (const auto &[address, expected] : values)
        options.wanted.push_back(wantedAt(QLatin1String(address), QLatin1String(expected)));
    return options;
}

// Words, ten addresses apart, each of which is to be 7.
DoctorOptions wantingSevens(int count)
{
    DoctorOptions options;
    for (int i = 1; i <= count; ++i)
        options.wanted.push_back(wantedAt(QStringLiteral("HR%1").arg(10 * i), QStringLiteral("7")));
    return options;
}

// What is read of each where it was expected, in hexadecimal; nothing where it is not answered.
Seen reading(const DoctorOptions &options, const std::vector<const char *> &values)
{
    Seen seen;
    for (size_t i = 0; i < values.size(); ++i) {
        if (values[i] != nullptr)
            seen.answer(requestFor(1, options.wanted[i]), 0, QByteArray::fromHex(values[i]));
    }
    return seen;
}

Judgement judgeReading(const DoctorOptions &options, const std::vector<const char *> &values)
{
    return judge(valueExamination(), reading(options, values), options);
}

QStringList evidenceOf(const Judgement &judgement)
{
    return judgement.findings.empty() ? QStringList() : judgement.findings.front().evidence;
}

} // namespace

TEST(Value, StandsElsewhereWhereMostOrManyDo)
{
    const struct {
        int wanted;
        int shifted;
        const char *fault;
    } rows[] = {{8, 4, "other-values"}, {8, 5, "off-by-one"}, {12, 5, "other-values"}, {12, 6, "off-by-one"}};
    for (const auto &row : rows) {
        const DoctorOptions options = wantingSevens(row.wanted);
        Seen seen = reading(options, std::vector<const char *>(size_t(row.wanted), "0001"));
        Guess higher;
        higher.shift = 1;
        for (int i = 0; i < row.shifted; ++i)
            seen.answer(requestFor(1, options.wanted[size_t(i)], higher), 0, QByteArray::fromHex("0007"));
        EXPECT_EQ(faultsOf(judge(valueExamination(), seen, options)), QStringList{row.fault})
            << row.shifted << " of " << row.wanted;
    }
}

TEST(Value, EvidenceShowsBothPlacesAsFarAsTheyAreKnown)
{
    const DoctorOptions options = wantingSevens(3);
    Seen seen = reading(options, {"0001", "0001", "0001"});
    Guess higher;
    higher.shift = 1;
    for (const size_t i : {0, 2})
        seen.answer(requestFor(1, options.wanted[i], higher), 0, QByteArray::fromHex("0007"));
    const Judgement judgement = judge(valueExamination(), seen, options);
    EXPECT_EQ(judgement.remedy.shift, 1);
    EXPECT_EQ(evidenceOf(judgement),
              (QStringList{"HR10 is 1, expected 7", "    and 7 there", "  1.000 s < 01 03 02 00 01 79 84",
                           "HR20 is 1, expected 7", "  2.000 s < 01 03 02 00 01 79 84",
                           "HR30 is 1, expected 7", "    and 7 there", "  3.000 s < 01 03 02 00 01 79 84"}));
}

TEST(Value, EvidenceLeavesOutWhatWasNotRead)
{
    const Judgement judgement = judgeReading(wantingSevens(3), {nullptr, "0001", nullptr});
    EXPECT_EQ(faultsOf(judgement), QStringList{"other-values"});
    EXPECT_EQ(evidenceOf(judgement),
              (QStringList{"HR20 is 1, expected 7", "  1.000 s < 01 03 02 00 01 79 84"}));
}

TEST(Value, IsJudgedWhereSomethingIsExpectedOfIt)
{
    EXPECT_EQ(faultsOf(judgeReading(wanting({{"HR10", ""}}), {"0001"})), QStringList());
    EXPECT_EQ(faultsOf(judgeReading(wanting({{"HR10", ""}, {"HR20", "7"}}), {"0001", "0007"})),
              QStringList());
    EXPECT_EQ(faultsOf(judgeReading(wanting({{"HR10", "7"}}), {nullptr})), QStringList());
    std::vector<const char *> values(13, "0007");
    values[12] = "0001";
    EXPECT_EQ(faultsOf(judgeReading(wantingSevens(13), values)), QStringList())
        << "twelve are enough to judge by";
    values[11] = "0001";
    EXPECT_EQ(faultsOf(judgeReading(wantingSevens(13), values)), QStringList{"other-values"});
}

TEST(Value, EvidenceSaysTheLimits)
{
    DoctorOptions options = wanting({{"HR10", ""}, {"HR20", ""}, {"HR30", ""}});
    options.wanted[0].point.low = 10;
    options.wanted[1].point.high = 20;
    options.wanted[2].point.low = 10;
    options.wanted[2].point.high = 20;
    const QStringList evidence = evidenceOf(judgeReading(options, {"0007", "0018", "0007"}));
    EXPECT_EQ(evidence.filter(QStringLiteral("expected")),
              (QStringList{"HR10 is 7, expected 10 to any", "HR20 is 24, expected any to 20",
                           "HR30 is 7, expected 10 to 20"}));
}

TEST(Value, HasAnotherOrderWhereItIsWide)
{
    const Judgement wide = judgeReading(wanting({{"HR1", "18"}, {"HR10:f32", "20.5"}, {"DI1:bit", "1"}}),
                                        {"0012", "41a40000", "01"});
    EXPECT_EQ(faultsOf(wide), QStringList{"word-order"});
    EXPECT_EQ(wide.remedy.order, QStringLiteral("ABCD"));
    EXPECT_TRUE(evidenceOf(wide).contains(QStringLiteral("    and 20.5 in the other order")));
    const Judgement narrow = judgeReading(wanting({{"HR1", "258"}, {"HR2:str2", "AB"}}), {"0201", "4142"});
    EXPECT_EQ(faultsOf(narrow), QStringList{"word-order"});
    EXPECT_EQ(narrow.remedy.order, QStringLiteral("BA"));
    EXPECT_EQ(faultsOf(judgeReading(wanting({{"HR1", "258"}, {"HR10:f32", "20.5"}}), {"0201", "41a40000"})),
              QStringList{"other-values"})
        << "beside wide values the order of a word counts for nothing";
}

TEST(Value, HasNoOtherOrderWhereItIsABitOrAText)
{
    EXPECT_EQ(faultsOf(judgeReading(wanting({{"DI1:bit", "1"}}), {"00"})), QStringList{"other-values"});
    EXPECT_EQ(faultsOf(judgeReading(wanting({{"HR1:str2", "AB"}}), {"4241"})), QStringList{"other-values"});
    EXPECT_EQ(faultsOf(judgeReading(wanting({{"HR1:str4", "ABCD"}}), {"43444142"})),
              QStringList{"other-values"});
}

TEST(Value, IsLookedForBySixOfThemInTimeAndElsewhere)
{
    const DoctorOptions options = wantingSevens(8);
    for (const qint64 longest : {qint64(0), qint64(55000000)}) {
        DoctorOptions inTime = options;
        inTime.longestTime = longest;
        VirtualTime time;
        Plant plant(time, PlantOptions());
        PlantLine line(time, plant);
        Observations seen = reading(options, std::vector<const char *>(8, "0001")).seen;
        Examiner examiner(line, inTime, seen);
        valueExamination().observe(examiner);
        EXPECT_EQ(seen.askedFor(Purpose::Value).size(), longest == 0 ? 0U : 18U);
        EXPECT_EQ(seen.isOutOfTime, longest == 0);
    }
}
