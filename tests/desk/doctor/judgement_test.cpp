#include "desk/doctor/remedy.h"
#include "tests/desk/doctor/written_observations.h"
#include "tests/peers/text_printing.h"

#include <gtest/gtest.h>

// What single examinations make of observations that are written down here.

namespace
{

const qint64 Millisecond = Seen::Millisecond;

} // namespace

TEST(Judgement, TakesATimeOutFromTheSpreadAndAHalfMore)
{
    DoctorOptions options;
    options.exchange.timeout = 300;
    Seen steady;
    for (int i = 0; i < 10; ++i)
        steady.answer(200 * Millisecond);
    EXPECT_EQ(faultsOf(judge(sampleExamination(), steady, options)), QStringList());
    Seen spread;
    for (const int latency : {100, 200, 290})
        spread.answer(latency * Millisecond);
    const Judgement late = judge(sampleExamination(), spread, options);
    EXPECT_EQ(faultsOf(late), QStringList{"late-answers"});
    // 99.9 % of such a spread take 436.6 ms.
    EXPECT_EQ(late.remedy.timeout, 700);
}

TEST(Judgement, LooksWhereRepliesAreDamaged)
{
    const QByteArray right = Seen::reply(QByteArray(16, '\1'));
    const auto withFlip = [&](int index) {
        QByteArray bytes = right;
        bytes[index] = static_cast<char>(bytes.at(index) ^ 8);
        return bytes;
    };
    const auto placeOf = [&](const QList<QByteArray> &spoilt) {
        Seen seen;
        seen.answer(20 * Millisecond);
        for (const QByteArray &bytes : spoilt)
            seen.spoilt(bytes);
        return faultsOf(judge(damageExamination(), seen));
    };
    EXPECT_EQ(placeOf({withFlip(0), withFlip(1), right.mid(1), right.mid(2)}),
              QStringList{"beginning-damaged"});
    EXPECT_EQ(placeOf({withFlip(19), withFlip(20), right.left(19), right.left(20)}),
              QStringList{"end-damaged"});
    EXPECT_EQ(placeOf({withFlip(0), withFlip(10), withFlip(14), right.left(20)}),
              QStringList{"anywhere-damaged"});
    EXPECT_EQ(placeOf({withFlip(0), withFlip(0)}), QStringList{"anywhere-damaged"})
        << "two are too few to tell";
    EXPECT_EQ(placeOf({}), QStringList());
}

TEST(Judgement, SuggestsRetriesByTheRateOfWhatIsLost)
{
    Seen seen;
    for (int i = 0; i < 5; ++i)
        seen.answer(20 * Millisecond).silence();
    const Judgement lost = judge(pauseExamination(), seen);
    EXPECT_EQ(faultsOf(lost), QStringList{"lost-replies"});
    EXPECT_EQ(lost.remedy.retries, 10) << "half to the tenth power is a thousandth";
}

TEST(Judgement, NamesRefusalsThatComeNowAndThen)
{
    Seen seen;
    seen.answer(20 * Millisecond).refusal(6).answer(20 * Millisecond);
    EXPECT_EQ(faultsOf(judge(failureExamination(), seen)), QStringList{"device-refuses"});
    Seen missing;
    missing.answer(20 * Millisecond).refusal(2);
    EXPECT_EQ(faultsOf(judge(failureExamination(), missing)), QStringList());
}

TEST(Judgement, TellsPacketsOfAGatewayByWhenTheyCome)
{
    Seen heartbeat;
    heartbeat.stray(2000, "beat").stray(7000, "beat").stray(12000, "beat");
    EXPECT_EQ(faultsOf(judge(streamExamination(), heartbeat)), QStringList{"heartbeat"});
    Seen now;
    now.stray(2000, "beat").stray(2900, "beat").stray(12000, "other").stray(12300, "any");
    EXPECT_EQ(faultsOf(judge(streamExamination(), now)), QStringList{"stray-bytes"});
    Seen registration;
    registration.stray(10, "unit 7", true);
    registration.seen.connections.emplace_back();
    registration.stray(20000, "unit 7", true);
    EXPECT_EQ(faultsOf(judge(streamExamination(), registration)), QStringList{"registration"});
}

TEST(Judgement, ChangesTheCommandByWhatWasFound)
{
    DoctorOptions options;
    options.target.host = QStringLiteral("gateway");
    options.moreOptions = QStringList{QStringLiteral("--device"), QStringLiteral("COM 1")};
    Wanted wanted;
    wanted.point.at = *typedItems(*parseAddress(QStringLiteral("HR10")), {Meaning::Float, 32});
    options.wanted = {wanted};
    Remedy remedy;
    Remedy first;
    first.station = 5;
    first.retries = 4;
    first.shift = -1;
    first.order = QStringLiteral("ABCD");
    Remedy second;
    second.retries = 7;
    second.timeout = 4500;
    add(remedy, first);
    add(remedy, second);
    Diagnosis diagnosis;
    diagnosis.command = commandFor(options, remedy, Observations());
    EXPECT_EQ(diagnosis.commandText(),
              QStringLiteral("driverhost read rtutcp://gateway:502/5 HR9:f32@ABCD --timeout 4500 "
                             "--retries 7 --device 'COM 1'"));
}
