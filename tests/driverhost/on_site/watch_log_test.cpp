#include "drivers/qt/qt_lines.h"
#include "tests/driverhost/support/pty_program.h"
#include "tests/driverhost/support/slave_test.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <csignal>
#include <sys/resource.h>

// What a watch keeps in files, and how its lines look.

namespace
{

const int Patience = 30000;

QJsonObject objectIn(const QString &line)
{
    return QJsonDocument::fromJson(line.toUtf8()).object();
}

// A watch in a process of its own.
class RunningWatch
{
public:
    explicit RunningWatch(const QStringList &arguments)
    {
        m_process.start(hostProgram(), arguments);
        m_process.waitForStarted();
    }
    ~RunningWatch()
    {
        m_process.kill();
        m_process.waitForFinished();
    }
    RunningWatch(const RunningWatch &) = delete;
    RunningWatch &operator=(const RunningWatch &) = delete;

    // The process that reads, which the first one has started.
    pid_t reader() const
    {
        QFile children(QStringLiteral("/proc/%1/task/%1/children").arg(m_process.processId()));
        return children.open(QIODevice::ReadOnly) ? children.readAll().trimmed().toInt() : 0;
    }
    QString interrupt()
    {
        ::kill(static_cast<pid_t>(m_process.processId()), SIGINT);
        m_process.waitForFinished(Patience);
        return m_errors + QString::fromUtf8(m_process.readAllStandardError());
    }
    // What it has said so far.
    QString errors()
    {
        m_process.waitForReadyRead(10);
        m_errors += QString::fromUtf8(m_process.readAllStandardError());
        return m_errors;
    }
    QProcess &process() { return m_process; }

private:
    QProcess m_process;
    QString m_errors;
};

} // namespace

class WatchOfHolesTest : public SlaveTest
{
protected:
    WatchOfHolesTest() : SlaveTest(withHoles()) {}
};

class WatchLogTest : public SlaveTest
{
protected:
    QString path(const char *name = "log.csv") const { return folder.filePath(name); }
    QString contents(const QString &file) const
    {
        QFile opened(file);
        return opened.open(QIODevice::ReadOnly) ? QString::fromUtf8(opened.readAll()) : QString();
    }
    QStringList lines(const QString &file) const { return contents(file).split('\n', Qt::SkipEmptyParts); }
    HostRun watch(const QString &arguments)
    {
        return host("watch TARGET " + QString(arguments).replace("LOG", path()));
    }
    QStringList watchWords(const QString &arguments) const
    {
        return (QStringLiteral("watch ") + target() + ' ' + arguments).split(' ', Qt::SkipEmptyParts)
               << "--output" << path();
    }

    QTemporaryDir folder;
};

TEST_F(WatchLogTest, KeepsEveryValueInAFile)
{
    setHoldingRegister(0, 7);
    const HostRun run = watch("HR1 HR2:i16 --output LOG --count 3 --interval 0");
    EXPECT_EQ(run.code, 0) << run.err.toStdString();
    EXPECT_EQ(run.out, "") << "the lines are in the file";
    const QStringList kept = lines(path());
    ASSERT_EQ(kept.size(), 1 + 6);
    EXPECT_TRUE(kept.at(0).startsWith("time,station,address,offset,kind,value,latency_ms"));
    EXPECT_TRUE(kept.at(1).contains(",1,HR1,0,word,7,"));
    EXPECT_TRUE(kept.at(6).contains(",1,HR2,1,i16,0,"));
    watch("HR1 HR2:i16 --output LOG --count 1 --interval 0");
    EXPECT_EQ(lines(path()).size(), 1 + 8) << "goes on after what is there";
    watch("HR1 --wide --output LOG --count 1 --interval 0");
    EXPECT_EQ(lines(path()).size(), 1 + 1) << "and not after something else";
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files).size(), 2);
}

