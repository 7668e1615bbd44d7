#include "desk/output/summary.h"

#include "tests/peers/recorded_command.h"
#include "tests/peers/text_printing.h"

#include <gtest/gtest.h>

#include <QJsonDocument>

namespace
{

LinkCounts countsOf(const std::vector<CommandRecord> &records)
{
    LinkCounts counts;
    for (const CommandRecord &record : records)
        counts.add(record);
    return counts;
}

} // namespace

TEST(Summary, NamesOnlyWhatHappened)
{
    EXPECT_EQ(countsText(LineCounts()), "0 requests, 0 attempts, 0 retries");
    const LinkCounts counts = countsOf({RecordedCommand()
                                            .opens()
                                            .sends()
                                            .gets(frame("01830B"))
                                            .sends()
                                            .gets(frame("01830B"))
                                            .with(ChannelEvent::Discarded, "x")
                                            .sends()
                                            .gets(goodReply.left(3))
                                            .sends()
                                            .gets(frame("0203020007").left(5))
                                            .sends()
                                            .with(ChannelEvent::ClosedByOther)
                                            .with(ChannelEvent::OpenFailed)
                                            .ended()});
    EXPECT_EQ(countsText(counts.total()),
              "1 request, 6 attempts, 5 retries; 1 cut reply, 1 wrong reply, 2 exceptions 0x0B, 1 connection "
              "closed "
              "by the other side, 1 connection refused or not answered, 1 byte discarded");
    EXPECT_EQ(countsLines(counts).size(), 1) << "one station needs no line of its own";
}

TEST(Summary, IsOneObjectWithAVersion)
{
    const LinkCounts counts = countsOf({RecordedCommand().opens().sends().gets(frame("018302")).ended()});
    const QJsonObject line = QJsonDocument::fromJson(summaryLine(counts, {{"found", 3}}).toUtf8()).object();
    EXPECT_EQ(line.keys(), QStringList{"summary"});
    const QJsonObject summary = line.value("summary").toObject();
    EXPECT_EQ(summary.keys(),
              (QStringList{"attempts", "closed_by_other", "crc_errors", "cut_replies", "discarded_bytes",
                           "exceptions", "failed_connections", "found", "not_sent", "reconnects", "requests",
                           "retries", "skipped_bytes", "stations", "timeouts", "version", "wrong_replies"}));
    EXPECT_EQ(summary.value("exceptions").toObject().value("0x02"), 1);
}
