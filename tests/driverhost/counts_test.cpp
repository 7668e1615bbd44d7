#include "tests/driverhost/support/slave_test.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QTemporaryDir>

// What happened on the line is shown wherever something was read or written.

namespace
{

SlaveOptions silentHalfTheTime()
{
    SlaveOptions options;
    options.stations = {1, 5};
    EXPECT_TRUE(options.faults.add("silence=1/2"));
    return options;
}

bool matches(const QString &text, const char *pattern)
{
    return QRegularExpression(QLatin1String(pattern)).match(text).hasMatch();
}

QJsonObject summaryOf(const HostRun &run)
{
    const QStringList lines = run.out.split('\n', Qt::SkipEmptyParts);
    for (const QString &line : lines)
        EXPECT_TRUE(QJsonDocument::fromJson(line.toUtf8()).isObject()) << line.toStdString();
    return QJsonDocument::fromJson(lines.value(lines.size() - 1).toUtf8())
        .object()
        .value("summary")
        .toObject();
}

} // namespace

class CountsTest : public SlaveTest
{
protected:
    CountsTest() : SlaveTest(silentHalfTheTime()) {}
};

TEST_F(CountsTest, AWatchHidesNoRetries)
{
    const HostRun run = host("watch TARGET HR1 --timeout 60 --settle off --interval 0 --count 4");
    EXPECT_EQ(run.code, 0);
    EXPECT_TRUE(matches(run.err, "\n4 transactions in [0-9.]+ s, 0 failed\n")) << run.err.toStdString();
    EXPECT_TRUE(matches(run.err, "\n4 requests, 7 attempts, 3 retries; 3 time-outs, 3 reconnects\n"))
        << run.err.toStdString();
    // The reply's time is short, the transaction's is not.
    EXPECT_TRUE(matches(
        run.err, "\nlatency min .* max [0-9.]+ ms\ntransaction min .* max (6|7|8|9|1\\d)\\d(\\.\\d+)? ms\n"))
        << run.err.toStdString();
}

TEST_F(CountsTest, AWatchCountsEachStation)
{
    const HostRun run =
        host("watch TARGET HR1 5-HR1 --timeout 60 --settle off --interval 0 --count 1 --format json");
    const QJsonObject summary = summaryOf(run);
    EXPECT_EQ(summary.value("version"), 1);
    EXPECT_EQ(summary.value("requests"), 2);
    EXPECT_EQ(summary.value("attempts"), 3);
    EXPECT_EQ(summary.value("retries"), 1);
    EXPECT_EQ(summary.value("rounds"), 1);
    EXPECT_EQ(summary.value("transactions"), 2);
    EXPECT_EQ(summary.value("failed"), 0);
    EXPECT_GE(summary.value("transaction_ms").toObject().value("max").toDouble(), 60);
    EXPECT_LT(summary.value("latency_ms").toObject().value("min").toDouble(), 60);
    const QJsonObject stations = summary.value("stations").toObject();
    EXPECT_EQ(stations.value("1").toObject().value("timeouts"), 0);
    EXPECT_EQ(stations.value("5").toObject().value("timeouts"), 1);
    EXPECT_EQ(stations.value("5").toObject().value("reconnects"), 1);
    EXPECT_TRUE(matches(run.err,
                        "\n  station 1: 1 request, 1 attempt, 0 retries\n  station 5: 1 request, 2 attempts, "
                        "1 retry; 1 time-out, 1 reconnect\n"))
        << run.err.toStdString();
}

TEST_F(CountsTest, EveryLineOfAWatchHasItsAttemptsAndBothTimes)
{
    const QStringList lines =
        host("watch TARGET HR1 --timeout 60 --settle off --interval 0 --count 2 --format csv")
            .out.split('\n');
    const QRegularExpression good("^[^,]+,1,HR1,0,word,0,[0-9.]+,[0-9.]+,1,,,,,$");
    const QRegularExpression late("^[^,]+,1,HR1,0,word,0,[0-9.]+,(6|7|8|9|1\\d)\\d(\\.\\d+)?,2,,,,,$");
    EXPECT_TRUE(good.match(lines.value(1)).hasMatch()) << lines.value(1).toStdString();
    EXPECT_TRUE(late.match(lines.value(2)).hasMatch()) << lines.value(2).toStdString();
}

TEST_F(CountsTest, ReadsWritesTagsAndScansHaveASummaryToo)
{
    EXPECT_EQ(summaryOf(host("read TARGET HR1 HR2 --timeout 60 --settle off --format json")).value("retries"),
              1);
    EXPECT_EQ(summaryOf(host("write TARGET HR1 1 --timeout 60 --settle off --format json")).value("requests"),
              1);
    EXPECT_EQ(summaryOf(host("scan TARGET HR --to 100 --format json")).value("version"), 1);
    QTemporaryDir folder;
    QFile list(folder.filePath("list"));
    ASSERT_TRUE(list.open(QIODevice::WriteOnly));
    list.write("link 1 ETHERNET\nnode 1 1 default\ntag 1 HR1\ntag 1 HR9\n");
    list.close();
    ASSERT_EQ(runHost({"project", "--make", list.fileName(), folder.filePath("db")}).code, 0);
    const QJsonObject tags = summaryOf(
        host("tags TARGET --timeout 60 --settle off --format json --project " + folder.filePath("db")));
    EXPECT_EQ(tags.value("requests"), 1);
    EXPECT_EQ(tags.value("values"), 2);
}

TEST_F(CountsTest, AScanThatFindsNothingNamesNoAddress)
{
    const HostRun run = host("scan TARGET 9-HR --to 100 --timeout 60");
    EXPECT_TRUE(matches(run.err, "\n0 ranges found; no address was asked to the end\n1 request, 1 attempt, "))
        << run.err.toStdString();
}

TEST_F(CountsTest, AScanEndsWithThem)
{
    const HostRun run = host("scan TARGET HR --to 100 --retries 1 --timeout 60 --settle off --delay 0");
    EXPECT_EQ(run.err,
              "1 range found up to HR100\n2 requests, 3 attempts, 1 retry; 1 time-out, 1 reconnect\n");
}