TEST_F(WatchLogTest, KeepsJsonWhereTheNameSaysSo)
{
    const QString file = path("log.jsonl");
    EXPECT_EQ(host("watch TARGET HR1 --count 2 --interval 0 --output " + file).code, 0);
    const QStringList kept = lines(file);
    ASSERT_EQ(kept.size(), 2);
    EXPECT_EQ(objectIn(kept.at(1)).value("address"), "HR1");
    const HostRun json = watch("HR1 --count 1 --output LOG --format json");
    EXPECT_EQ(objectIn(lines(path()).value(0)).value("value"), 0);
    EXPECT_TRUE(objectIn(json.out).contains("summary")) << json.out.toStdString();
}

TEST_F(WatchLogTest, WideHasARowForEachRound)
{
    setHoldingRegister(0, 7);
    setHoldingRegister(1, 8);
    const HostRun run = host("watch TARGET HR1:u16x2 HR1:hex DI1 --wide --count 2 --interval 0");
    const QStringList rows = run.out.split('\n', Qt::SkipEmptyParts);
    ASSERT_EQ(rows.size(), 3);
    EXPECT_EQ(rows.at(0), "time,HR1,HR2,HR1:hex,DI1");
    EXPECT_TRUE(rows.at(1).endsWith(",7,8,0x0007,0")) << rows.at(1).toStdString();
    const QString json =
        host("watch TARGET HR1:u16x2 --wide --count 1 --format json").out.section('\n', 0, 0);
    EXPECT_EQ(objectIn(json).value("values").toObject(), (QJsonObject{{"HR1", 7}, {"HR2", 8}}));
    EXPECT_EQ(host("watch TARGET HR1 --wide --format text").code, 2);
}

TEST_F(WatchOfHolesTest, WideLeavesACellEmptyForWhatFailed)
{
    const HostRun run = host("watch TARGET HR1 HR50 --wide --count 1 --retries 0");
    EXPECT_TRUE(run.out.endsWith(",0,\n")) << run.out.toStdString();
    EXPECT_TRUE(run.err.contains("HR50: exception code:0x02")) << run.err.toStdString();
    const HostRun json = host("watch TARGET HR50 --wide --count 1 --retries 0 --format json");
    EXPECT_TRUE(objectIn(json.out.section('\n', 0, 0)).value("values").toObject().value("HR50").isNull());
}

TEST_F(WatchOfHolesTest, SaysWhenNoValueWasMissed)
{
    const char *const said = "no value was missed: what was refused was asked for again in parts\n";
    EXPECT_TRUE(host("watch TARGET HR49 HR51 --count 1").err.endsWith(said));
    EXPECT_FALSE(host("watch TARGET HR49 HR50 --count 1").err.contains(said));
    EXPECT_FALSE(host("watch TARGET HR49 --count 1").err.contains(said));
}

TEST_F(WatchLogTest, OnChangeKeepsNothingElse)
{
    RunningWatch watch(watchWords("HR1 HR2 --interval 0.01 --on-change"));
    ASSERT_TRUE(waitUntil([&] { return lines(path()).size() == 1 + 2; })) << contents(path()).toStdString();
    setHoldingRegister(1, 5);
    ASSERT_TRUE(waitUntil([&] { return lines(path()).size() == 1 + 3; }));
    EXPECT_TRUE(lines(path()).last().contains(",HR2,1,word,5,"));
    watch.interrupt();
    EXPECT_EQ(lines(path()).size(), 1 + 3) << contents(path()).toStdString();
}

TEST_F(WatchLogTest, OnChangeHasADeadband)
{
    setHoldingRegister(0, 100);
    RunningWatch watch(watchWords("HR1 --interval 0.01 --on-change 10 --wide"));
    ASSERT_TRUE(waitUntil([&] { return lines(path()).size() == 1 + 1; }));
    setHoldingRegister(0, 110);
    const quint64 before = slave.counts().requests;
    ASSERT_TRUE(waitUntil([&] { return slave.counts().requests > before + 3; }));
    setHoldingRegister(0, 111);
    ASSERT_TRUE(waitUntil([&] { return lines(path()).size() == 1 + 2; }));
    EXPECT_TRUE(lines(path()).last().endsWith(",111"));
    EXPECT_EQ(host("watch TARGET HR1 --count 1 --on-change -1").code, 2);
    EXPECT_EQ(host("watch TARGET --count 1 --on-change HR1").code, 0) << "what is no number is an address";
}

