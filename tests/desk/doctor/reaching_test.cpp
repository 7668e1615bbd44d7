#include "tests/desk/doctor/scripted_line.h"
#include "tests/desk/doctor/written_observations.h"
#include "tests/peers/text_printing.h"
#include "tests/plants/plant_line.h"
#include "tests/plants/plant_set.h"

#include <gtest/gtest.h>

// Whether the slave is reached: connections, stations, pauses; and what is found in little time.

namespace
{

const qint64 Second = ScriptedLine::Second;
const qint64 Millisecond = ScriptedLine::Millisecond;

struct Tried {
    qint64 openedAt; ///< -1: it was not
    QString error;
    qint64 endedAt;
    bool wasAsked;
};

const Tried Refused = {-1, QStringLiteral("Connection refused"), -1, false};
const Tried TimedOut = {-1, QStringLiteral("no answer"), -1, false};
const Tried Stays = {0, {}, -1, true};
const Tried EndsAtOnce = {0, {}, 20 * Millisecond, false};
const Tried EndsLater = {0, {}, 2 * Second, false};
const Tried EndsWhenAsked = {0, {}, 20 * Millisecond, true};

Seen connections(const std::vector<Tried> &tried)
{
    Seen seen;
    seen.seen.connections.clear();
    for (const Tried &one : tried) {
        Connection &connection = seen.connection(one.openedAt);
        connection.error = one.error;
        connection.endedAt = one.endedAt;
        connection.wasAsked = one.wasAsked;
    }
    return seen;
}

Diagnosis examine(const PlantCase &one, qint64 longestTime)
{
    VirtualTime time;
    Plant plant(time, one.plant);
    PlantLine line(time, plant);
    DoctorOptions options = one.doctor;
    options.longestTime = longestTime;
    Observations seen;
    Examiner examiner(line, options, seen);
    Diagnosis diagnosis = diagnose(examiner);
    for (const Asked &asked : seen.asked)
        EXPECT_LE(asked.sentAt, longestTime);
    return diagnosis;
}

} // namespace

TEST(Connection, IsJudgedByAllAttempts)
{
    const Tried unknown = {-1, QStringLiteral("unknown host name"), -1, false};
    const struct {
        std::vector<Tried> tried;
        const char *fault;
        bool explainsAll;
    } rows[] = {
        {{}, "", false},
        {{Stays}, "", false},
        {{Refused, Refused}, "nobody-listens", true},
        {{TimedOut}, "unreachable", true},
        {{unknown}, "unknown-host", true},
        {{EndsAtOnce, EndsAtOnce}, "closed-at-once", true},
        {{EndsAtOnce, Stays}, "slot-held", false},
        {{Refused, Stays}, "slot-held", false},
        {{TimedOut, Stays}, "", false},
        {{EndsLater}, "", false},
        {{EndsWhenAsked}, "", false},
    };
    for (const auto &row : rows) {
        const Judgement judgement = judge(connectionExamination(), connections(row.tried));
        EXPECT_EQ(faultsOf(judgement).join(QLatin1Char(',')), QLatin1String(row.fault));
        EXPECT_EQ(judgement.explainsAll, row.explainsAll) << row.fault;
    }
}

// What came may say who ends it.
TEST(Connection, ThatEndsAtOnceExplainsNothingWhereSomethingCame)
{
    Seen seen = connections({EndsAtOnce});
    seen.stray(10, "HTTP/1.1 503 Busy\r\n", true);
    EXPECT_TRUE(judge(connectionExamination(), seen).findings.empty());
}

TEST(Stations, AreNotAskedWhereNothingWasBefore)
{
    ScriptedLine script;
    stationExamination().observe(script.examiner);
    EXPECT_TRUE(script.requests.empty());
    EXPECT_TRUE(judge(stationExamination(), connections({Stays})).findings.empty());
}

TEST(Pause, IsNotLookedForWithoutTime)
{
    ScriptedLine script;
    script.options.longestTime = 0;
    Seen seen;
    script.seen = seen.answer(20 * Millisecond).silence().seen;
    script.seen.asked.front().rest = Second;
    pauseExamination().observe(script.examiner);
    EXPECT_TRUE(script.requests.empty());
    EXPECT_EQ(script.seen.pauseNeeded, 0);
    EXPECT_TRUE(script.seen.isOutOfTime);
}

TEST(Pause, IsShownByARequestThatWasAnsweredAfterIt)
{
    Seen seen;
    seen.silence();
    seen.seen.pauseNeeded = 150 * Millisecond;
    const auto evidence = [&] { return judge(pauseExamination(), seen).findings.front().evidence; };
    const QString shown = QStringLiteral("after a pause of 100 ms");
    EXPECT_TRUE(evidence().filter(shown).isEmpty());
    seen.silence().seen.asked.back().purpose = Purpose::Paused;
    EXPECT_TRUE(evidence().filter(shown).isEmpty()) << "not answered";
    seen.answer(20 * Millisecond).seen.asked.back().purpose = Purpose::Paused;
    seen.seen.asked.back().rest = 100 * Millisecond;
    EXPECT_EQ(evidence().filter(shown).size(), 1);
    EXPECT_EQ(judge(pauseExamination(), seen).remedy.delay, 150);
}

TEST(Pause, LostRepliesNeedRetriesWhereTheGivenOnesAreTooFew)
{
    DoctorOptions options;
    Seen seen;
    seen.answer(20 * Millisecond).silence();
    options.exchange.retries = 9;
    EXPECT_EQ(judge(pauseExamination(), seen, options).remedy.retries, 10);
    options.exchange.retries = 10;
    const Judgement enough = judge(pauseExamination(), seen, options);
    EXPECT_EQ(enough.remedy.retries, std::nullopt);
    EXPECT_EQ(faultsOf(enough), QStringList{"lost-replies"});
}

// Nothing begins that would take too long; what has begun ends within the longest wait.
TEST(Time, IsKeptAndWhatWasNotAskedIsSaid)
{
    const qint64 longestWait = 8 * Second;
    const int parts = 8;
    for (const PlantCase &one : faultyPlants(1)) {
        const Diagnosis whole = examine(one, 55 * Second);
        for (int part = 0; part < parts; ++part) {
            SCOPED_TRACE(one.name.toStdString() + " in " + std::to_string(part) + "/8 of its time");
            const qint64 longest = whole.duration * part / parts;
            const Diagnosis diagnosis = examine(one, longest);
            EXPECT_LE(diagnosis.duration, longest + longestWait);
            const bool isOutOfTime = namesOf(diagnosis.remarks).contains(QStringLiteral("out-of-time"));
            if (!isOutOfTime) {
                EXPECT_EQ(namesOf(diagnosis.faults), namesOf(whole.faults));
            }
        }
    }
}
