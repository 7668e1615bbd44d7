#include "tests/driverhost/support/host_program.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

namespace
{

class PointsCommandTest : public testing::Test
{
protected:
    QString write(const char *name, const QByteArray &text) const
    {
        QFile file(path(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
        return file.fileName();
    }
    QString path(const char *name) const { return folder.filePath(QLatin1String(name)); }
    static HostRun points(const QStringList &arguments)
    {
        return runHost(QStringList{QStringLiteral("points")} + arguments);
    }
    HostRun check(const QByteArray &text) const
    {
        return points({QStringLiteral("--check"), write("points.csv", text)});
    }

    QTemporaryDir folder;
};

} // namespace

TEST_F(PointsCommandTest, FindsNothingWrongWithAGoodTable)
{
    const HostRun run = check("name;address;type\nspeed;HR1;f32\nstatus;HR3;hex\nready;HR3.0;\n");
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(run.out, QString());
    EXPECT_TRUE(run.err.endsWith(QLatin1String("points.csv: 3 points, 0 overlaps\n")))
        << run.err.toStdString();
}

TEST_F(PointsCommandTest, NamesEveryLineThatIsWrong)
{
    const HostRun run = check("name,address\na,HR0\nb,HR2\nb,ZZ1\n");
    EXPECT_EQ(run.code, 2);
    EXPECT_EQ(run.out, QString());
    EXPECT_TRUE(
        run.err.contains(QLatin1String("points.csv:2: column 2 (address): address \"HR0\": the number")));
    EXPECT_TRUE(
        run.err.contains(QLatin1String("points.csv:4: column 2 (address): address \"ZZ1\": unknown area")));
    EXPECT_TRUE(run.err.contains(QLatin1String("points.csv:4: column 1 (name): \"b\": expected a new name")));
}

TEST_F(PointsCommandTest, NamesOverlaps)
{
    const HostRun run = check("name,address,type\na,HR1,f32\nb,HR2,u16\n");
    EXPECT_EQ(run.code, 10);
    EXPECT_EQ(run.out,
              path("points.csv") + QStringLiteral(":3: \"b\" (HR2) overlaps \"a\" (HR1) in line 2\n"));
}

TEST_F(PointsCommandTest, MakesATableOfAProject)
{
    const QString list =
        write("list.txt", "link 1 ETHERNET\nnode 1 1 default 127.0.0.1:502\nlink 2 COM1\nnode 2 1 default\n"
                          "tag 1 HR100\ntag 1 DO5\ntag 2 HR7\n");
    ASSERT_EQ(runHost({QStringLiteral("project"), QStringLiteral("--make"), list, path("p.db")}).code, 0);
    const HostRun run = points({QStringLiteral("--from-project"), path("p.db")});
    EXPECT_EQ(run.code, 0) << run.err.toStdString();
    EXPECT_TRUE(run.out.startsWith(QLatin1String("name,address,type,order,scale,")));
    EXPECT_TRUE(run.out.contains(QLatin1String("\nHR100,HR100,u16,")));
    EXPECT_TRUE(run.out.contains(QLatin1String("\nDO5,DO5,bit,")));
    EXPECT_FALSE(run.out.contains(QLatin1String("HR7")));
    EXPECT_TRUE(points({QStringLiteral("--from-project"), path("p.db"), QStringLiteral("--device"),
                        QStringLiteral("COM1")})
                    .out.contains(QLatin1String("\nHR7,HR7,u16,")));
    EXPECT_EQ(points({QStringLiteral("--from-project"), path("p.db"), QStringLiteral("--device"),
                      QStringLiteral("COM2")})
                  .code,
              6);
    EXPECT_EQ(points({QStringLiteral("--from-project"), list}).code, 6);
    EXPECT_EQ(check(run.out.toUtf8()).code, 0) << "and the table is in order";
}

TEST_F(PointsCommandTest, MakesATableOfWhatScanFound)
{
    const QString found = write("found.txt", "HR1..3\nDO7\n");
    const HostRun run = points({QStringLiteral("--from-scan"), found});
    EXPECT_EQ(run.code, 0) << run.err.toStdString();
    EXPECT_EQ(run.out.count(QLatin1Char('\n')), 1 + 4);
    QProcess piped;
    piped.setStandardInputFile(found);
    piped.start(hostProgram(),
                {QStringLiteral("points"), QStringLiteral("--from-scan"), QStringLiteral("-")});
    ASSERT_TRUE(piped.waitForFinished());
    EXPECT_EQ(QString::fromUtf8(piped.readAllStandardOutput()), run.out);
    EXPECT_EQ(check(run.out.toUtf8()).code, 0) << "and the table is in order";

    const HostRun bad = points({QStringLiteral("--from-scan"), write("bad.txt", "HR1\nfoo\n")});
    EXPECT_EQ(bad.code, 2);
    EXPECT_TRUE(bad.err.contains(QLatin1String("bad.txt:2: \"foo\": expected addresses")))
        << bad.err.toStdString();
}

TEST_F(PointsCommandTest, WantsOneThingToDo)
{
    EXPECT_EQ(points({}).code, 2);
    EXPECT_EQ(points({QStringLiteral("--check"), path("a"), QStringLiteral("--from-scan"), path("b")}).code,
              2);
    EXPECT_EQ(points({QStringLiteral("--check"), path("a"), QStringLiteral("b")}).code, 2);
    EXPECT_EQ(points({QStringLiteral("--check"), path("none")}).code, 2);
    EXPECT_TRUE(
        points({QStringLiteral("--check"), path("a"), QStringLiteral("--device"), QStringLiteral("COM1")})
            .err.contains(QLatin1String("--device goes with --from-project")));
}
