#include "tests/desk/doctor/scripted_line.h"
#include "tests/desk/doctor/written_observations.h"
#include "tests/peers/text_printing.h"
#include "tests/plants/plant_drawing.h"

#include <gtest/gtest.h>

// What can be read: samples, areas, wanted places and functions.

namespace
{

const qint64 Second = ScriptedLine::Second;

QByteArray read(int station, Area area, int offset = 0)
{
    return readRequest(station, area, offset, 1);
}

QString textOf(const Judgement &judgement)
{
    return faultsOf(judgement).join(QLatin1Char(','));
}

std::vector<QByteArray> requestsOf(const Observations &seen, Purpose purpose)
{
    std::vector<QByteArray> requests;
    for (const Asked *one : seen.askedFor(purpose))
        requests.push_back(one->request);
    return requests;
}

} // namespace

TEST(Samples, AreShortWhereLongRepliesComeDamaged)
{
    ScriptedLine script;
    Seen seen;
    script.seen = seen.answer(read(1, Area::HoldingRegisters), 0, "ab").seen;
    script.answers = [&](const QByteArray &request) {
        const QByteArray reply = Seen::reply(QByteArray(2 * wordAt(request, 4), 'a'));
        script.deliver(Second / 100, wordAt(request, 4) == 1 ? reply : reply.left(reply.size() - 1) + 'x');
    };
    sampleExamination().observe(script.examiner);
    const std::vector<QByteArray> &requests = script.requests;
    ASSERT_EQ(requests.size(), 46U);
    EXPECT_EQ(std::count(requests.begin(), requests.begin() + 6, Seen::read(8)), 6);
    EXPECT_EQ(std::count(requests.begin() + 6, requests.end(), Seen::read(1)), 40);
}

TEST(Samples, AreRefusalsOfTheStationWhereNothingCanBeRead)
{
    ScriptedLine script;
    const QByteArray refused = read(1, Area::Coils, 5);
    Seen seen;
    seen.silence().refusal(read(2, Area::Coils), 2).refusal(refused, 2);
    script.seen = seen.seen;
    script.answers = [&](const QByteArray &request) { script.deliver(0, exceptionReply(request, 2)); };
    sampleExamination().observe(script.examiner);
    EXPECT_EQ(std::count(script.requests.begin(), script.requests.end(), refused), 40);
}

TEST(Areas, AreLookedForAtFewPlacesAndNotForLong)
{
    const struct {
        int code;
        qint64 delay;
        size_t asked;
        const char *why;
    } rows[] = {{2, 0, 44, "eleven places each"},
                {2, 3 * Second / 2, 28, "ten seconds each"},
                {1, 0, 4, "the function is not known"},
                {0, 0, 12, "three silences"}};
    for (const auto &row : rows) {
        ScriptedLine script;
        Seen slow;
        script.seen = slow.answer(withCrc(QByteArray::fromHex("01080000a537")), 3 * Second / 2, {}).seen;
        script.answers = [&](const QByteArray &request) {
            if (row.code > 0)
                script.deliver(row.delay, exceptionReply(request, row.code));
        };
        areaExamination().observe(script.examiner);
        EXPECT_EQ(script.requests.size(), row.asked) << row.why;
    }
}

// Of holding registers first, then of input registers; 0: not answered.
TEST(Areas, AFaultIsOnlyWhereNothingOfTheSlaveIsReadable)
{
    const struct {
        int holding;
        int input;
        const char *fault;
    } rows[] = {{2, 0, "area-empty"},       {1, 2, "area-empty"},     {2, 1, "area-empty"},
                {1, 1, "function-unknown"}, {0, 6, "device-refuses"}, {0, 0, ""}};
    for (const auto &row : rows) {
        Seen seen;
        seen.silent(read(1, Area::Coils)).purpose = Purpose::Area;
        if (row.holding > 0)
            seen.refusal(read(1, Area::HoldingRegisters), row.holding);
        if (row.input > 0)
            seen.refusal(read(1, Area::InputRegisters), row.input);
        EXPECT_EQ(textOf(judge(areaExamination(), seen)), QLatin1String(row.fault))
            << row.holding << " and " << row.input;
        DoctorOptions wanting;
        wanting.wanted = {wantedAt(QStringLiteral("HR1"))};
        EXPECT_EQ(textOf(judge(areaExamination(), seen, wanting)), QString())
            << "that is said of what is wanted";
        seen.answer(read(1, Area::DiscreteInputs), 0, "\1");
        EXPECT_EQ(textOf(judge(areaExamination(), seen)), QString());
    }
    EXPECT_TRUE(judge(areaExamination(), Seen()).findings.empty()) << "nothing was asked";
}

