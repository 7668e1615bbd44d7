#include "desk/link/failure.h"

#include "tests/peers/recorded_command.h"
#include "tests/peers/test_files.h"
#include "tests/peers/text_printing.h"

#include <QFile>
#include <QRegularExpression>

#include <gtest/gtest.h>

TEST(FailureAdvice, AdvisesOnExceptionsInTheWordsOfTheDocument)
{
    QFile document(sourceFile(QStringLiteral("docs/error-texts.md")));
    ASSERT_TRUE(document.open(QIODevice::ReadOnly));
    const QRegularExpression row(QStringLiteral("^\\| `(0x..)` \\| ([^|]*) \\| ([^|]*) \\|$"),
                                 QRegularExpression::MultilineOption);
    int rows = 0;
    for (auto match = row.globalMatch(QString::fromUtf8(document.readAll())); match.hasNext(); ++rows) {
        const QRegularExpressionMatch found = match.next();
        const Failure failure =
            failureOf(QStringLiteral("exception code:") + found.captured(1), CommandRecord());
        EXPECT_EQ(failure.advice,
                  found.captured(2) + QStringLiteral(": ") + found.captured(3).remove(QLatin1Char('`')));
    }
    EXPECT_EQ(rows, 10);
}

TEST(FailureAdvice, SaysWhatTheTextAloneDoesNot)
{
    const auto kindOf = [](const char *text, const CommandRecord &record) {
        return failureOf(QLatin1String(text), record).kind;
    };
    EXPECT_EQ(kindOf("PLC no response (read", RecordedCommand().sends().ended()), FailureKind::NoReply);
    const CommandRecord closed = RecordedCommand().sends().with(ChannelEvent::ClosedByOther).ended();
    EXPECT_EQ(kindOf("PLC no response (read", closed), FailureKind::ConnectionEnded);
    EXPECT_EQ(kindOf("exception code:0x02", closed), FailureKind::Exception);
    EXPECT_EQ(kindOf("CRC error (read", RecordedCommand().sends().gets(readOne.left(7)).ended()),
              FailureKind::Echo);
    EXPECT_EQ(kindOf("CRC error (read", RecordedCommand().sends().gets(damaged(goodReply)).ended()),
              FailureKind::Damaged);
    EXPECT_EQ(kindOf("PLC no response", RecordedCommand().with(ChannelEvent::OpenFailed).ended()),
              FailureKind::CannotConnect);
    const CommandRecord echoed = RecordedCommand().sends().with(ChannelEvent::SkippedCopy, readOne).ended();
    EXPECT_EQ(kindOf("PLC no response", echoed), FailureKind::Echo);
}

// To the driver an attempt that is not sent is one that nobody answers.
TEST(FailureAdvice, IsAboutTheLastAttemptThatWasSent)
{
    const auto failureAfter = [](RecordedCommand command) {
        return failureOf(QStringLiteral("PLC no response (read 1 word(s) from 1-HR1)"),
                         command.with(ChannelEvent::Withheld, readOne).ended());
    };
    const auto sent = [] { return RecordedCommand().sends(); };
    const Failure silent = failureAfter(sent());
    EXPECT_EQ(silent.kind, FailureKind::NoReply);
    EXPECT_TRUE(silent.advice.startsWith(QLatin1String("station id, "))) << silent.advice.toStdString();
    EXPECT_EQ(failureAfter(sent().gets(goodReply.left(6))).kind, FailureKind::Cut);
    EXPECT_EQ(failureAfter(sent().gets(damaged(goodReply))).kind, FailureKind::Damaged);
    EXPECT_EQ(failureAfter(sent().gets(frame("0203020007"))).kind, FailureKind::OtherStation);
    EXPECT_EQ(failureAfter(sent().gets(frame("0104020007"))).kind, FailureKind::NotUnderstood);
    EXPECT_EQ(failureAfter(sent().gets(readOne.left(7))).kind, FailureKind::Echo);
    EXPECT_EQ(failureAfter(sent().with(ChannelEvent::ClosedByOther)).kind, FailureKind::ConnectionEnded);
    const Failure unsent = failureAfter(RecordedCommand());
    EXPECT_EQ(unsent.kind, FailureKind::NoReply);
    EXPECT_TRUE(unsent.advice.startsWith(QLatin1String("not sent: "))) << unsent.advice.toStdString();
}
