#include "desk/wire/rtu_frame.h"
#include "tests/desk/doctor/scripted_line.h"
#include "tests/peers/text_printing.h"

#include <gtest/gtest.h>

// What an examiner writes down of connections, requests and what comes of them.

namespace
{

const qint64 Millisecond = ScriptedLine::Millisecond;
const qint64 Second = ScriptedLine::Second;

QByteArray hex(const char *digits)
{
    return QByteArray::fromHex(digits);
}

QByteArray read(int station, Area area = Area::HoldingRegisters)
{
    return readRequest(station, area, 0, 1);
}

const QByteArray Reply = withCrc(hex("0103021234"));

std::vector<qint64> attemptsOf(const Observations &seen)
{
    std::vector<qint64> times;
    for (const Connection &one : seen.connections)
        times.push_back(one.beganAt / Millisecond);
    return times;
}

} // namespace

TEST(Examiner, TriesThreeTimesToConnect)
{
    ScriptedLine script;
    script.takes = [](int) { return false; };
    EXPECT_EQ(script.ask(read(1)).result, AskResult::Unsent);
    EXPECT_EQ(attemptsOf(script.seen), (std::vector<qint64>{0, 1000, 4000}));
    EXPECT_EQ(script.seen.asked.size(), 1U);
    EXPECT_TRUE(script.seen.connections.back().error.contains(QStringLiteral("refused")));
    EXPECT_FALSE(script.seen.isOutOfTime);
}

TEST(Examiner, TriesToConnectAsLongAsThereIsTime)
{
    ScriptedLine script;
    script.options.longestTime = 2 * Second;
    script.takes = [](int) { return false; };
    EXPECT_EQ(script.ask(read(1)).result, AskResult::Unsent);
    EXPECT_EQ(attemptsOf(script.seen), (std::vector<qint64>{0, 1000}));
    EXPECT_TRUE(script.seen.isOutOfTime);
}

TEST(Examiner, ConnectsAgainWhereTheConnectionEndsAtOnce)
{
    ScriptedLine script;
    script.takes = [&](int number) {
        if (number < 3)
            script.end(50 * Millisecond);
        return true;
    };
    script.answers = [&](const QByteArray &) { script.deliver(0, Reply); };
    const Asked asked = script.ask(read(1));
    EXPECT_EQ(asked.result, AskResult::Answered);
    EXPECT_EQ(asked.connection, 2);
    EXPECT_EQ(script.seen.connections[0].endedAt, 50 * Millisecond);
    EXPECT_EQ(script.seen.connections[1].endedAt, 1100 * Millisecond);
    EXPECT_EQ(script.seen.connections[2].endedAt, -1);
}

TEST(Examiner, SeesTheConnectionEndDuringAPause)
{
    ScriptedLine script;
    script.takes = [&](int) {
        script.end(Second);
        return true;
    };
    EXPECT_EQ(script.ask(read(1), Second, 2 * Second).result, AskResult::Ended);
    EXPECT_TRUE(script.requests.empty());
    EXPECT_EQ(script.seen.connections.front().endedAt, Second);
}

TEST(Examiner, HearsAndEndsNothingWithoutAConnection)
{
    ScriptedLine script;
    script.examiner.listen(Second);
    script.examiner.disconnect();
    script.examiner.announce(QStringLiteral("nobody hears this"));
    EXPECT_EQ(script.examiner.now(), 0);
    EXPECT_EQ(script.seen.listened, 0);
    EXPECT_TRUE(script.seen.connections.empty());
}

TEST(Examiner, KeepsWhatComesBehindAReply)
{
    ScriptedLine script;
    script.answers = [&](const QByteArray &) { script.deliver(10 * Millisecond, Reply + "beat"); };
    const Asked asked = script.ask(read(1));
    EXPECT_EQ(asked.result, AskResult::Answered);
    EXPECT_EQ(asked.reply, Reply);
    script.examiner.disconnect();
    ASSERT_EQ(script.seen.strays.size(), 1U);
    EXPECT_EQ(script.seen.strays.front().bytes, QByteArray("beat"));
    EXPECT_EQ(script.seen.strays.front().asked, -1);
}

