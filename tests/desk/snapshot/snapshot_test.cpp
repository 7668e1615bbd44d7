#include "desk/snapshot/comparison.h"
#include "desk/snapshot/snapshot_file.h"
#include "tests/peers/text_printing.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

namespace
{

const std::optional<quint16> Missing;

KeptRange kept(const char *range, const std::vector<std::optional<quint16>> &values)
{
    const Result<AreaRange> parsed = parseAreaRange(QLatin1String(range));
    EXPECT_TRUE(parsed) << parsed.errorText().toStdString();
    return {parsed.valueOr(AreaRange()), values};
}

Snapshot snapshotOf(const std::vector<KeptRange> &ranges)
{
    return {QStringLiteral("2026-11-21T10:15:00.123+01:00"), QStringLiteral("rtutcp://plc:502/1"), ranges};
}

const char Head[] = "driverhost snapshot\nformat 1\ntime t\ntarget rtutcp://plc:502/1\n";

QString problemOf(const QByteArray &text)
{
    return parseSnapshot(QString::fromUtf8(text)).errorText();
}

QStringList textsOf(const std::vector<WriteRun> &runs)
{
    QStringList texts;
    for (const WriteRun &run : runs)
        texts += QStringLiteral("%1-%2 x%3 %4")
                     .arg(QString::number(run.items.address.station), run.items.label(0))
                     .arg(run.items.count)
                     .arg(run.values.front());
    return texts;
}

} // namespace

TEST(Snapshot, IsAReadableFile)
{
    const Snapshot snapshot = snapshotOf({kept("1-HR1..5", {4660, 0, Missing, Missing, 65535}),
                                          kept("2-DO7..8", {1, 0}), kept("1-IR9", {Missing})});
    const QString text = snapshotText(snapshot);
    EXPECT_EQ(text,
              QStringLiteral("driverhost snapshot\nformat 1\ntime 2026-11-21T10:15:00.123+01:00\n"
                             "target rtutcp://plc:502/1\nrange 1-HR1..5\nHR1 4660\nHR2 0\nHR3..4 missing\n"
                             "HR5 65535\nrange 2-DO7..8\nDO7 1\nDO8 0\nrange 1-IR9\nIR9 missing\nend\n"));
    const Result<Snapshot> again = parseSnapshot(text);
    ASSERT_TRUE(again) << again.errorText().toStdString();
    EXPECT_EQ(again->time, snapshot.time);
    EXPECT_EQ(again->target, snapshot.target);
    EXPECT_EQ(snapshotText(*again), text);
    EXPECT_TRUE(differencesOf(snapshot, *again).empty());
}

TEST(Snapshot, TakesWhatPeopleAdd)
{
    const Result<Snapshot> snapshot = parseSnapshot(
        QLatin1String(Head) +
        QStringLiteral("\r\n# pumps\r\n range 1-HR1..3 \r\nHR1..2 7\r\nHR3 8\r\nend\r\n\n# and no more"));
    ASSERT_TRUE(snapshot) << snapshot.errorText().toStdString();
    EXPECT_EQ(snapshot->ranges.front().values, (std::vector<std::optional<quint16>>{7, 7, 8}));
}

TEST(Snapshot, HoldsRangesInAnyOrder)
{
    const Result<Snapshot> snapshot =
        parseSnapshot(QLatin1String(Head) + QStringLiteral("range 1-HR5\nHR5 7\nrange 1-HR1\nHR1 8\nend\n"));
    ASSERT_TRUE(snapshot) << snapshot.errorText().toStdString();
    EXPECT_EQ(rangeText(snapshot->ranges.back().range), QStringLiteral("1-HR1"));
}

