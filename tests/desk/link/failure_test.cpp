#include "desk/link/failure.h"
#include "desk/wire/protocol.h"
#include "tests/peers/recorded_command.h"
#include "tests/peers/test_files.h"
#include "tests/peers/text_printing.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QRegularExpression>

// What each text of docs/error-texts.md means to programs of the desk.

namespace
{

struct Meaning {
    const char *text; // as the document has it
    FailureKind kind;
    const char *example; // as the driver fills it in; nullptr when there is nothing to fill in
    int exception = 0;
};

const Meaning Meanings[] = {
    {"PLC no response", FailureKind::NoReply, "PLC no response (read 10 word(s) from 1-HR100)"},
    {"received bytes < 5", FailureKind::Cut, nullptr},
    {"packet loss", FailureKind::Cut, "packet loss (write 1 bit to 1-DO1)"},
    {"invalid slave id:…", FailureKind::OtherStation, "invalid slave id:17"},
    {"invalid response", FailureKind::NotUnderstood, nullptr},
    {"CRC error", FailureKind::Damaged, "CRC error (read 3 bit(s) from 5-DI1)"},
    {"exception code:0x…", FailureKind::Exception, "exception code:0x7F", 0x7F},
    {"0x01", FailureKind::Exception, "exception code:0x01", modbus::IllegalFunction},
    {"0x02", FailureKind::Exception, "exception code:0x02 (read 1 word(s) from 1-HR1)",
     modbus::IllegalDataAddress},
    {"0x03", FailureKind::Exception, "exception code:0x03", modbus::IllegalDataValue},
    {"0x04", FailureKind::Exception, "exception code:0x04", modbus::ServerDeviceFailure},
    {"0x05", FailureKind::Exception, "exception code:0x05", modbus::Acknowledge},
    {"0x06", FailureKind::Exception, "exception code:0x06", modbus::ServerDeviceBusy},
    {"0x07", FailureKind::Exception, "exception code:0x07", modbus::NegativeAcknowledge},
    {"0x08", FailureKind::Exception, "exception code:0x08", modbus::MemoryParityError},
    {"0x0A", FailureKind::Exception, "exception code:0x0A", modbus::GatewayPathUnavailable},
    {"0x0B", FailureKind::Exception, "exception code:0x0B", modbus::GatewayTargetFailed},
    {"can't read any word from …", FailureKind::NotRequested, "can't read any word from HR65536"},
    {"can't read any double word from …", FailureKind::NotRequested,
     "can't read any double word from IR65535"},
    {"can't read any byte from …", FailureKind::NotRequested, "can't read any byte from HR1"},
    {"can't read … bits from …", FailureKind::NotRequested, "can't read 2009 bits from DO1"},
    {"can't read … bits from …", FailureKind::NotRequested, "can't read 1 bits from AAAA"},
    {"can't write … bits to …", FailureKind::NotRequested, "can't write 1 bits to AAAA"},
    {"can't write any word to HR…", FailureKind::NotRequested, "can't write any word to HR1"},
    {"can't write any double word to HR…", FailureKind::NotRequested, "can't write any double word to HR1"},
    {"can't write any byte to HR…", FailureKind::NotRequested, "can't write any byte to HR1"},
    {"can't write … bits to DO…", FailureKind::NotRequested, "can't write 1977 bits to DO1"},
    {"can't write any bit to …", FailureKind::NotRequested, "can't write any bit to DI5"},
    {"can't write any byte to …", FailureKind::NotRequested, "can't write any byte to DO5"},
    {"can't write any word to …", FailureKind::NotRequested, "can't write any word to IR5"},
    {"can't write any double word to …", FailureKind::NotRequested, "can't write any double word to X"},
    {"invalid address …-DI", FailureKind::BitNotInProject, "invalid address 1-DI"},
    {"invalid address …-DO", FailureKind::BitNotInProject, "invalid address 247-DO"},
    {"unsupported data type: …", FailureKind::NotRequested, "unsupported data type: HR1"},
    {"can not open database", FailureKind::ProjectDatabase, nullptr},
    {"failed to get default station id", FailureKind::ProjectDatabase, nullptr},
    {"failed to initialize valid bit addresses table", FailureKind::ProjectDatabase, nullptr},
};

// The texts in backquotes with which the rows of the document's tables begin.
QStringList documentedTexts()
{
    QFile file(sourceFile(QStringLiteral("docs/error-texts.md")));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    QStringList texts;
    const QRegularExpression quoted(QStringLiteral("`([^`]+)`"));
    for (const QString &line : QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'))) {
        if (!line.startsWith(QLatin1String("| `")))
            continue;
        QRegularExpressionMatchIterator match = quoted.globalMatch(line.section(QLatin1Char('|'), 1, 1));
        while (match.hasNext())
            texts += match.next().captured(1);
    }
    return texts;
}

QStringList knownTexts()
{
    QStringList texts;
    for (const Meaning &meaning : Meanings)
        texts += QString::fromUtf8(meaning.text);
    return texts;
}

Failure meaningOf(const QString &text)
{
    return failureOf(text, CommandRecord());
}

} // namespace

