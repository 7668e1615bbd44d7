#include "kit/subject/transcript_subject.h"
#include "tests/support/gtest_qt.h"

#include <gtest/gtest.h>

// The text files that driver-conformance plays back.

namespace
{

using kit::Recording;
using kit::Transcript;

const char Recorded[] = "# a comment\n"
                        "device COM2\n"
                        "retries 1\n"
                        "station 3\n"
                        "\n"
                        "read word 2 HR100\n"
                        "> 03 03 0063 0002\n"
                        "< 03 03 04 1234 5678\n"
                        "= 34 12 78 56\n"
                        "station 4\n"
                        "write bit 1 DO 7\n"
                        "data 01\n"
                        "> 04 05\n"
                        "> 04 06\n"
                        "< 04 86 02\n"
                        "done\n"
                        "read 9 -1 HR1\n"
                        "failed unsupported  data type\n"
                        "refuse dword 1 XX\n"
                        "difference staleness.echo the line is full duplex\n";

Transcript parsed(const QByteArray &text)
{
    QString error;
    const Transcript transcript = kit::parsedTranscript(text, error);
    EXPECT_EQ(error, QString());
    return transcript;
}

QString errorOf(const QByteArray &text)
{
    QString error;
    kit::parsedTranscript(text, error);
    return error;
}

} // namespace

TEST(TranscriptFile, HasItsLinkAndItsCommands)
{
    const Transcript transcript = parsed(Recorded);
    EXPECT_EQ(transcript.device, QString(QLatin1String("COM2")));
    EXPECT_EQ(transcript.station, 3);
    EXPECT_EQ(transcript.retries, 1);
    ASSERT_EQ(transcript.recordings.size(), 3u);
    ASSERT_EQ(transcript.refused.size(), 1u);
    EXPECT_EQ(transcript.refused[0].address, QString(QLatin1String("XX")));
    ASSERT_EQ(transcript.differences.size(), 1u);
    EXPECT_EQ(transcript.differences[0].check, QString(QLatin1String("staleness.echo")));
    EXPECT_EQ(transcript.differences[0].reason, QString(QLatin1String("the line is full duplex")));
}

TEST(TranscriptFile, HasReadsWritesAndFailures)
{
    const Transcript transcript = parsed(Recorded);
    const Recording &read = transcript.recordings.at(0);
    EXPECT_FALSE(read.sample.isWrite);
    EXPECT_EQ(read.sample.station, 3);
    EXPECT_EQ(read.sample.command.dataType, WordItem);
    EXPECT_EQ(read.sample.command.count, 2);
    EXPECT_EQ(read.sample.data, QByteArray::fromHex("34127856"));
    ASSERT_EQ(read.exchanges.size(), 1u);
    EXPECT_EQ(read.exchanges[0].request, QByteArray::fromHex("030300630002"));
    EXPECT_EQ(read.exchanges[0].reply, QByteArray::fromHex("03030412345678"));

    const Recording &write = transcript.recordings.at(1);
    EXPECT_TRUE(write.sample.isWrite);
    EXPECT_EQ(write.sample.station, 4);
    EXPECT_EQ(write.sample.command.address, QString(QLatin1String("DO 7")));
    EXPECT_EQ(write.sample.data, QByteArray("\1"));
    ASSERT_EQ(write.exchanges.size(), 2u);
    EXPECT_EQ(write.exchanges[0].reply, QByteArray());
    EXPECT_FALSE(write.hasFailed);

    const Recording &failed = transcript.recordings.at(2);
    EXPECT_EQ(failed.sample.command.dataType, 9);
    EXPECT_EQ(failed.sample.command.count, -1);
    EXPECT_TRUE(failed.hasFailed);
    EXPECT_EQ(failed.text, QString(QLatin1String("unsupported data type")));
}

TEST(TranscriptFile, IsTheSameWhenWrittenAndReadAgain)
{
    const QByteArray written = kit::transcriptText(parsed(Recorded));
    EXPECT_EQ(kit::transcriptText(parsed(written)), written);
    EXPECT_TRUE(written.contains("\nwrite bit 1 DO 7\ndata 01\n> 04 05\n> 04 06\n< 04 86 02\ndone\n"))
        << written.constData();
}

TEST(TranscriptFile, MistakesAreReportedWithTheirLine)
{
    const struct {
        const char *text;
        const char *error;
    } rows[] = {
        {"\nspeed 9600\n", "line 2: nobody knows \"speed\""},
        {"station two\n", "line 1: expected a number after \"station\""},
        {"read word HR1\n", "line 1: expected a kind, a count and an address"},
        {"read words 1 HR1\n", "line 1: \"words\" is no kind of item"},
        {"> 01\n", "line 1: \">\" belongs to a command, and none was begun"},
        {"read word 1 HR1\n< 01\n", "line 2: a reply before any request"},
        {"read word 1 HR1\n> 0\n", "line 2: expected pairs of hexadecimal digits after \">\""},
        {"read word 1 HR1\n> 0 1\n", "line 2: expected pairs of hexadecimal digits after \">\""},
        {"read word 1 HR1\ndone\n", "line 2: a read ends with =, a write with done"},
        {"read word 1 HR1\nread word 1 HR1\n",
         "line 2: the command before has no end: expected =, done or failed"},
        {"read word 1 HR1\n", "the last command has no end: expected =, done or failed"},
        {"difference staleness.echo\n", "line 1: expected the id of a check and a reason"},
    };
    for (const auto &row : rows)
        EXPECT_EQ(errorOf(row.text), QString(QLatin1String(row.error))) << row.text;
}

TEST(TranscriptSubject, AnswersWhatWasRecorded)
{
    kit::TranscriptSubject subject(parsed(Recorded));
    EXPECT_FALSE(subject.answersEverything());
    EXPECT_EQ(subject.stationId(), 3);
    EXPECT_EQ(subject.deviceSetting().deviceString, QString(QLatin1String("COM2")));
    ASSERT_EQ(subject.samples().size(), 2u);
    EXPECT_EQ(subject.reply(QByteArray::fromHex("030300630002")), QByteArray::fromHex("03030412345678"));
    EXPECT_EQ(subject.reply(QByteArray::fromHex("030300630003")), QByteArray());
}

TEST(TranscriptSubject, AnswersAsTheAttemptThatSucceeded)
{
    kit::TranscriptSubject subject(parsed("read word 1 D1\n> 01\n< AA\n> 01\n> 01\n< BB\n= 00 00\n"));
    EXPECT_EQ(subject.reply("\1"), QByteArray("\xBB"));
}

TEST(TranscriptSubject, AnswersTheCommandThatIsUnderWay)
{
    const char text[] = "read word 1 D1\n> 01\n< AA\n= 00 00\n"
                        "read byte 2 D1\n> 01\n< BB\n= 00 00\n"
                        "read word 1 D1\n> 01\n< CC\n= 00 00\n";
    kit::TranscriptSubject subject(parsed(text));
    const kit::Samples samples = subject.samples();
    ASSERT_EQ(samples.size(), 2u) << "each command once";
    subject.begin(samples[1]);
    EXPECT_EQ(subject.reply("\1"), QByteArray("\xBB"));
    subject.begin(samples[0]);
    EXPECT_EQ(subject.reply("\1"), QByteArray("\xAA"));
}