TEST(Snapshot, SaysInWhichLineWhatWasExpected)
{
    const struct {
        QByteArray text;
        const char *problem;
    } cases[] = {
        {"", "1: the file ends here; expected driverhost snapshot"},
        {"hello\n", "1: \"hello\": expected driverhost snapshot"},
        {"\x7F"
         "ELF\x02\x01\n",
         "1: \"\x7F"
         "ELF\x02\x01\": expected driverhost snapshot"},
        {"driverhost snapshot\ntime t\n", "2: \"time t\": expected format"},
        {"driverhost snapshot\nformat 2\n", "2: format 2 is none that this program knows; expected 1"},
        {"driverhost snapshot\nformat 1\ntime t\n", "4: the file ends here; expected target"},
        {"driverhost snapshot\nformat 1\ntime t\ntarget plc:502\n",
         "4: target \"plc:502\": expected rtutcp://"},
        {Head, "5: the file ends here; expected a range such as range 1-HR1..100"},
        {QByteArray(Head) + "end\n", "5: \"end\": expected a range such as range 1-HR1..100"},
        {QByteArray(Head) + "HR1 5\n", "5: \"HR1\": expected a range such as"},
        {QByteArray(Head) + "range HR1..2\n", "5: \"HR1..2\": expected a station and its addresses"},
        {QByteArray(Head) + "range 1-XR1\n", "5: \"1-XR1\": expected a station and its addresses"},
        {QByteArray(Head) + "range 1-HR1..2\nHR2 5\n", "6: \"HR2\": expected HR1 and its value"},
        {QByteArray(Head) + "range 1-HR1..2\nIR1 5\n", "6: \"IR1\": expected HR1 and its value"},
        {QByteArray(Head) + "range 1-HR1..2\n2-HR1 5\n", "6: \"2-HR1\": expected HR1 and its value"},
        {QByteArray(Head) + "range 1-HR1..2\nHR1..3 missing\n", "6: \"HR1..3\": expected HR1 and its value"},
        {QByteArray(Head) + "range 1-HR1\nHR1 1\nHR2 2\n",
         "7: \"HR2\": expected a range such as range 1-HR1..100, or end"},
        {QByteArray(Head) + "range 1-HR1..2\nHR1 65536\n",
         "6: value \"65536\": expected a whole number from 0 to 65535"},
        {QByteArray(Head) + "range 1-HR1\nHR1\n", "6: value \"\": expected a whole number from 0 to 65535"},
        {QByteArray(Head) + "range 1-DO1\nDO1 2\n", "6: value \"2\": expected a whole number from 0 to 1"},
        {QByteArray(Head) + "range 1-HR1..2\nHR1 5\n", "7: the file ends here; expected HR2 and its value"},
        {QByteArray(Head) + "range 1-HR1..2\nHR1 5\nend\n", "7: \"end\": expected HR2 and its value"},
        {QByteArray(Head) + "range 1-HR1..2\nHR1 5\nrange 1-DO1\n",
         "7: \"range 1-DO1\": expected HR2 and its value"},
        {QByteArray(Head) + "range 1-HR1\nHR1 5\nend now\n",
         "7: \"end\": expected a range such as range 1-HR1..100, or end"},
        {QByteArray(Head) + "range 1-HR1\nHR1 466",
         "7: the file ends here; expected a range such as range 1-HR1..100, or end"},
        {QByteArray(Head) + "range 1-HR1..2\nHR1..2 5\nrange 1-HR2..3\n",
         "7: \"1-HR2..3\" overlaps 1-HR1..2; expected each address once"},
        {QByteArray(Head) + "range 1-HR1\nHR1 5\nend\nrange 1-HR2\n",
         "8: \"range 1-HR2\": expected nothing after the end"},
    };
    for (const auto &one : cases)
        EXPECT_TRUE(problemOf(one.text).startsWith(QLatin1String(one.problem)))
            << one.text.toStdString() << problemOf(one.text).toStdString();
}

TEST(Snapshot, IsWrittenWholeOrNotAtAll)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("plc.txt"));
    const Snapshot snapshot = snapshotOf({kept("1-HR1", {5})});
    ASSERT_TRUE(writeSnapshotFile(path, snapshot));
    EXPECT_EQ(snapshotText(*readSnapshotFile(path)), snapshotText(snapshot));
    EXPECT_TRUE(writeSnapshotFile(QStringLiteral("/proc/none/plc.txt"), snapshot)
                    .errorText()
                    .startsWith(QLatin1String("/proc/none/plc.txt: ")));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("driverhost snapshot\nformat 9\n");
    file.close();
    EXPECT_TRUE(checkReplaceable(path));
    EXPECT_TRUE(readSnapshotFile(path).errorText().startsWith(path + QStringLiteral(":2: format 9")));
}

TEST(Snapshot, IsWrittenOverNothingElse)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("points.csv"));
    EXPECT_TRUE(checkReplaceable(path)) << "nothing is there";
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    EXPECT_TRUE(checkReplaceable(path)) << "nothing is in it";
    file.write("name,address\n");
    file.close();
    EXPECT_EQ(checkReplaceable(path).errorText(),
              path + QStringLiteral(" is no snapshot, and is not written over"));
    EXPECT_FALSE(checkReplaceable(folder.path()));
    EXPECT_FALSE(checkReplaceable(QStringLiteral("/dev/null")));
}

