#include "apps/driverdesk/workspace/recent_files.h"
#include "apps/driverdesk/workspace/workspace.h"
#include "tests/peers/text_printing.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

namespace
{

Workspace exampleWorkspace()
{
    Workspace workspace;
    workspace.opening = QStringList{"rtutcp://h:1/2", "--points", "/a b/c.csv"};
    workspace.curves = {{QStringLiteral("pump"), true, false}, {QStringLiteral("HR1"), false, true}};
    workspace.trendSpan = 300000;
    workspace.layout = QByteArray("\x00\xff\x01", 3);
    workspace.columns = "columns";
    workspace.slave.isRunning = true;
    workspace.slave.port = 1502;
    workspace.slave.faults = QStringList{"silence"};
    workspace.slave.oneOf = 7;
    workspace.slave.values = {{2, Area::Coils, 4, 1, {Movement::Counter, 0, 1, 500}}};
    return workspace;
}

} // namespace

TEST(Workspace, ComesBackAsItWas)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("w.driverdesk"));
    ASSERT_TRUE(saveWorkspace(path, exampleWorkspace()));
    const Result<Workspace> read = readWorkspace(path);
    ASSERT_TRUE(read) << read.errorText().toStdString();
    EXPECT_EQ(bytesOf(*read), bytesOf(exampleWorkspace()));
    EXPECT_EQ(read->opening, exampleWorkspace().opening);
    EXPECT_EQ(read->layout, exampleWorkspace().layout);
    ASSERT_EQ(read->curves.size(), 2U);
    EXPECT_TRUE(read->curves[0].isRight);
    EXPECT_FALSE(read->curves[0].isShown);
    ASSERT_EQ(read->slave.values.size(), 1U);
    EXPECT_EQ(read->slave.values[0].offset, 4);
    EXPECT_EQ(read->slave.values[0].movement.kind, Movement::Counter);
}

TEST(Workspace, SaysLineAndReasonOfWhatIsWrong)
{
    struct Case {
        const char *text;
        const char *line;
        const char *reason;
    };
    const Case cases[] = {
        {"{\n\"driverdesk\": 1,\n\"open\": [\n", "4:", "unterminated"},
        {"{\n\"driverdesk\": 1,,\n}", "2:", "unterminated object"},
        {"{}", "1:", "expected a workspace"},
        {"{\"driverdesk\": 99}", "1:", "expected a workspace"},
        {"{\"driverdesk\": 1,\n\n\"slave\": {\"values\": [{\"address\": \"XX1\"}]}}", "3:", "slave: "},
        {"{\"driverdesk\": 1,\n\"slave\": {\"values\": [{\"address\": \"HR1\", \"movement\": \"jump\"}]}}",
         "2:", "expected a movement"},
    };
    for (const Case &known : cases) {
        const Result<Workspace> workspace = parseWorkspace(known.text);
        ASSERT_FALSE(workspace) << known.text;
        EXPECT_TRUE(workspace.errorText().startsWith(QLatin1String(known.line)))
            << workspace.errorText().toStdString();
        EXPECT_TRUE(workspace.errorText().contains(QLatin1String(known.reason)))
            << workspace.errorText().toStdString();
    }
}

TEST(Workspace, NamesTheFile)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("w"));
    EXPECT_TRUE(readWorkspace(path).errorText().contains(path));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("x");
    file.close();
    EXPECT_TRUE(readWorkspace(path).errorText().startsWith(path + QStringLiteral(":1: ")));
    EXPECT_FALSE(saveWorkspace(folder.filePath(QStringLiteral("no/folder")), Workspace()));
}

TEST(RecentFiles, HasTheNewestFirstAndEachOnce)
{
    RecentFiles recent;
    for (int i = 0; i < RecentFiles::MaxFiles + 3; ++i)
        recent.add(QStringLiteral("/f%1").arg(i));
    recent.add(QStringLiteral("/f5"));
    EXPECT_EQ(recent.paths().size(), RecentFiles::MaxFiles);
    EXPECT_EQ(recent.paths().first(), QStringLiteral("/f5"));
    EXPECT_EQ(recent.paths().count(QStringLiteral("/f5")), 1);
    recent.remove(QStringLiteral("/f5"));
    EXPECT_FALSE(recent.paths().contains(QStringLiteral("/f5")));
}
