#include "tests/desk/doctor/scripted_line.h"
#include "tests/desk/doctor/written_observations.h"
#include "tests/peers/text_printing.h"

#include <gtest/gtest.h>

// What comes that nobody asked for, and how long it is listened to.

namespace
{

const qint64 Second = ScriptedLine::Second;
const qint64 Millisecond = ScriptedLine::Millisecond;

QString sentenceOf(const Seen &seen)
{
    const Judgement judgement = judge(streamExamination(), seen);
    QStringList sentences;
    for (const Finding &finding : judgement.findings)
        sentences += finding.name() + QStringLiteral(": ") + finding.sentence;
    return sentences.join(QStringLiteral("; "));
}

Seen packetsAt(const std::vector<qint64> &times)
{
    Seen seen;
    for (const qint64 time : times)
        seen.stray(time, "beat");
    return seen;
}

} // namespace

TEST(Stream, AHeartbeatKeepsItsInterval)
{
    const QString regular = QStringLiteral("heartbeat: the gateway sends a heartbeat packet every 2.0 s");
    EXPECT_EQ(sentenceOf(packetsAt({1000, 3000, 5000})), regular);
    EXPECT_EQ(sentenceOf(packetsAt({1000, 3000, 7000, 9000})), regular) << "one was missed";
    EXPECT_EQ(sentenceOf(packetsAt({1000, 3000, 6000, 9000, 12000})),
              QStringLiteral("stray-bytes: bytes that are no frame came 5 times"))
        << "half an interval more is none";
    EXPECT_EQ(sentenceOf(packetsAt({1000, 1150, 1300})),
              QStringLiteral("stray-bytes: bytes that are no frame came 3 times"))
        << "what comes so fast is torn";
    EXPECT_EQ(sentenceOf(packetsAt({1000})),
              QStringLiteral("stray-bytes: bytes came once that are no frame"));
}

TEST(Stream, AHeartbeatIsMostOfWhatComes)
{
    Seen seen = packetsAt({1000, 3000, 5000});
    seen.stray(6000, "a").stray(7000, "b");
    EXPECT_EQ(faultsOf(judge(streamExamination(), seen)), QStringList{"heartbeat"});
    seen.stray(8000, "c");
    EXPECT_EQ(faultsOf(judge(streamExamination(), seen)), QStringList{"stray-bytes"});
}

TEST(Stream, ARegistrationIsTheSameOnEveryConnectionAndOnlyFirst)
{
    const auto faultsOfFirst = [](const QByteArray &first, const QByteArray &second,
                                  const QByteArray &later) {
        Seen seen;
        seen.stray(10, first, true);
        seen.connection(20 * Second);
        seen.stray(20010, second, true);
        if (!later.isEmpty())
            seen.stray(30000, later);
        return faultsOf(judge(streamExamination(), seen)).join(QLatin1Char(','));
    };
    EXPECT_EQ(faultsOfFirst("unit 7", "unit 7", {}), QStringLiteral("registration"));
    EXPECT_EQ(faultsOfFirst("unit 7", "unit 7beat", {}), QStringLiteral("registration"));
    EXPECT_EQ(faultsOfFirst("unit 7", "unit 8", {}), QStringLiteral("stray-bytes"));
    EXPECT_EQ(faultsOfFirst("unit 7", "unit 7", "unit 7"), QStringLiteral("heartbeat"));
    EXPECT_EQ(faultsOfFirst("unit 7", "unit 7", "x"), QStringLiteral("registration,stray-bytes"));
}

TEST(Stream, RepliesThatComeAgainAreNoneOfAnotherMaster)
{
    const auto judged = [](qint64 delay, int copies) {
        Seen seen;
        for (int i = 0; i < copies; ++i) {
            seen.answer(20 * Millisecond);
            const Asked &asked = seen.seen.asked.back();
            seen.stray((asked.repliedAt + delay) / Millisecond, asked.reply);
            seen.seen.strays.back().kind = SkippedPart::OtherFrame;
        }
        return sentenceOf(seen);
    };
    EXPECT_EQ(judged(50 * Millisecond, 1), QString());
    EXPECT_EQ(judged(50 * Millisecond, 2), QStringLiteral("stray-bytes: replies came again, 2 times"));
    EXPECT_EQ(judged(300 * Millisecond, 1), QString());
    EXPECT_EQ(
        judged(300 * Millisecond, 2),
        QStringLiteral("other-master: another master is on the line: 2 frames that nothing here asked for"));
}

TEST(Stream, IsNotListenedToWithoutAConnection)
{
    ScriptedLine script;
    streamExamination().observe(script.examiner);
    EXPECT_EQ(script.examiner.now(), 0);
    EXPECT_TRUE(script.seen.connections.empty());
}

TEST(Stream, IsNotListenedToWhereTheConnectionIsGone)
{
    ScriptedLine script;
    script.takes = [&](int number) {
        script.end(2 * Second);
        return number == 1;
    };
    ASSERT_TRUE(script.examiner.tryToConnect());
    streamExamination().observe(script.examiner);
    EXPECT_EQ(script.seen.connections.size(), 4U) << "one, and three attempts at another";
    EXPECT_EQ(script.seen.listened, 2 * Second);
}

TEST(Stream, IsListenedToLongerWhereItIsNotClearYet)
{
    const struct {
        std::vector<qint64> packets; // milliseconds after the beginning
        qint64 listenTime;
        qint64 longestTime;
        qint64 listened;
        const char *why;
    } rows[] = {
        {{}, 10 * Second, 55 * Second, 10 * Second, "nothing came"},
        {{4000}, 0, 55 * Second, 0, "it is not to be listened to"},
        {{4000}, 10 * Second, 55 * Second, 35 * Second, "once is not clear, and for long enough"},
        {{4000}, 10 * Second, 26 * Second, 12 * Second, "there is no more time"},
        {{4000, 8000, 12000}, 10 * Second, 55 * Second, 12 * Second, "three times are clear"},
    };
    for (const auto &row : rows) {
        ScriptedLine script;
        script.options.listenTime = row.listenTime;
        script.options.longestTime = row.longestTime;
        ASSERT_TRUE(script.examiner.tryToConnect());
        script.seen.connections.back().wasAsked = true;
        for (const qint64 time : row.packets)
            script.deliver(time * Millisecond, "beat");
        streamExamination().observe(script.examiner);
        EXPECT_EQ(script.seen.listened, row.listened) << row.why;
        EXPECT_EQ(script.seen.isOutOfTime, row.longestTime < 55 * Second) << row.why;
    }
}

TEST(Stream, ConnectsOnceMoreForAFirstPacketWhileThereIsTime)
{
    const struct {
        qint64 longestTime;
        int before; // connections
        size_t connections;
        const char *why;
    } rows[] = {{55 * Second, 1, 2, "to see whether it comes again"},
                {55 * Second, 2, 2, "it was seen twice"},
                {11 * Second, 1, 1, "there is no time"}};
    for (const auto &row : rows) {
        ScriptedLine script;
        script.options.longestTime = row.longestTime;
        script.takes = [&](int) {
            script.deliver(50 * Millisecond, "unit 7");
            return true;
        };
        for (int i = 0; i < row.before; ++i) {
            script.examiner.tryToConnect();
            script.examiner.listen(100 * Millisecond);
        }
        streamExamination().observe(script.examiner);
        EXPECT_EQ(script.seen.connections.size(), row.connections) << row.why;
        EXPECT_EQ(script.seen.strays.size(), row.connections) << row.why;
    }
}