TEST(Snapshot, IsMeantForTheStationOfAnotherTarget)
{
    const Snapshot moved = movedTo(snapshotOf({kept("1-HR1", {1}), kept("2-HR1", {2})}), 7);
    EXPECT_EQ(moved.ranges[0].range.station, 7);
    EXPECT_EQ(moved.ranges[1].range.station, 2) << "was of another station than the target's";
    EXPECT_EQ(valuesIn(moved), 2);
    EXPECT_EQ(missingIn(snapshotOf({kept("1-HR1..4", {1, Missing, Missing, 0})})), 2);
}

TEST(Comparison, FindsWhatDiffers)
{
    const Snapshot before = snapshotOf({kept("1-HR1..4", {1, 2, Missing, 4}), kept("2-DI7..8", {1, 0})});
    const Snapshot after = snapshotOf({kept("1-HR1..4", {1, 9, 3, Missing}), kept("2-DI7..8", {1, 1})});
    QStringList texts;
    for (const Difference &difference : differencesOf(before, after))
        texts += differenceText(difference);
    EXPECT_EQ(texts, (QStringList{
                         QStringLiteral("1-HR2: was 2, is 9"), QStringLiteral("1-HR3: was missing, is 3"),
                         QStringLiteral("1-HR4: was 4, is missing"), QStringLiteral("2-DI8: was 0, is 1")}));
}

TEST(Comparison, IsOfWhatBothHold)
{
    const Snapshot longer = snapshotOf({kept("1-HR1..2", {1, 2}), kept("1-IR1", {3})});
    const Snapshot shorter = snapshotOf({kept("1-HR1", {9})});
    EXPECT_EQ(differencesOf(longer, shorter).size(), 1u);
    EXPECT_EQ(differencesOf(shorter, longer).size(), 1u);
}

TEST(Comparison, WritesRunsOfWhatDiffersAndCanBeWritten)
{
    const Snapshot before =
        snapshotOf({kept("1-HR1..6", {1, 2, 3, Missing, 5, 6}), kept("1-HR7", {7}), kept("1-IR1..2", {1, 2}),
                    kept("2-DO1..3", {1, 1, 1}), kept("1-DI1", {1})});
    const Snapshot after =
        snapshotOf({kept("1-HR1..6", {0, 0, 3, 4, Missing, 0}), kept("1-HR7", {0}), kept("1-IR1..2", {0, 0}),
                    kept("2-DO1..3", {0, 1, 0}), kept("1-DI1", {0})});
    const std::vector<Difference> differences = differencesOf(before, after);
    EXPECT_EQ(textsOf(writesOf(differences, WriteStyle::Together)),
              (QStringList{QStringLiteral("1-1-HR1 x2 1"), QStringLiteral("1-1-HR6 x2 6"),
                           QStringLiteral("2-2-DO1 x1 1"), QStringLiteral("2-2-DO3 x1 1")}));
    EXPECT_EQ(textsOf(writesOf(differences, WriteStyle::OneByOne)).value(3),
              QStringLiteral("2-2-FN5DO3 x1 1"));
    EXPECT_EQ(textsOf(writesOf(differences, WriteStyle::OneByOne)).value(0),
              QStringLiteral("1-1-FN6HR1 x2 1"));
}

TEST(Comparison, RunsFitOneRequest)
{
    const std::vector<std::optional<quint16>> ones(300, quint16(1));
    const std::vector<std::optional<quint16>> zeros(300, quint16(0));
    const std::vector<Difference> differences =
        differencesOf(snapshotOf({kept("1-HR1..300", ones)}), snapshotOf({kept("1-HR1..300", zeros)}));
    const std::vector<WriteRun> runs = writesOf(differences, WriteStyle::Together);
    ASSERT_EQ(runs.size(), 5u);
    EXPECT_EQ(runs[1].items.address.number, 65);
    EXPECT_EQ(runs[4].items.count, 44);
    EXPECT_EQ(runs[4].values.size(), 44u);
    EXPECT_EQ(writesOf(differences, WriteStyle::Together, {10, 512}).size(), 30u) << "a slave that takes ten";
}
