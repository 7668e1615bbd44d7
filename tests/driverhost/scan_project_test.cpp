#include "tests/driverhost/support/slave_test.h"

#include "desk/project/project_list.h"
#include "desk/project/project_why.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <csignal>

namespace
{

QString problemWith(const char *list)
{
    return parseProjectList(QLatin1String(list)).errorText();
}

} // namespace

class ScanProjectTest : public SlaveTest
{
protected:
    ScanProjectTest() : SlaveTest(withHoles()) {}

    QString file(const char *name) const { return folder.filePath(QLatin1String(name)); }
    void write(const QString &path, const QString &text)
    {
        QFile target(path);
        ASSERT_TRUE(target.open(QIODevice::WriteOnly));
        target.write(text.toUtf8());
    }
    // A project of this slave with the tags, one a line.
    QString makeProject(const QString &tags)
    {
        const QString list =
            QStringLiteral("link 1 ETHERNET\nnode 1 1 default 127.0.0.1:%1\n%2").arg(slave.port()).arg(tags);
        write(file("list"), list);
        EXPECT_EQ(host(QStringLiteral("project --make %1 %2").arg(file("list"), file("project"))).code, 0);
        return file("project");
    }

    QTemporaryDir folder;
};

TEST_F(ScanProjectTest, ScanFindsStations)
{
    const HostRun run =
        host(QStringLiteral("scan TARGET stations --from 1 --to 6 --timeout 50 --delay 0 --after-silence 0"));
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(run.out, QStringLiteral("1  answers\n5  answers\n"));
    // An exception is an answer as well.
    EXPECT_EQ(host(QStringLiteral("scan TARGET stations --to 1 --probe HR11 --delay 0")).out.left(32),
              QStringLiteral("1  answers with exception code:0"));
}

TEST_F(ScanProjectTest, ScanFindsTheRangesOfAnArea)
{
    const HostRun run = host(QStringLiteral("scan TARGET HR --to 200 --delay 0"));
    EXPECT_EQ(run.code, 0) << run.err.toStdString();
    EXPECT_EQ(run.out, QStringLiteral("HR1..10\nHR21..49\nHR51..200\n"));
    EXPECT_EQ(host(QStringLiteral("scan TARGET DO --to 9 --delay 0")).out,
              QStringLiteral("DO1..2\nDO4..9\n"));
    EXPECT_EQ(host(QStringLiteral("scan TARGET IR --from 65530 --to 65536 --delay 0")).out,
              QStringLiteral("IR65530..65536\n"));
    EXPECT_EQ(host(QStringLiteral("scan TARGET HR --from 11 --to 20 --delay 0")).out, QString());
    EXPECT_EQ(host(QStringLiteral("scan TARGET XX")).code, 2);
    EXPECT_EQ(host(QStringLiteral("scan TARGET HR --from 9 --to 8")).code, 2);
}

TEST_F(ScanProjectTest, ScanStoppedShowsWhatItFound)
{
    QProcess process;
    process.start(hostProgram(),
                  {QStringLiteral("scan"), target(), QStringLiteral("HR"), QStringLiteral("--to"),
                   QStringLiteral("65536"), QStringLiteral("--delay"), QStringLiteral("20")});
    ASSERT_TRUE(waitUntil([&] { return slave.counts().requests > 100; }));
    ASSERT_EQ(kill(static_cast<pid_t>(process.processId()), SIGINT), 0);
    ASSERT_TRUE(process.waitForFinished());
    EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(process.exitCode(), 130);
    EXPECT_TRUE(process.readAllStandardOutput().startsWith("HR1..10\nHR21..49\nHR51.."));
}

TEST_F(ScanProjectTest, ScanEndsWhenNobodyIsThere)
{
    slave.stop();
    const HostRun run = host(QStringLiteral("scan TARGET stations"));
    EXPECT_EQ(run.code, 3);
    EXPECT_EQ(run.err.count(QLatin1String("cannot connect")), 1);
}

TEST_F(ScanProjectTest, ProjectMakesAndPrintsTheSame)
{
    const QString list =
        QStringLiteral("link 1 ETHERNET\nlink 2 COM3\nnode 1 1 default 10.0.0.5:502\nnode 1 7\n"
                       "node 2 3 default\ntag 1 HR1\ntag 2 2-DO5\n");
    write(file("list"), list);
    EXPECT_EQ(host(QStringLiteral("project --make %1 %2").arg(file("list"), file("db"))).code, 0);
    EXPECT_EQ(host(QStringLiteral("project ") + file("db")).out, list);
    // A spreadsheet saves the same with commas.
    write(file("list.csv"),
          QStringLiteral("# plant\r\n") + QString(list).replace(QLatin1Char(' '), QLatin1Char(',')));
    EXPECT_EQ(host(QStringLiteral("project --make %1 %2").arg(file("list.csv"), file("db2"))).code, 0);
    EXPECT_EQ(host(QStringLiteral("project ") + file("db2")).out, list);
}