TEST_F(WatchLogTest, RotatesBySize)
{
    EXPECT_EQ(watch("HR1 --count 40 --interval 0 --output LOG --rotate 1k").code, 0);
    const QStringList files = QDir(folder.path()).entryList({"log*.csv"}, QDir::Files, QDir::Name);
    EXPECT_GE(files.size(), 3);
    int rows = 0;
    for (const QString &file : files) {
        const QStringList kept = lines(folder.filePath(file));
        EXPECT_LE(contents(folder.filePath(file)).size(), 1024);
        EXPECT_TRUE(kept.value(0).startsWith("time,station,")) << file.toStdString();
        rows += sizeOf(kept) - 1;
    }
    EXPECT_EQ(rows, 40);
    EXPECT_TRUE(
        watch("HR1 --count 1 --output LOG --rotate often").err.contains("--rotate \"often\": expected day"));
    EXPECT_EQ(watch("HR1 --count 1 --rotate day").code, 2);
}

TEST_F(WatchLogTest, RotatesByDay)
{
    ASSERT_EQ(watch("HR1 --count 1 --output LOG --rotate day").code, 0);
    QFile file(path());
    ASSERT_TRUE(file.open(QIODevice::Append));
    ASSERT_TRUE(
        file.setFileTime(QDateTime::currentDateTime().addDays(-1), QFileDevice::FileModificationTime));
    file.close();
    ASSERT_EQ(watch("HR1 --count 2 --interval 0 --output LOG --rotate day").code, 0);
    EXPECT_EQ(lines(path()).size(), 1 + 2) << "of today";
    const QStringList files = QDir(folder.path()).entryList({"log-*.csv"}, QDir::Files);
    ASSERT_EQ(files.size(), 1);
    EXPECT_EQ(lines(folder.filePath(files.front())).size(), 1 + 1) << "of yesterday";
}

// No file of the process grows beyond so many bytes, as if the disk were full.
TEST_F(WatchLogTest, SurvivesAFullDisk)
{
    RunningWatch watch(watchWords("HR1 --interval 0.01"));
    ASSERT_TRUE(waitUntil([&] { return lines(path()).size() > 2; }));
    rlimit former = {};
    const rlimit full = {64, RLIM_INFINITY};
    ASSERT_EQ(prlimit(watch.reader(), RLIMIT_FSIZE, &full, &former), 0);
    ASSERT_TRUE(waitUntil([&] { return watch.errors().contains("nothing is kept until that is over"); }))
        << watch.errors().toStdString();
    EXPECT_TRUE(watch.errors().contains(path() + ": "));
    const auto size = contents(path()).size();
    EXPECT_TRUE(contents(path()).endsWith('\n'));
    const quint64 before = slave.counts().requests;
    ASSERT_TRUE(waitUntil([&] { return slave.counts().requests > before + 5; })) << "the watch goes on";
    EXPECT_EQ(contents(path()).size(), size);
    ASSERT_EQ(prlimit(watch.reader(), RLIMIT_FSIZE, &former, nullptr), 0);
    ASSERT_TRUE(waitUntil([&] { return contents(path()).size() > size; }));
    const QString errors = watch.interrupt();
    EXPECT_TRUE(errors.contains(QRegularExpression(": kept again\n(.*\n)*.*: \\d+ lines not kept\n")))
        << errors.toStdString();
    EXPECT_EQ(errors.count("nothing is kept"), 1);
    const QStringList kept = lines(path());
    for (const QString &line : kept)
        EXPECT_EQ(line.count(','), kept.front().count(',')) << line.toStdString();
}

