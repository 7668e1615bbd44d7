#include "desk/log/change_filter.h"
#include "desk/log/log_file.h"
#include "desk/log/value_summary.h"
#include "tests/desk/support/full_disk.h"
#include "tests/peers/text_printing.h"

#include <gtest/gtest.h>

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <array>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

const QDateTime Morning(QDate(2026, 11, 21), QTime(10, 15, 0));
const QString Title = QStringLiteral("time,value");

class LogFileTest : public testing::Test
{
protected:
    QString path(const char *name = "log.csv") const { return folder.filePath(QLatin1String(name)); }
    QByteArray contents(const QString &file) const
    {
        QFile opened(file);
        return opened.open(QIODevice::ReadOnly) ? opened.readAll() : QByteArray("(none)");
    }
    void write(const QByteArray &text) const
    {
        QFile file(path());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
    }
    QStringList files() const { return QDir(folder.path()).entryList(QDir::Files, QDir::Name); }

    QTemporaryDir folder;
};

QStringList line(int number)
{
    return {QStringLiteral("x,%1").arg(number)};
}

} // namespace

TEST_F(LogFileTest, BeginsWithItsTitleAndIsThereAtOnce)
{
    LogFile log(path(), Title, {});
    ASSERT_TRUE(log.open(Morning));
    ASSERT_TRUE(log.append({QStringLiteral("a,1"), QStringLiteral("b,2")}, Morning));
    EXPECT_EQ(contents(path()), "time,value\na,1\nb,2\n");
    ASSERT_TRUE(log.append(line(3), Morning));
    EXPECT_EQ(contents(path()), "time,value\na,1\nb,2\nx,3\n");
}

TEST_F(LogFileTest, GoesOnWhereItEnded)
{
    write("time,value\nx,1\nx,2");
    LogFile log(path(), Title, {});
    ASSERT_TRUE(log.open(Morning));
    ASSERT_TRUE(log.append(line(3), Morning));
    EXPECT_EQ(contents(path()), "time,value\nx,1\nx,3\n")
        << "without the torn line of a program that was killed";
    EXPECT_EQ(files().size(), 1);
}

TEST_F(LogFileTest, MovesAsideWhatIsNoSuchLog)
{
    for (const QByteArray &foreign : {QByteArray("something of mine"), QByteArray("time,other\n1,2\n")}) {
        write(foreign);
        LogFile log(path(), Title, {});
        ASSERT_TRUE(log.open(Morning));
        ASSERT_EQ(log.rotated().size(), 1);
        EXPECT_EQ(contents(log.rotated().front()), foreign);
        ASSERT_TRUE(log.append(line(1), Morning));
        EXPECT_EQ(contents(path()), "time,value\nx,1\n");
    }
    EXPECT_EQ(files(), (QStringList{QStringLiteral("log-20261121-101500-2.csv"),
                                    QStringLiteral("log-20261121-101500.csv"), QStringLiteral("log.csv")}));
}

TEST_F(LogFileTest, WithoutATitleItKnowsItselfByItsObjects)
{
    write("{\"a\":1}\n");
    LogFile log(path(), QString(), {});
    ASSERT_TRUE(log.open(Morning));
    ASSERT_TRUE(log.append({QStringLiteral("{\"a\":2}")}, Morning));
    EXPECT_EQ(contents(path()), "{\"a\":1}\n{\"a\":2}\n");
    for (const QByteArray &foreign : {QByteArray("{\n  \"mine\": 1\n}\n"), QByteArray("{\"mine\":1}")}) {
        write(foreign);
        LogFile other(path(), QString(), {});
        ASSERT_TRUE(other.open(Morning));
        EXPECT_EQ(contents(other.rotated().value(0)), foreign);
    }
}

TEST_F(LogFileTest, BeginsANewFileWhenTheOldOneIsFull)
{
    LogFile log(path(), Title, {25, false});
    ASSERT_TRUE(log.open(Morning));
    for (int i = 1; i <= 7; ++i)
        ASSERT_TRUE(log.append(line(i), Morning.addSecs(i)));
    EXPECT_EQ(contents(path()), "time,value\nx,7\n");
    ASSERT_EQ(log.rotated().size(), 2);
    EXPECT_EQ(log.rotated().front(), path("log-20261121-101504.csv"));
    EXPECT_EQ(contents(log.rotated().front()), "time,value\nx,1\nx,2\nx,3\n");
    EXPECT_EQ(contents(log.rotated().back()), "time,value\nx,4\nx,5\nx,6\n");
}

TEST_F(LogFileTest, ARoundIsNeverTornApart)
{
    LogFile log(path(), Title, {20, false});
    ASSERT_TRUE(log.open(Morning));
    const QStringList round{QStringLiteral("a,1"), QStringLiteral("b,1"), QStringLiteral("c,1"),
                            QStringLiteral("d,1")};
    ASSERT_TRUE(log.append(round, Morning));
    ASSERT_TRUE(log.append(round, Morning));
    EXPECT_EQ(contents(path()), "time,value\na,1\nb,1\nc,1\nd,1\n");
    EXPECT_EQ(contents(log.rotated().value(0)), "time,value\na,1\nb,1\nc,1\nd,1\n");
}

