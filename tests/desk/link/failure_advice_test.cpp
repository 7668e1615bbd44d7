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
    const Failure withheld =
        failureOf(QStringLiteral("PLC no response"),
                  RecordedCommand().sends().with(ChannelEvent::Withheld, readOne).ended());
    EXPECT_EQ(withheld.kind, FailureKind::NoReply);
    EXPECT_TRUE(withheld.advice.startsWith(QLatin1String("not sent: "))) << withheld.advice.toStdString();
}