TEST_F(WatchLogTest, SaysWhatItHasLost)
{
    const HostRun run = host("watch TARGET HR1 --count 3 --interval 0 --output /dev/full");
    EXPECT_EQ(run.code, 1);
    EXPECT_TRUE(run.err.startsWith("/dev/full: No space left on device; nothing is kept until that is over\n"
                                   "/dev/full: 3 lines not kept\n"))
        << run.err.toStdString();
    EXPECT_TRUE(run.err.contains("\n3 transactions in ")) << "the watch goes on";
    EXPECT_EQ(slave.counts().requests, 3u);
}

TEST_F(WatchLogTest, OfAKilledProgramHasWholeLinesOnly)
{
    for (int run = 0; run < 20; ++run) {
        RunningWatch watch(watchWords("HR1 --items 50 --interval 0"));
        const auto before = lines(path()).size();
        ASSERT_TRUE(waitUntil([&] { return lines(path()).size() > before + 100; }));
        ::kill(watch.reader(), SIGKILL);
        watch.process().waitForFinished(Patience);
        const QString text = contents(path());
        ASSERT_TRUE(text.endsWith('\n')) << run;
        const QStringList kept = lines(path());
        ASSERT_EQ((kept.size() - 1) % 50, 0) << "whole rounds even";
        ASSERT_EQ(kept.last().count(','), kept.front().count(','));
    }
}

TEST_F(WatchLogTest, ATableStaysOnATerminal)
{
    setHoldingRegister(0, 4711);
    PtyProgram program(watchWords("HR1 --interval 0.02"));
    ASSERT_TRUE(program.waitForScreen([](const Screen &screen) { return screen.text().contains("4711"); }));
    ASSERT_TRUE(waitUntil([&] { return lines(path()).size() > 3; }));
    program.type("\x03");
    EXPECT_EQ(program.waitForEnd(), 0);
}

TEST_F(WatchLogTest, ATableSaysThatNothingIsKept)
{
    PtyProgram program({"watch", target(), "HR1", "--interval", "0.02", "--output", "/dev/full"});
    EXPECT_TRUE(program.waitForScreen([](const Screen &screen) {
        return screen.text().contains(
            QRegularExpression("/dev/full: No space left on device; \\d+ lines not kept"));
    })) << program.screen().text().toStdString();
    program.type("\x03");
    EXPECT_EQ(program.waitForEnd(), 1);
}

TEST_F(WatchLogTest, EndsAtOnceWhenItCannotKeepAnything)
{
    const HostRun run = host("watch TARGET HR1 --count 1 --output /proc/none/log.csv");
    EXPECT_EQ(run.code, 1);
    EXPECT_TRUE(run.err.contains("/proc/none/log.csv: ")) << run.err.toStdString();
    EXPECT_EQ(slave.counts().requests, 0u);
    EXPECT_TRUE(watch("HR1 --count 1 --output LOG --format text").err.contains("--output keeps csv or json"));
    EXPECT_TRUE(host("tags TARGET --project x --on-change").err.contains("--on-change goes with --watch"));
}

TEST_F(WatchLogTest, TheSummaryHasSmallestLargestAndMean)
{
    setHoldingRegister(0, 10);
    RunningWatch watch({"watch", target(), "HR1", "HR9:str2", "--interval", "0.01", "--format", "json"});
    ASSERT_TRUE(waitUntil([&] { return slave.counts().requests > 4; }));
    setHoldingRegister(0, 30);
    const quint64 before = slave.counts().requests;
    ASSERT_TRUE(waitUntil([&] { return slave.counts().requests > before + 4; }));
    const QString errors = watch.interrupt();
    EXPECT_TRUE(
        errors.contains(QRegularExpression("value +read +min +max +mean\nHR1 +\\d+ +10 +30 +[12]\\d")))
        << errors.toStdString();
    const QString last = QString::fromUtf8(watch.process().readAllStandardOutput()).section('\n', -2, -2);
    const QJsonArray values = objectIn(last).value("summary").toObject().value("values").toArray();
    ASSERT_EQ(values.size(), 2);
    EXPECT_EQ(values.at(0).toObject().value("min"), 10);
    EXPECT_EQ(values.at(0).toObject().value("max"), 30);
    EXPECT_FALSE(values.at(1).toObject().contains("min"));
}