TEST_F(LogFileTest, BeginsANewFileEachDay)
{
    LogFile log(path(), Title, {0, true});
    ASSERT_TRUE(log.open(Morning));
    ASSERT_TRUE(log.append(line(1), Morning));
    ASSERT_TRUE(log.append(line(2), Morning.addSecs(13 * 3600)));
    EXPECT_TRUE(log.rotated().isEmpty());
    ASSERT_TRUE(log.append(line(3), Morning.addDays(1)));
    EXPECT_EQ(log.rotated(), QStringList{path("log-20261122-101500.csv")});
    EXPECT_EQ(contents(path()), "time,value\nx,3\n");
}

TEST_F(LogFileTest, OfYesterdayIsMovedAsideAtTheFirstLineOfToday)
{
    write("time,value\nx,1\n");
    LogFile log(path(), Title, {0, true});
    const QDateTime later = QDateTime::currentDateTime().addDays(2);
    ASSERT_TRUE(log.open(later));
    ASSERT_TRUE(log.append(line(2), later));
    EXPECT_EQ(log.rotated().size(), 1);
    EXPECT_EQ(contents(path()), "time,value\nx,2\n");
}

TEST_F(LogFileTest, TakesBackWhatDoesNotFitTheDiskAndGoesOnWhenItDoes)
{
    LogFile log(path(), Title, {});
    ASSERT_TRUE(log.open(Morning));
    ASSERT_TRUE(log.append(line(1), Morning));
    {
        const FullDisk disk(20);
        const Result<> result = log.append({QStringLiteral("x,2222222"), QStringLiteral("y,2")}, Morning);
        EXPECT_TRUE(result.errorText().startsWith(path())) << result.errorText().toStdString();
        EXPECT_EQ(contents(path()), "time,value\nx,1\n");
        EXPECT_FALSE(log.append(line(333333), Morning));
    }
    ASSERT_TRUE(log.append(line(4), Morning));
    EXPECT_EQ(contents(path()), "time,value\nx,1\nx,4\n");
}

TEST_F(LogFileTest, ATitleThatDidNotFitComesLater)
{
    LogFile log(path(), Title, {});
    ASSERT_TRUE(log.open(Morning));
    {
        const FullDisk disk(5);
        EXPECT_FALSE(log.append(line(1), Morning));
        EXPECT_EQ(contents(path()), "");
    }
    ASSERT_TRUE(log.append(line(2), Morning));
    EXPECT_EQ(contents(path()), "time,value\nx,2\n");
}

TEST_F(LogFileTest, NoticesWhatOthersDoToTheFile)
{
    LogFile log(path(), Title, {});
    ASSERT_TRUE(log.open(Morning));
    ASSERT_TRUE(log.append(line(1), Morning));
    ASSERT_TRUE(QFile::resize(path(), 0));
    ASSERT_TRUE(log.append(line(2), Morning));
    EXPECT_EQ(contents(path()), "time,value\nx,2\n");
    {
        ASSERT_TRUE(QFile::resize(path(), 11));
        const FullDisk disk(12);
        EXPECT_FALSE(log.append(line(3), Morning));
        EXPECT_EQ(contents(path()), "time,value\n");
    }
    ASSERT_TRUE(QFile::rename(path(), path("moved.csv")));
    ASSERT_TRUE(log.append(line(4), Morning));
    EXPECT_EQ(contents(path()), "time,value\nx,4\n");
    EXPECT_EQ(contents(path("moved.csv")), "time,value\n");
    ASSERT_TRUE(QFile::remove(path()));
    ASSERT_TRUE(log.append(line(5), Morning));
    EXPECT_EQ(contents(path()), "time,value\nx,5\n");
}

TEST_F(LogFileTest, GoesOnInTheFileThatOthersPutInItsPlace)
{
    LogFile log(path(), Title, {});
    ASSERT_TRUE(log.open(Morning));
    ASSERT_TRUE(QFile::rename(path(), path("moved.csv")));
    write("time,value\nx,9\n");
    ASSERT_TRUE(log.append(line(1), Morning));
    EXPECT_EQ(contents(path()), "time,value\nx,9\nx,1\n");
    EXPECT_EQ(contents(path("moved.csv")), "");
}

TEST_F(LogFileTest, BeginsAFileThatIsEmptyAndNeedsNoEndingInItsName)
{
    QFile empty(path("log"));
    ASSERT_TRUE(empty.open(QIODevice::WriteOnly));
    empty.close();
    LogFile log(empty.fileName(), Title, {15, false});
    ASSERT_TRUE(log.open(Morning));
    EXPECT_TRUE(log.rotated().isEmpty());
    ASSERT_TRUE(log.append(line(1), Morning));
    ASSERT_TRUE(log.append(line(2), Morning));
    EXPECT_EQ(log.rotated(), QStringList{path("log-20261121-101500")});
    EXPECT_EQ(contents(empty.fileName()), "time,value\nx,2\n");
}

