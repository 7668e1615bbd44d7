#include "apps/driverdesk/models/line_model.h"
#include "apps/driverdesk/models/traffic_model.h"
#include "desk/wire/frame_text.h"
#include "desk/wire/rtu_frame.h"
#include "desk/wire/trace.h"
#include "tests/peers/text_printing.h"

#include <gtest/gtest.h>

namespace
{

QByteArray frame(const char *hex)
{
    return withCrc(QByteArray::fromHex(hex));
}

QString line(FrameDirection direction, const QByteArray &bytes, const char *meaning = "some meaning")
{
    return traceLine(QDateTime::currentDateTime(), direction, bytes, QLatin1String(meaning));
}

QString event(const char *text)
{
    return traceEvent(QDateTime::currentDateTime(), QLatin1String(text));
}

} // namespace

TEST(TraceLine, IsTakenApart)
{
    const QByteArray request = frame("0203000000 02");
    const TrafficEntry entry = parseTraceLine(line(FrameDirection::Sent, request, "station 2, read"));
    EXPECT_EQ(entry.mark, QLatin1Char('>'));
    EXPECT_EQ(entry.bytes, request);
    EXPECT_EQ(entry.meaning, QStringLiteral("station 2, read"));
    EXPECT_EQ(entry.station(), 2);
    EXPECT_EQ(entry.function(), 3);
    EXPECT_EQ(entry.time.size(), 12);
    EXPECT_FALSE(entry.isFailure);
}

TEST(TraceLine, KnowsAFailure)
{
    QByteArray damaged = frame("010302 0001");
    damaged[damaged.size() - 1] = static_cast<char>(damaged.at(damaged.size() - 1) ^ 1);
    const std::pair<QString, bool> cases[] = {
        {line(FrameDirection::Received, frame("0103020001")), false},
        {line(FrameDirection::Received, frame("018302")), true},
        {line(FrameDirection::Received, damaged), true},
        {line(FrameDirection::Dropped, frame("0103020001")), true},
        {event("connected"), false},
        {event("closed"), false},
        {event("closed by the other side"), true},
        {event("PLC no response (read 1 word(s) from 1-HR1)"), true},
    };
    for (const auto &[text, isFailure] : cases)
        EXPECT_EQ(parseTraceLine(text).isFailure, isFailure) << text.toStdString();
    EXPECT_EQ(parseTraceLine(line(FrameDirection::Received, frame("018302"))).function(), 3);
}

TEST(TraceLine, TakesEventsAndWhatIsNoLine)
{
    const TrafficEntry entry = parseTraceLine(event("connected"));
    EXPECT_EQ(entry.mark, QLatin1Char('-'));
    EXPECT_EQ(entry.meaning, QStringLiteral("connected"));
    EXPECT_EQ(entry.station(), -1);
    EXPECT_EQ(entry.function(), -1);
    EXPECT_EQ(parseTraceLine(QStringLiteral("no line")).meaning, QStringLiteral("no line"));
}

TEST(Traffic, FiltersAndGivesLinesAsTheyWere)
{
    TrafficModel model;
    TrafficFilter filter(model);
    const QStringList lines{line(FrameDirection::Sent, frame("010300000001")),
                            line(FrameDirection::Received, frame("018302")),
                            line(FrameDirection::Sent, frame("020100000001")), event("connected")};
    model.add(lines);
    EXPECT_EQ(filter.lines(), lines);
    filter.setStation(1);
    EXPECT_EQ(filter.lines(), lines.mid(0, 2));
    filter.setFunction(1);
    EXPECT_EQ(filter.lines(), QStringList());
    filter.setStation(std::nullopt);
    EXPECT_EQ(filter.lines(), lines.mid(2, 1));
    filter.setFunction(std::nullopt);
    filter.setFailuresOnly(true);
    EXPECT_EQ(filter.lines(), lines.mid(1, 1));
}

TEST(Traffic, KeepsTheLastLinesAndCountsWhatItMisses)
{
    TrafficModel model;
    QStringList many;
    for (int i = 0; i < TrafficModel::MaxEntries + 5; ++i)
        many += event(QByteArray::number(i).constData());
    model.add(many);
    EXPECT_EQ(model.rowCount(), TrafficModel::MaxEntries);
    EXPECT_EQ(model.entry(0).meaning, QStringLiteral("5"));
    model.add({event("last")});
    EXPECT_EQ(model.rowCount(), TrafficModel::MaxEntries);
    EXPECT_EQ(model.entry(model.rowCount() - 1).meaning, QStringLiteral("last"));
    model.setPaused(true);
    model.add(many.mid(0, 3));
    EXPECT_EQ(model.missed(), 3U);
    EXPECT_EQ(model.entry(model.rowCount() - 1).meaning, QStringLiteral("last"));
}

TEST(LatencyClasses, HaveTheirUpperEnds)
{
    LatencyClasses classes;
    for (const qint64 microseconds : {1, 500, 501, 1000, 1000000, 1000001})
        classes.add(microseconds);
    EXPECT_EQ(classes.count(0), 2U);
    EXPECT_EQ(classes.count(1), 2U);
    EXPECT_EQ(classes.count(LatencyClasses::size() - 2), 1U);
    EXPECT_EQ(classes.count(LatencyClasses::size() - 1), 1U);
    EXPECT_EQ(LatencyClasses::nameOf(0), QStringLiteral("0.5"));
    EXPECT_EQ(LatencyClasses::nameOf(LatencyClasses::size() - 2), QStringLiteral("1 s"));
    EXPECT_EQ(LatencyClasses::nameOf(LatencyClasses::size() - 1), QStringLiteral("more"));
}

TEST(BusyTime, IsAShareOfAllAndOfLate)
{
    const qint64 second = 1000 * 1000;
    BusyTime busy;
    busy.begin(0);
    busy.add(0, 10 * second);
    EXPECT_DOUBLE_EQ(busy.share(20 * second), 0.5);
    EXPECT_DOUBLE_EQ(busy.recentShare(20 * second), 0);
    busy.add(15 * second, 20 * second);
    EXPECT_DOUBLE_EQ(busy.share(20 * second), 0.75);
    EXPECT_DOUBLE_EQ(busy.recentShare(20 * second), 0.5);
    EXPECT_DOUBLE_EQ(busy.share(0), 0);
}

TEST(LineModel, HasAColumnForEachStationAndARowForEachException)
{
    CommandRecord record;
    record.begin(7, 0);
    record.add(ChannelEvent::Opened, {}, 1);
    record.add(ChannelEvent::Sent, frame("070300000001"), 2);
    record.add(ChannelEvent::Received, frame("078302"), 3);
    record.end(4, false);
    LineReport report;
    report.counts.add(record);
    LineModel model;
    const int before = model.rowCount();
    model.setReport(report);
    EXPECT_EQ(model.rowCount(), before + 1);
    EXPECT_EQ(model.columnCount(), 3);
    EXPECT_EQ(model.headerData(2, Qt::Horizontal, Qt::DisplayRole).toString(), QStringLiteral("Station 7"));
    const int last = model.rowCount() - 1;
    EXPECT_EQ(model.index(last, 0).data().toString(), QStringLiteral("Exception 2, ") + exceptionName(2));
    EXPECT_EQ(model.index(last, 1).data().toString(), QStringLiteral("1"));
    EXPECT_EQ(model.index(last, 2).data().toString(), QStringLiteral("1"));
    EXPECT_EQ(model.index(0, 0).data().toString(), QStringLiteral("Requests"));
    EXPECT_EQ(model.index(0, 2).data().toString(), QStringLiteral("1"));
}
