#include "desk/wire/rtu_frame.h"
#include "desk/wire/trace.h"

#include <gtest/gtest.h>

#include <QRegularExpression>
#include <QStringList>

namespace
{

QByteArray frame(const char *hexWithoutCrc)
{
    return withCrc(QByteArray::fromHex(hexWithoutCrc));
}

// The meaning of each line, without the time.
struct CollectedTrace {
    QStringList lines;
    TraceSink sink()
    {
        return [this](const QString &line) { lines.append(line.mid(int(qstrlen("12:34:56.789+00:00 ")))); };
    }
    std::string at(int index) const { return lines.value(index).toStdString(); }
};

TEST(MasterTrace, PutsAReplyTogether)
{
    CollectedTrace collected;
    MasterTrace trace(collected.sink());
    const QByteArray answer = frame("01030412340001");
    trace.sent(frame("010300630002"));
    EXPECT_EQ(1, collected.lines.size());
    trace.received(answer.left(5));
    trace.dropped(QByteArray());
    EXPECT_EQ(1, collected.lines.size());
    trace.received(answer.mid(5));
    ASSERT_EQ(2, collected.lines.size());
    EXPECT_EQ("< 01 03 04 12 34 00 01 7F 45  station 1, read holding registers, HR100..101 (offset 99, "
              "quantity 2), values 4660 1, CRC good",
              collected.at(1));
}

// The byte count of a reply is what a slave claims; the driver reads what it asked for.
TEST(MasterTrace, WaitsForWhatTheRequestAsksFor)
{
    CollectedTrace collected;
    MasterTrace trace(collected.sink());
    trace.sent(frame("010300000002"));
    trace.received(QByteArray::fromHex("0103000001"));
    EXPECT_EQ(1, collected.lines.size());
    trace.received(QByteArray::fromHex("02030405"));
    EXPECT_EQ(2, collected.lines.size());
}

TEST(MasterTrace, TellsShortRepliesAtOnce)
{
    CollectedTrace collected;
    MasterTrace trace(collected.sink());
    trace.sent(frame("010300000002"));
    trace.received(frame("018302"));
    EXPECT_EQ("< 01 83 02 C0 F1  station 1, read holding registers, exception 2 (illegal data address), "
              "CRC good",
              collected.at(1));
    trace.received(frame("01030400010002").left(5));
    trace.event("time-out");
    EXPECT_EQ("< 01 03 04 00 01  station 1, read holding registers, HR1..2 (offset 0, quantity 2), values 1, "
              "incomplete: 5 of 9 bytes",
              collected.at(2));
    EXPECT_EQ("- time-out", collected.at(3));
}

TEST(MasterTrace, WritesWhatIsPendingBeforeAnythingElse)
{
    const QByteArray part = QByteArray::fromHex("0103");
    CollectedTrace collected;
    {
        MasterTrace trace(collected.sink());
        trace.sent(frame("010300000002"));
        trace.received(part);
        trace.sent(frame("010300000002"));
        EXPECT_EQ('<', collected.at(1).front());
        trace.received(part);
        trace.dropped(QByteArray::fromHex("AABBCC"));
        EXPECT_EQ('<', collected.at(3).front());
        EXPECT_EQ(0u, collected.at(4).find("! AA BB CC  the rest of the frame above: "));
        trace.received(part);
    }
    EXPECT_EQ('<', collected.at(5).front());
    EXPECT_EQ(6, collected.lines.size());
}

// The driver takes five bytes of a reply that it refuses; what is thrown away after them is no frame of its
// own.
TEST(MasterTrace, TheRestOfARefusedReplyBelongsToIt)
{
    const QByteArray foreign = frame("02030400010002");
    CollectedTrace collected;
    MasterTrace trace(collected.sink());
    trace.sent(frame("010300000002"));
    trace.received(foreign.left(5));
    trace.flush();
    trace.dropped(foreign.mid(5) + frame("018302"));
    EXPECT_EQ(
        "! 00 02 19 32  the rest of the frame above: station 2, read holding registers, HR1..2 (offset 0, "
        "quantity 2), values 1 2, not station 1, CRC good",
        collected.at(2));
    EXPECT_EQ("! 01 83 02 C0 F1  not asked for: station 1, read holding registers, exception 2 (illegal data "
              "address), CRC good",
              collected.at(3));
    trace.dropped(foreign.mid(5));
    EXPECT_EQ(0u, collected.at(4).find("! 00 02 19 32  not asked for: ")) << "it has its rest already";
}

TEST(MasterTrace, AWholeReplyHasNoRest)
{
    CollectedTrace collected;
    MasterTrace trace(collected.sink());
    trace.sent(frame("010300000002"));
    trace.received(frame("01030400010002"));
    trace.dropped(QByteArray::fromHex("AABBCC"));
    EXPECT_EQ(0u, collected.at(2).find("! AA BB CC  not asked for: "));
    trace.sent(frame("010300000002"));
    trace.received(QByteArray::fromHex("0163000000"));
    trace.dropped(QByteArray::fromHex("AABBCC"));
    EXPECT_EQ(0u, collected.at(5).find("! AA BB CC  the rest of the frame above: station 1, function 99"));
}

TEST(MasterTrace, MarksAnEcho)
{
    CollectedTrace collected;
    MasterTrace trace(collected.sink());
    const QByteArray request = frame("010300000001");
    trace.sent(request);
    trace.received(request.left(7));
    EXPECT_EQ(
        "< 01 03 00 00 00 01 84  station 1, read holding registers, the request itself: an echo, incomplete: "
        "7 of 8 bytes",
        collected.at(1));
    trace.dropped(request.mid(7));
    EXPECT_EQ(
        "! 0A  the rest of the frame above: station 1, read holding registers, the request itself: an echo, "
        "CRC good",
        collected.at(2));
}

TEST(MasterTrace, LinesBeginWithTheTime)
{
    QString first;
    MasterTrace trace([&first](const QString &line) { first = line; });
    trace.event("connected");
    EXPECT_TRUE(QRegularExpression("^\\d\\d:\\d\\d:\\d\\d\\.\\d\\d\\d[-+]\\d\\d:\\d\\d - connected$")
                    .match(first)
                    .hasMatch());
}

TEST(MasterTrace, WithoutASinkNothingHappens)
{
    MasterTrace trace;
    trace.sent(frame("010300000002"));
    trace.received(QByteArray::fromHex("0103"));
    trace.dropped(QByteArray::fromHex("0103"));
    trace.event("closed");
    trace.flush();
}

} // namespace