TEST_F(LogFileTest, BeginsAPipeWithItsTitle)
{
    const QByteArray pipe = QFile::encodeName(path("pipe"));
    ASSERT_EQ(::mkfifo(pipe.constData(), 0600), 0);
    const int reader = ::open(pipe.constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    ASSERT_GE(reader, 0);
    {
        LogFile log(path("pipe"), Title, {});
        ASSERT_TRUE(log.open(Morning));
        ASSERT_TRUE(log.append(line(1), Morning));
        ASSERT_TRUE(log.append(line(2), Morning));
    }
    std::array<char, 100> read = {};
    EXPECT_GT(::read(reader, read.data(), read.size() - 1), 0);
    ::close(reader);
    EXPECT_STREQ(read.data(), "time,value\nx,1\nx,2\n");
}

TEST_F(LogFileTest, SaysThatItCannotBeMovedAside)
{
    // The time in its name would make that too long.
    const QString longest = path(QByteArray(250, 'l').constData());
    const QString aside = longest + QStringLiteral("-20261121-101500");
    const QString problem = QStringLiteral("%1: cannot be renamed to %2").arg(longest, aside);
    LogFile log(longest, Title, {15, false});
    ASSERT_TRUE(log.open(Morning));
    ASSERT_TRUE(log.append(line(1), Morning));
    EXPECT_EQ(log.append(line(2), Morning).errorText(), problem);
    EXPECT_EQ(contents(longest), "time,value\nx,1\n");
    LogFile other(longest, QStringLiteral("other"), {});
    EXPECT_EQ(other.open(Morning).errorText(), problem);
}

TEST_F(LogFileTest, SaysWhyItCannotBeOpened)
{
    LogFile log(QStringLiteral("/proc/none/log.csv"), Title, {});
    EXPECT_TRUE(log.open(Morning).errorText().startsWith(QLatin1String("/proc/none/log.csv: ")));
    LogFile ofFolder(folder.path(), Title, {});
    EXPECT_FALSE(ofFolder.open(Morning));
}

TEST(LogRotation, IsADayOrASize)
{
    EXPECT_TRUE(parseLogRotation(QStringLiteral("day"))->isDaily);
    EXPECT_EQ(parseLogRotation(QStringLiteral("300"))->maxBytes, 300);
    EXPECT_EQ(parseLogRotation(QStringLiteral("2k"))->maxBytes, 2048);
    EXPECT_EQ(parseLogRotation(QStringLiteral("10M"))->maxBytes, 10 << 20);
    EXPECT_EQ(parseLogRotation(QStringLiteral("3G"))->maxBytes, qint64(3) << 30);
    for (const char *text : {"", "0", "0k", "M", "10m", "10MB", "week", "-1", "9999999"})
        EXPECT_FALSE(parseLogRotation(QLatin1String(text))) << text;
}

TEST(ChangeFilter, LetsChangesPass)
{
    ChangeFilter filter(0);
    EXPECT_TRUE(filter.passes(0, QStringLiteral("5"), 5));
    EXPECT_FALSE(filter.passes(0, QStringLiteral("5"), 5));
    EXPECT_TRUE(filter.passes(0, QString(), std::nullopt)) << "a failure is a change";
    EXPECT_FALSE(filter.passes(0, QString(), std::nullopt));
    EXPECT_TRUE(filter.passes(0, QStringLiteral("5"), 5));
    EXPECT_TRUE(filter.passes(3, QStringLiteral("AB"), std::nullopt));
    EXPECT_TRUE(filter.passes(3, QStringLiteral("AC"), std::nullopt));
}

TEST(ChangeFilter, HoldsBackWhatLiesWithinTheDeadband)
{
    ChangeFilter filter(0.5);
    EXPECT_TRUE(filter.passes(0, QStringLiteral("10"), 10));
    EXPECT_FALSE(filter.passes(0, QStringLiteral("10.5"), 10.5));
    EXPECT_FALSE(filter.passes(0, QStringLiteral("9.5"), 9.5));
    EXPECT_TRUE(filter.passes(0, QStringLiteral("10.6"), 10.6)) << "against what was kept, not what was seen";
    EXPECT_FALSE(filter.passes(0, QStringLiteral("10.2"), 10.2));
}

TEST(ValueSummary, KnowsItsLimitsAndItsMean)
{
    ValueSummary summary;
    for (const double number : {3.0, -1.0, 4.0})
        summary.add(number);
    EXPECT_EQ(summary.count(), 3u);
    EXPECT_EQ(summary.min(), -1);
    EXPECT_EQ(summary.max(), 4);
    EXPECT_EQ(summary.mean(), 2);
}