TEST_F(ScanProjectTest, ProjectRefusesABadListAndLeavesTheOldFile)
{
    const QString project = makeProject(QStringLiteral("tag 1 HR1\n"));
    write(file("bad"), QStringLiteral("link 1 ETHERNET\nnode 1 1 default\n\ntag 1 HR0\n"));
    const HostRun run = host(QStringLiteral("project --make %1 %2").arg(file("bad"), project));
    EXPECT_EQ(run.code, 2);
    EXPECT_TRUE(run.err.contains(QLatin1String("line 4: address \"HR0\""))) << run.err.toStdString();
    EXPECT_TRUE(host(QStringLiteral("project ") + project).out.contains(QLatin1String("tag 1 HR1")));
    EXPECT_EQ(host(QStringLiteral("project --make %1 %2").arg(file("bad"), file("new"))).code, 2);
    EXPECT_FALSE(QFile::exists(file("new")));
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files).filter(QStringLiteral("new")).size(), 0);
}

TEST(ProjectList, SaysWhatIsWrongAndWhere)
{
    EXPECT_EQ(problemWith("link 1 ETHERNET\nnode 1 1 default\n"), QString());
    EXPECT_TRUE(problemWith("").contains(QLatin1String("no link")));
    EXPECT_TRUE(problemWith("link 1 ETHERNET\n").contains(QLatin1String("no default node")));
    EXPECT_TRUE(problemWith("lnk 1 ETHERNET\n").startsWith(QLatin1String("line 1: \"lnk\"")));
    EXPECT_TRUE(problemWith("link 1 COM\n").startsWith(QLatin1String("line 1: device")));
    EXPECT_TRUE(problemWith("link x COM1\n").startsWith(QLatin1String("line 1: link")));
    EXPECT_TRUE(
        problemWith("link 1 COM1\nlink 1 COM2\n").contains(QLatin1String("line 2: there is a link 1")));
    EXPECT_TRUE(problemWith("link 1 COM1\nlink 2 com1\n").contains(QLatin1String("line 2: link 1 is on")));
    EXPECT_TRUE(problemWith("node 1 1 default\n").contains(QLatin1String("no link 1 above")));
    EXPECT_TRUE(problemWith("link 1 COM1\nnode 1 256 default\n").contains(QLatin1String("0 to 255")));
    EXPECT_TRUE(problemWith("link 1 COM1\nnode 1 1 defualt\n").contains(QLatin1String("line 2")));
    EXPECT_TRUE(
        problemWith("link 1 COM1\nnode 1 1 default\nnode 1 2 default\n").contains(QLatin1String("line 3")));
    EXPECT_TRUE(
        problemWith("link 1 COM1\nnode 1 1 default\ntag 2 HR1\n").contains(QLatin1String("no link 2")));
    EXPECT_TRUE(
        problemWith("link 1 COM1\nnode 1 1 default\ntag 1\n").contains(QLatin1String("tag LINK ADDRESS")));
}

TEST_F(ScanProjectTest, WhyAgreesWithTheDriver)
{
    makeProject(QStringLiteral("tag 1 HR1\n"));
    write(file("text"), QStringLiteral("no database at all"));
    write(file("empty"), QString());
    struct Case {
        const char *file;
        const char *device;
        const char *driverText; // of the first attempt; empty when it loads
    };
    for (const Case &c :
         {Case{"project", "ETHERNET", ""}, Case{"project", "COM1", "failed to get default station id"},
          Case{"text", "ETHERNET", "can not open database"},
          Case{"empty", "ETHERNET", "failed to get default station id"}}) {
        const HostRun why =
            host(QStringLiteral("project --why %1 %2").arg(QLatin1String(c.device), file(c.file)));
        const HostRun read = host(QStringLiteral("read TARGET HR1 --project %1 --device %2")
                                      .arg(file(c.file), QLatin1String(c.device)));
        const bool isLoaded = c.driverText[0] == '\0';
        EXPECT_EQ(why.code, isLoaded ? 0 : 6) << c.file;
        EXPECT_EQ(read.code, why.code) << c.file;
        EXPECT_TRUE(why.out.contains(QLatin1String(c.driverText))) << why.out.toStdString();
        EXPECT_TRUE(read.err.contains(QLatin1String(c.driverText))) << read.err.toStdString();
    }
}

TEST_F(ScanProjectTest, WhyFollowsTheFoldersOfAProgram)
{
    makeProject(QStringLiteral("tag 1 HR1\n"));
    const QDir program(folder.path());
    EXPECT_FALSE(explainLoad(folder.path(), QStringLiteral("ETHERNET")).isLoaded());
    ASSERT_TRUE(program.mkpath(QStringLiteral("compile/database")));
    ASSERT_TRUE(QFile::copy(file("project"), file("compile/database/database")));
    const LoadReport report = explainLoad(folder.path(), QStringLiteral("ETHERNET"));
    EXPECT_TRUE(report.isLoaded());
    const QString text = report.steps.join(QLatin1Char('\n'));
    EXPECT_TRUE(text.contains(QLatin1String("HMI port 2000")));
    EXPECT_TRUE(text.contains(program.absoluteFilePath(QStringLiteral("compile/database/database"))));
    EXPECT_TRUE(text.contains(QLatin1String("table LINK: 1 row, 1 of them with HMIPORT = 2000")))
        << text.toStdString();
}
