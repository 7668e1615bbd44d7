#include "desk/doctor/diagnosis.h"
#include "desk/doctor/examinations/examination.h"
#include "desk/wire/rtu_frame.h"
#include "tests/desk/doctor/scripted_line.h"
#include "tests/peers/text_printing.h"
#include "tests/plants/plant_line.h"
#include "tests/plants/plant_set.h"

#include <gtest/gtest.h>

// An examination that is interrupted: it ends at once, sends nothing more and tells only what it knows.

namespace
{

const qint64 Second = ScriptedLine::Second;
const qint64 Millisecond = ScriptedLine::Millisecond;
const QByteArray Request = readRequest(1, Area::HoldingRegisters, 0, 1);
const QByteArray Reply = withCrc(QByteArray::fromHex("0103021234"));

struct Interrupted {
    Diagnosis diagnosis;
    bool wasInterrupted = false;
    qint64 after = 0; ///< how long it went on
    size_t askedAfter = 0;
    int writtenAfter = 0;
};

// Interrupts when \a isTime says so.
Interrupted interrupt(const PlantCase &one,
                      const std::function<bool(const QString &doing, qint64 now)> &isTime)
{
    VirtualTime time;
    Plant plant(time, one.plant);
    PlantLine line(time, plant);
    DoctorOptions options = one.doctor;
    options.probesWrites = true;
    Observations seen;
    Examiner examiner(line, options, seen);
    QString doing;
    examiner.setProgress([&](const QString &text) { doing = text; });
    Interrupted outcome;
    line.setCancelled([&] {
        if (!outcome.wasInterrupted && isTime(doing, line.now())) {
            outcome.wasInterrupted = true;
            outcome.after = -line.now();
            outcome.askedAfter = seen.asked.size();
            outcome.writtenAfter = -plant.writes();
        }
        return outcome.wasInterrupted;
    });
    outcome.diagnosis = diagnose(examiner);
    outcome.after += line.now();
    outcome.askedAfter = seen.asked.size() - outcome.askedAfter;
    outcome.writtenAfter += plant.writes();
    return outcome;
}

void expectItEnded(const Interrupted &outcome)
{
    const Diagnosis &diagnosis = outcome.diagnosis;
    EXPECT_EQ(outcome.after, 0);
    EXPECT_LE(outcome.askedAfter, 1U) << "no more than what was answered meanwhile";
    EXPECT_EQ(outcome.writtenAfter, 0);
    EXPECT_TRUE(diagnosis.wasCancelled);
    EXPECT_FALSE(diagnosis.isHealthy());
    EXPECT_FALSE(diagnosis.isExplained());
    EXPECT_TRUE(std::none_of(diagnosis.faults.begin(), diagnosis.faults.end(),
                             [](const Finding &one) { return infoOf(one.kind).weight == Weight::Open; }));
    EXPECT_TRUE(diagnosis.verdict().startsWith(diagnosis.faults.empty()
                                                   ? QStringLiteral("Interrupted before anything was found.")
                                                   : QStringLiteral("Interrupted; besides, ")))
        << diagnosis.verdict().toStdString();
}

} // namespace

TEST(Cancellation, EndsAnExaminationAtOnceWheneverItComes)
{
    std::vector<PlantCase> plants = faultyPlants(1);
    for (const PlantCase &one : healthyPlants(1))
        plants.push_back(one);
    const int parts = 8;
    for (const PlantCase &one : plants) {
        const qint64 whole = interrupt(one, [](const QString &, qint64) { return false; }).diagnosis.duration;
        for (int part = 0; part < parts; ++part) {
            SCOPED_TRACE(one.name.toStdString() + " after " + std::to_string(part) + "/8");
            const Interrupted outcome =
                interrupt(one, [&](const QString &, qint64 now) { return now >= whole * part / parts; });
            expectItEnded(outcome);
        }
    }
}

TEST(Cancellation, EndsAnExaminationAtEveryStep)
{
    for (const PlantCase &one : faultyPlants(1)) {
        for (const Examination &step : examinations()) {
            SCOPED_TRACE(one.name.toStdString() + ", " + step.doing);
            const Interrupted outcome = interrupt(
                one, [&](const QString &doing, qint64) { return doing == QLatin1String(step.doing); });
            if (outcome.wasInterrupted)
                expectItEnded(outcome);
        }
    }
}

TEST(Cancellation, TellsNothingOfAConnectionThatWasNotWaitedFor)
{
    PlantCase unreachable;
    unreachable.plant.port = PlantOptions::Port::Unreachable;
    const Interrupted outcome =
        interrupt(unreachable, [](const QString &, qint64 now) { return now > Second; });
    EXPECT_EQ(outcome.diagnosis.verdict(), QStringLiteral("Interrupted before anything was found."));
}

TEST(Cancellation, ForgetsARequestThatWasNotWaitedFor)
{
    const struct {
        qint64 cancelledAfter;
        size_t sent;
        const char *when;
    } rows[] = {{100 * Millisecond, 0, "while connecting"},
                {500 * Millisecond, 0, "during the pause"},
                {1500 * Millisecond, 1, "while waiting"}};
    for (const auto &row : rows) {
        ScriptedLine script;
        script.answers = [&](const QByteArray &) {
            script.deliver(200 * Millisecond, "beat");
            script.deliver(Second, Reply);
        };
        script.time.at(row.cancelledAfter, [&] { script.cancel(); });
        script.ask(Request, 3 * Second, Second);
        EXPECT_EQ(script.requests.size(), row.sent) << row.when;
        EXPECT_TRUE(script.seen.asked.empty()) << row.when;
        EXPECT_TRUE(script.seen.strays.empty()) << row.when << ": what came in its place belongs to it";
        EXPECT_FALSE(script.examiner.hasTimeFor(0)) << row.when;
        EXPECT_FALSE(script.seen.isOutOfTime) << row.when;
        EXPECT_EQ(script.examiner.now(), row.cancelledAfter) << row.when;
    }
}

TEST(Cancellation, KeepsAReplyThatIsThere)
{
    ScriptedLine script;
    script.answers = [&](const QByteArray &) {
        script.time.after(Second, [&] {
            script.line.deliver(Reply);
            script.cancel();
        });
    };
    EXPECT_EQ(script.ask(Request, 3 * Second).result, AskResult::Answered);
    EXPECT_EQ(script.seen.asked.size(), 1U);
    script.ask(Request);
    EXPECT_EQ(script.requests.size(), 1U) << "nothing more is sent";
    EXPECT_EQ(script.seen.asked.size(), 1U);
}