TEST(Failure, EveryDocumentedTextHasARow)
{
    QStringList documented = documentedTexts();
    QStringList known = knownTexts();
    EXPECT_GT(documented.size(), 30);
    documented.sort();
    known.sort();
    EXPECT_EQ(documented, known) << "documented:\n"
                                 << documented.join(QLatin1Char('\n')).toStdString() << "\nknown here:\n"
                                 << known.join(QLatin1Char('\n')).toStdString();
}

TEST(Failure, KindAndExceptionOfEveryText)
{
    for (const Meaning &meaning : Meanings) {
        const QString text = QString::fromUtf8(meaning.example == nullptr ? meaning.text : meaning.example);
        const Failure failure = meaningOf(text);
        EXPECT_EQ(int(failure.kind), int(meaning.kind)) << text.toStdString();
        EXPECT_EQ(failure.exception, meaning.exception) << text.toStdString();
        EXPECT_EQ(failure.text, text);
        EXPECT_FALSE(failure.advice.isEmpty()) << text.toStdString();
    }
}

TEST(Failure, AChannelThatDoesNotOpenSpeaksForItself)
{
    CommandRecord record;
    record.add(ChannelEvent::OpenFailed, {}, 0);
    for (const char *const text : {"Connection refused", "PLC no response", ""}) {
        const Failure failure = failureOf(QLatin1String(text), record);
        EXPECT_EQ(int(failure.kind), int(FailureKind::CannotConnect)) << text;
        EXPECT_EQ(failure.text, QLatin1String(text));
        EXPECT_FALSE(failure.advice.isEmpty());
    }
}

// What the driver hands on of the channel while it sends.
TEST(Failure, AnyOtherTextIsTheChannels)
{
    for (const char *const text : {"The remote host closed the connection", "Network operation timed out",
                                   "exception", "a CRC error"}) {
        EXPECT_EQ(int(meaningOf(QLatin1String(text)).kind), int(FailureKind::SendingBroke)) << text;
    }
}

// The texts say what the driver saw of the bytes; the line knows more.
TEST(Failure, TheLineKnowsMoreThanTheTextSays)
{
    const auto kindOf = [](const char *text, const CommandRecord &record) {
        return nameOf(failureOf(QLatin1String(text), record).kind);
    };
    const CommandRecord ended = RecordedCommand().opens().sends().with(ChannelEvent::ClosedByOther).ended();
    const CommandRecord echoed =
        RecordedCommand().opens().sends().with(ChannelEvent::SkippedCopy, readOne).ended();
    const CommandRecord withheld = RecordedCommand().opens().with(ChannelEvent::Withheld, readOne).ended();
    const struct {
        const char *text;
        const CommandRecord &record;
        const char *kind;
    } cases[] = {
        {"PLC no response", ended, "connection-ended"},
        {"packet loss", ended, "connection-ended"},
        {"The remote host closed the connection", ended, "connection-ended"},
        {"CRC error", ended, "crc-error"},
        {"CRC error", echoed, "echo"},
        {"packet loss", echoed, "echo"},
        {"PLC no response", echoed, "echo"},
        {"invalid slave id:7", echoed, "other-station"},
        {"PLC no response", withheld, "no-reply"},
        {"packet loss", withheld, "cut-reply"},
    };
    for (const auto &one : cases)
        EXPECT_EQ(kindOf(one.text, one.record), QLatin1String(one.kind)) << one.text;
}

// What was not sent is silence to the driver; what was sent before it came to something.
TEST(Failure, OfWhatWasNotSentIsThatOfWhatWasSentBefore)
{
    const struct {
        QByteArray reply;
        const char *kind;
        bool isWithheld; // by its advice
    } cases[] = {
        {"", "no-reply", false},
        {goodReply.left(4), "cut-reply", false},
        {damaged(goodReply), "crc-error", false},
        {frame("0203020007"), "other-station", false},
        {frame("0104020007"), "other-function", false},
        {frame("018306"), "no-reply", true},
    };
    for (const auto &one : cases) {
        RecordedCommand command;
        command.opens().sends();
        if (!one.reply.isEmpty())
            command.gets(one.reply);
        const CommandRecord record = command.with(ChannelEvent::Withheld, readOne).ended();
        const Failure failure = failureOf(QStringLiteral("PLC no response"), record);
        EXPECT_EQ(nameOf(failure.kind), QLatin1String(one.kind));
        EXPECT_EQ(failure.advice.startsWith(QLatin1String("not sent: ")), one.isWithheld) << one.kind;
    }
}

TEST(Failure, GatewaysThatDoNotReachTheStation)
{
    for (const Meaning &meaning : Meanings) {
        const bool isAbsent = meaning.exception == modbus::GatewayPathUnavailable ||
                              meaning.exception == modbus::GatewayTargetFailed;
        const QString text = QString::fromUtf8(meaning.example == nullptr ? meaning.text : meaning.example);
        EXPECT_EQ(meaningOf(text).isStationAbsent(), isAbsent) << text.toStdString();
    }
}