TEST(Examiner, TellsWhatComesInPlaceOfAReply)
{
    const QByteArray request = read(1);
    const struct {
        QByteArray bytes;
        AskResult result;
        size_t strays;
        const char *what;
    } rows[] = {
        {withCrc(hex("0903021234")), AskResult::OtherStation, 1, "another station's reply"},
        {withCrc(hex("098302")), AskResult::OtherStation, 1, "another station's exception"},
        {read(9), AskResult::Noise, 1, "a request to another station"},
        {withCrc(hex("0904021234")), AskResult::Noise, 1, "another station's reply to another function"},
        {withCrc(hex("010304123456 78")), AskResult::OtherLength, 0, "a longer reply"},
        {request, AskResult::Echo, 0, "the request"},
        {request + "beat", AskResult::Noise, 1, "the request and something else"},
        {request + request + Reply, AskResult::Answered, 0, "the request, twice, and the reply"},
    };
    for (const auto &row : rows) {
        ScriptedLine script;
        script.answers = [&](const QByteArray &) { script.deliver(10 * Millisecond, row.bytes); };
        const Asked asked = script.ask(request);
        EXPECT_EQ(static_cast<int>(asked.result), static_cast<int>(row.result)) << row.what;
        EXPECT_EQ(script.seen.strays.size(), row.strays) << row.what;
        EXPECT_EQ(asked.isEchoed, row.bytes.startsWith(request)) << row.what;
    }
}

TEST(Examiner, GivesALateReplyToTheRequestThatItAnswers)
{
    const struct {
        QByteArray bytes;
        AskResult first;
        AskResult second;
        const char *what;
    } rows[] = {
        {Reply, AskResult::Answered, AskResult::Silent, "a value"},
        {withCrc(hex("018302")), AskResult::Refused, AskResult::Silent, "an exception"},
        {withCrc(hex("0104021234")), AskResult::Silent, AskResult::Noise, "of another function"},
        {withCrc(hex("010304 12345678")), AskResult::Silent, AskResult::OtherStation, "of another length"},
    };
    for (const auto &row : rows) {
        ScriptedLine script;
        script.answers = [&](const QByteArray &request) {
            if (byteAt(request, 0) == 1)
                script.deliver(1500 * Millisecond, row.bytes);
        };
        script.ask(read(1));
        script.ask(read(2));
        const Asked &first = script.seen.asked[0];
        EXPECT_EQ(static_cast<int>(first.result), static_cast<int>(row.first)) << row.what;
        EXPECT_EQ(static_cast<int>(script.seen.asked[1].result), static_cast<int>(row.second)) << row.what;
        EXPECT_EQ(first.isLate, row.first != AskResult::Silent) << row.what;
        EXPECT_EQ(first.latency(), first.isLate ? 1500 * Millisecond : -1) << row.what;
        EXPECT_EQ(script.seen.strays.empty(), first.isLate) << row.what;
    }
}

TEST(Examiner, TakesAReplyThatIsFarTooLateForAnothers)
{
    for (const qint64 delay : {19 * Second, 21 * Second}) {
        ScriptedLine script;
        script.answers = [&](const QByteArray &) { script.deliver(delay, Reply); };
        script.ask(read(1));
        script.examiner.listen(25 * Second);
        EXPECT_EQ(script.seen.asked[0].isLate, delay < 20 * Second);
        EXPECT_EQ(script.seen.hasTraffic(), delay > 20 * Second);
    }
}

TEST(Examiner, TracesWhatIsAFrameAndWhatIsNone)
{
    ScriptedLine script;
    QStringList lines;
    script.examiner.setTrace([&](const QString &line) { lines += line; });
    script.answers = [&](const QByteArray &) { script.deliver(10 * Millisecond, "beat"); };
    script.ask(read(1));
    script.examiner.disconnect();
    ASSERT_EQ(lines.size(), 3);
    EXPECT_TRUE(lines[0].contains(QStringLiteral("connected")));
    EXPECT_TRUE(lines[1].contains(QStringLiteral("01 03 00 00 00 01 84 0A")));
    EXPECT_FALSE(lines[1].contains(QStringLiteral("no frame")));
    EXPECT_TRUE(lines[2].contains(QStringLiteral("no frame")));
}
