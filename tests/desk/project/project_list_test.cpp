#include "desk/project/project_list.h"

#include "desk/project/needed_tags.h"
#include "desk/project/project_file.h"
#include "tests/peers/text_printing.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QTemporaryDir>

namespace
{

const char Whole[] = "# of the plant\n"
                     "link 1 ETHERNET\n"
                     "node,1,4\n"
                     "NODE 1 5 default 10.0.0.5:502\n"
                     "\n"
                     "tag;1;\"HR100\"\n"
                     "tag 1 HR5..6 # two\n"
                     "tag 1 HR9:f32\n"
                     "tag 1 DO3:bit\n";

QString problemOf(const char *text)
{
    return parseProjectList(QLatin1String(text)).errorText();
}

} // namespace

TEST(ProjectList, IsReadAsPeopleAndSpreadsheetsWriteIt)
{
    const Result<Project> project = parseProjectList(QLatin1String(Whole));
    ASSERT_TRUE(project) << project.errorText().toStdString();
    ASSERT_EQ(project->nodes.size(), 2);
    EXPECT_FALSE(project->nodes.at(0).isDefault);
    EXPECT_EQ(project->nodes.at(1).host, QStringLiteral("10.0.0.5"));
    EXPECT_EQ(tagsOfLink(*project, 1), (QStringList{"HR100", "HR5", "HR6", "HR9:f32", "DO3"}));
    const int hmiPort = project->links.front().hmiPort;
    const std::optional<Project::Node> node = defaultNodeAt(*project, hmiPort);
    ASSERT_TRUE(node);
    EXPECT_EQ(node->station, 5);
    EXPECT_FALSE(defaultNodeAt(*project, hmiPort + 1));
}

TEST(ProjectList, SaysInWhichLineWhatIsWrong)
{
    const QString beyond = QStringLiteral("link \"x\": expected a whole number from 0 to 2147483647");
    const struct {
        const char *text;
        QString problem;
    } cases[] = {
        {"", QStringLiteral("the list has no link")},
        {"links 1 ETHERNET", QStringLiteral("line 1: \"links\": expected link, node or tag")},
        {"\nlink 1", QStringLiteral("line 2: expected link ID DEVICE, such as link 1 ETHERNET")},
        {"link 1 ETHERNET 5", QStringLiteral("line 1: expected link ID DEVICE, such as link 1 ETHERNET")},
        {"link x ETHERNET", QStringLiteral("line 1: ") + beyond},
        {"link 1 ETHERNET\nlink 1 COM1", QStringLiteral("line 2: there is a link 1 already")},
        {"link 1 ETHERNET\nlink 2 ETHERNET",
         QStringLiteral("line 2: link 1 is on ETHERNET already; the driver would take only one of them")},
        {"link 1 ETHERNET\nnode 1 5",
         QStringLiteral("link 1 has no default node; the driver would find no station")},
        {"link 1 ETHERNET\nlink 2 COM1\nnode 2 5 default",
         QStringLiteral("link 1 has no default node; the driver would find no station")},
        {"node 1",
         QStringLiteral("line 1: expected node LINK STATION [default] [HOST:PORT], such as node 1 5 default "
                        "10.0.0.5:502")},
        {"node 1 5 default a:1 b:1 c:1",
         QStringLiteral("line 1: expected node LINK STATION [default] [HOST:PORT], such as node 1 5 default "
                        "10.0.0.5:502")},
        {"node 1 5 default", QStringLiteral("line 1: there is no link 1 above")},
        {"link 1 ETHERNET\nnode 1 5 default plc",
         QStringLiteral("line 2: \"plc\": expected \"default\" or HOST:PORT")},
        {"link 1 ETHERNET\nnode 1 5 default\nnode 1 6 default",
         QStringLiteral("line 3: link 1 has a default node already")},
        {"tag 1", QStringLiteral("line 1: expected tag LINK ADDRESS, such as tag 1 HR100")},
        {"tag x YY1", QStringLiteral("line 1: ") + beyond},
        {"link 1 ETHERNET\ntag 1 HR5:u16x2",
         QStringLiteral("line 2: tag \"HR5:u16x2\": expected one value, and of HR a bit")},
        {"link 1 ETHERNET\ntag 1 DI5:u8",
         QStringLiteral("line 2: tag \"DI5:u8\": expected one value, and of DI a bit")},
    };
    for (const auto &one : cases)
        EXPECT_EQ(problemOf(one.text), one.problem) << one.text;
}

TEST(ProjectFile, ComesBackAsItsList)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("database"));
    const Project project = *parseProjectList(QLatin1String(Whole));
    ASSERT_TRUE(writeProjectFile(path, project));
    const Result<Project> again = readProjectFile(path);
    ASSERT_TRUE(again) << again.errorText().toStdString();
    EXPECT_EQ(projectListOf(*again), projectListOf(project));
}

TEST(ProjectFile, SaysWhyItCannotBeWrittenAndLeavesNothingBehind)
{
    const QTemporaryDir folder;
    EXPECT_EQ(writeProjectFile(folder.filePath(QStringLiteral("none/database")), Project()).errorText(),
              QStringLiteral("cannot write the project database %1/none/database: it cannot be opened")
                  .arg(folder.path()));
    const QString taken = folder.filePath(QStringLiteral("folder"));
    ASSERT_TRUE(QDir().mkdir(taken));
    EXPECT_EQ(writeProjectFile(taken, Project()).errorText(),
              QStringLiteral("cannot write the project database %1: Is a directory").arg(taken));
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
              QStringList{QStringLiteral("folder")});
}

TEST(NeededTags, OfATextWithoutANumberAreThoseAtTheEnd)
{
    Items raw;
    raw.rawText = QStringLiteral("somewhere");
    raw.kind = ByteItem;
    EXPECT_EQ(neededTags(raw, 1), (QStringList{QStringLiteral("1-DO65536"), QStringLiteral("1-DI65536")}));
}
