#include "apps/driverdesk/opening/window_options.h"
#include "desk/project/project_file.h"
#include "drivers/tools/project_lookup.h"
#include "tests/peers/text_printing.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

namespace
{

Result<WindowOptions> parsed(const QString &arguments)
{
    return windowOptionsOf(arguments.split(QLatin1Char(' '), Qt::SkipEmptyParts));
}

QString write(const QTemporaryDir &folder, const QString &name, const QByteArray &bytes)
{
    QFile file(folder.filePath(name));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
    return file.fileName();
}

} // namespace

TEST(WindowOptions, OpenAddresses)
{
    const Result<WindowOptions> options = parsed(
        QStringLiteral("rtutcp://10.0.0.5:1502/7 HR100..102 2-DI17 HR20:f32 --interval 0.25 --retries 0"));
    ASSERT_TRUE(options) << options.errorText().toStdString();
    const std::vector<PointRow> rows = pointRowsOf(options->ground);
    ASSERT_EQ(rows.size(), 5U);
    EXPECT_EQ(labelOf(rows[0]), QStringLiteral("HR100"));
    EXPECT_EQ(labelOf(rows[2]), QStringLiteral("HR102"));
    EXPECT_EQ(rows[0].station, 7);
    EXPECT_EQ(rows[3].station, 2);
    EXPECT_EQ(options->ground.interval, 250);
    EXPECT_EQ(options->ground.link.channel.retries, 0);
    EXPECT_EQ(options->ground.link.channel.host, QStringLiteral("10.0.0.5"));
}

TEST(WindowOptions, OpenATableOfPoints)
{
    const QTemporaryDir folder;
    const QString path = write(folder, QStringLiteral("p.csv"), "name,address\npump,HR1\nvalve,DO2\n");
    const Result<WindowOptions> all = parsed(QStringLiteral("--points ") + path);
    ASSERT_TRUE(all) << all.errorText().toStdString();
    EXPECT_EQ(pointRowsOf(all->ground).size(), 2U);
    const Result<WindowOptions> one = parsed(QStringLiteral("--points %1 valve").arg(path));
    ASSERT_TRUE(one);
    ASSERT_EQ(pointRowsOf(one->ground).size(), 1U);
    EXPECT_EQ(labelOf(pointRowsOf(one->ground)[0]), QStringLiteral("valve"));
}

TEST(WindowOptions, OpenAProjectWhereItSays)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("p.db"));
    Project project;
    project.links = {{1, DevStrToHmiPort(QStringLiteral("ETHERNET"))}};
    project.nodes = {{1, 9, true, QStringLiteral("10.0.0.9"), 1503}};
    project.tags = {{1, QStringLiteral("HR1")}, {1, QStringLiteral("3-DO5")}};
    ASSERT_TRUE(writeProjectFile(path, project));
    const Result<WindowOptions> options = parsed(QStringLiteral("--project ") + path);
    ASSERT_TRUE(options) << options.errorText().toStdString();
    EXPECT_EQ(options->ground.link.channel.port, 1503);
    EXPECT_EQ(options->ground.link.channel.station, 9);
    EXPECT_EQ(pointRowsOf(options->ground).size(), 2U);
    const Result<WindowOptions> moved = parsed(QStringLiteral("rtutcp://h:1/2 --project ") + path);
    ASSERT_TRUE(moved);
    EXPECT_EQ(moved->ground.link.channel.port, 1);
    EXPECT_EQ(moved->ground.link.channel.station, 2);
}

TEST(WindowOptions, RememberHowTheyCanBeOpenedAgain)
{
    const QTemporaryDir folder;
    write(folder, QStringLiteral("p.csv"), "name,address\npump,HR1\n");
    const QString before = QDir::currentPath();
    QDir::setCurrent(folder.path());
    const Result<WindowOptions> options = parsed(QStringLiteral("--dark --points p.csv --interval=2 pump"));
    QDir::setCurrent(before);
    ASSERT_TRUE(options) << options.errorText().toStdString();
    EXPECT_TRUE(options->isDark);
    EXPECT_EQ(options->opening, (QStringList{"--points", QDir(folder.path()).canonicalPath() + "/p.csv",
                                             "--interval=2", "pump"}));
    EXPECT_TRUE(windowOptionsOf(options->opening));
}

TEST(WindowOptions, MayOpenNothing)
{
    for (const char *arguments :
         {"", "--demo", "--demo --seed 7", "--workspace w.driverdesk", "rtutcp://h:1/1"}) {
        const Result<WindowOptions> options = parsed(QLatin1String(arguments));
        ASSERT_TRUE(options) << arguments << ": " << options.errorText().toStdString();
        EXPECT_TRUE(options->ground.readings.empty()) << arguments;
    }
    EXPECT_EQ(parsed(QStringLiteral("--demo --seed 7"))->seed, 7);
    EXPECT_EQ(parsed(QStringLiteral("--workspace w"))->workspace, QStringLiteral("w"));
}

TEST(WindowOptions, SayWhatIsWrong)
{
    const QTemporaryDir folder;
    const QString bad = write(folder, QStringLiteral("bad.csv"), "name,address\npump,HR1\nx,XY1\n");
    const std::pair<QString, QString> cases[] = {
        {QStringLiteral("--nonsense"), QStringLiteral("nonsense")},
        {QStringLiteral("XY1"), QStringLiteral("XY1")},
        {QStringLiteral("HR1 --port 99999"), QStringLiteral("--port")},
        {QStringLiteral("HR1 --interval x"), QStringLiteral("--interval")},
        {QStringLiteral("--demo HR1"), QStringLiteral("--demo brings its own points")},
        {QStringLiteral("HR1 --seed 3"), QStringLiteral("--seed goes with --demo")},
        {QStringLiteral("--points ") + bad, QStringLiteral("bad.csv:3: ")},
        {QStringLiteral("--project /nowhere.db"), QStringLiteral("/nowhere.db")},
        {QStringLiteral("@nobody HR1"), QStringLiteral("nobody")},
    };
    for (const auto &[arguments, text] : cases) {
        const Result<WindowOptions> options = parsed(arguments);
        ASSERT_FALSE(options) << arguments.toStdString();
        EXPECT_TRUE(options.errorText().contains(text)) << options.errorText().toStdString();
    }
}

TEST(WindowOptions, HaveAHelp)
{
    for (const char *text :
         {"Usage: driverdesk ", "--demo", "--points", "--timeout", "--project", "--workspace"})
        EXPECT_TRUE(windowHelp().contains(QLatin1String(text))) << text;
}