TEST(Places, ThatAreRefusedAlikeAreSaidOnce)
{
    DoctorOptions options;
    options.wanted = {wantedAt(QStringLiteral("HR10")), wantedAt(QStringLiteral("HR20"))};
    const struct {
        int first;
        int second;
        const char *faults;
        bool worksNow;
    } rows[] = {{2, 2, "area-empty", true},
                {2, 6, "area-empty,device-refuses", false},
                {6, 2, "device-refuses,area-empty", false},
                {6, 4, "device-refuses,device-refuses", false},
                {6, 6, "device-refuses", false}};
    for (const auto &row : rows) {
        Seen seen;
        seen.silent(read(1, Area::HoldingRegisters, 9));
        seen.refusal(read(1, Area::HoldingRegisters, 9), row.first);
        seen.refusal(read(1, Area::HoldingRegisters, 19), row.second);
        const Judgement judgement = judge(placeExamination(), seen, options);
        EXPECT_EQ(textOf(judgement), QLatin1String(row.faults)) << row.first << " and " << row.second;
        EXPECT_EQ(judgement.remedy.worksNow, row.worksNow) << row.first << " and " << row.second;
    }
}

TEST(Places, AreAskedForAsLongAsThereAreNotTooMany)
{
    for (const qint64 longest : {qint64(0), 55 * Second}) {
        ScriptedLine script;
        script.options.longestTime = longest;
        for (int number = 1; number <= 21; ++number)
            script.options.wanted.push_back(wantedAt(QStringLiteral("HR%1").arg(number)));
        script.seen.working = 1;
        script.answers = [&](const QByteArray & /*request*/) { script.deliver(0, Seen::reply("ab")); };
        placeExamination().observe(script.examiner);
        EXPECT_EQ(script.requests.size(), longest == 0 ? 0U : 20U);
    }
}

TEST(Functions, AreTriedWhereTheStationItselfCouldBeRead)
{
    ScriptedLine script;
    script.options.probesWrites = true;
    Seen seen;
    seen.answer(read(2, Area::HoldingRegisters, 7), 0, "ab")
        .answer(read(1, Area::HoldingRegisters, 3), 0, "ab");
    script.seen = seen.seen;
    script.answers = [&](const QByteArray &request) {
        const bool isRead = functionOf(request) == modbus::ReadHoldingRegisters;
        script.deliver(0, isRead ? Seen::reply("ab") : exceptionReply(request, 1));
    };
    functionExamination().observe(script.examiner);
    const std::vector<QByteArray> written = requestsOf(script.seen, Purpose::Write);
    ASSERT_EQ(written.size(), 2U) << "no coil was read";
    for (const QByteArray &request : written)
        EXPECT_EQ(wordAt(request, 2), 3);
}

TEST(Functions, AreNotWrittenWhereReadingBeforeFails)
{
    ScriptedLine script;
    script.options.probesWrites = true;
    Seen seen;
    seen.answer(read(1, Area::HoldingRegisters), 0, "ab").answer(read(1, Area::Coils), 0, "\1");
    script.seen = seen.seen;
    script.answers = [&](const QByteArray &request) { script.deliver(0, exceptionReply(request, 6)); };
    functionExamination().observe(script.examiner);
    EXPECT_TRUE(requestsOf(script.seen, Purpose::Write).empty());
    EXPECT_EQ(script.requests.size(), 3U) << "function 8 and a read of each";
}
