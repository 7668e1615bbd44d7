#include "desk/project/sqlite_file.h"
#include "tests/desk/support/project_why_test.h"
#include "tests/peers/text_printing.h"
#include "tests/support/sleep_recorder.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>

#include <set>
#include <unistd.h>

// Every state that the file of a project database may be in.

using ProjectWhyFileTest = ProjectWhyTest;

namespace
{

using Texts = std::set<QString>;

} // namespace

TEST_F(ProjectWhyFileTest, AProjectThatLoads)
{
    const LoadReport report = comparedReport("whole");
    EXPECT_TRUE(report.isLoaded());
    EXPECT_EQ(report.steps.last(), QStringLiteral("the driver loads this project"));
}

TEST_F(ProjectWhyFileTest, NoFile)
{
    removeFiles();
    const LoadReport report = comparedReport("missing");
    EXPECT_EQ(report.firstText, QStringLiteral("can not open database"));
    EXPECT_EQ(report.laterText, QStringLiteral("failed to get default station id"));
    ASSERT_TRUE(QFile::link(QStringLiteral("nowhere"), path()));
    EXPECT_FALSE(comparedReport("dangling link").isLoaded());
    removeFiles();
    ASSERT_TRUE(QDir().mkdir(path()));
    EXPECT_EQ(comparedReport("folder").firstText, QStringLiteral("can not open database"));
    removeFiles();
    ASSERT_TRUE(QFile::link(QStringLiteral("/dev/null"), path()));
    EXPECT_EQ(comparedReport("device").firstText, QStringLiteral("can not open database"));
}

TEST_F(ProjectWhyFileTest, NoFolders)
{
    removeFiles();
    const QDir program(QCoreApplication::applicationDirPath());
    for (const char *const folder : {"compile/database", "compile"}) {
        ASSERT_TRUE(program.rmdir(QLatin1String(folder)));
        EXPECT_FALSE(comparedReport(folder).isLoaded());
        makeProject();
        EXPECT_TRUE(comparedReport(folder).isLoaded());
        ASSERT_TRUE(QFile::remove(path()));
    }
}

TEST_F(ProjectWhyFileTest, AFileThatIsNoDatabase)
{
    const QByteArray magic("SQLite format 3", 16);
    const struct {
        const char *name;
        QByteArray content;
    } files[] = {{"empty", {}},
                 {"one byte", "S"},
                 {"text", "no database at all"},
                 {"half a magic number", magic.left(8)},
                 {"magic number without its zero", magic.left(15) + "x"},
                 {"magic number alone", magic},
                 {"magic number and zeros", magic + QByteArray(5000, '\0')},
                 {"magic number and text", magic + QByteArray(5000, 'x')}};
    for (const auto &file : files) {
        setContent(file.content);
        EXPECT_FALSE(comparedReport(file.name).isLoaded()) << file.name;
    }
}

// Root may read everything, so another user tries.
TEST_F(ProjectWhyFileTest, AFileThatMayNotBeRead)
{
    const uid_t nobody = 65534;
    comparedReport("everything is loaded that is loaded when it is needed");
    ASSERT_TRUE(QFile::setPermissions(path(), QFile::Permissions()));
    ASSERT_EQ(geteuid() == 0 ? seteuid(nobody) : 0, 0);
    const LoadReport report = comparedReport("unreadable");
    ASSERT_EQ(getuid() == 0 ? seteuid(0) : 0, 0);
    EXPECT_EQ(report.firstText, QStringLiteral("can not open database"));
}

TEST_F(ProjectWhyFileTest, AFileThatIsLocked)
{
    const SleepRecorder noWaiting;
    SqliteFile other(path());
    other.run(QStringLiteral("BEGIN EXCLUSIVE"));
    const LoadReport report = comparedReport("locked");
    EXPECT_EQ(report.firstText, QStringLiteral("failed to get default station id"));
    EXPECT_EQ(report.table, QString());
    EXPECT_FALSE(report.steps.filter(QStringLiteral("locked")).isEmpty());
    other.run(QStringLiteral("COMMIT"));
    EXPECT_TRUE(comparedReport("not locked any more").isLoaded());
}

TEST_F(ProjectWhyFileTest, AFileThatIsCut)
{
    makeProjectOfManyPages();
    const QByteArray whole = content();
    Texts texts;
    for (int size = 0; size < whole.size(); size += PageSize - 21) {
        setContent(whole.left(size));
        texts.insert(comparedReport("cut at " + std::to_string(size)).firstText);
    }
    // SQLite takes a page that is cut for one that ends in zeros.
    EXPECT_EQ(texts, (Texts{"", "failed to get default station id"}));
}

TEST_F(ProjectWhyFileTest, AFileWithALostPage)
{
    makeProjectOfManyPages();
    const QByteArray whole = content();
    Texts texts;
    Texts tables;
    for (int page = 0; page < whole.size() / PageSize; ++page) {
        QByteArray damaged = whole;
        setContent(damaged.replace(page * PageSize, PageSize, QByteArray(PageSize, '\xFF')));
        const LoadReport report = comparedReport("page " + std::to_string(page));
        texts.insert(report.firstText);
        tables.insert(report.table);
    }
    EXPECT_EQ(texts, (Texts{"", "can not open database", "failed to get default station id",
                            "failed to initialize valid bit addresses table"}));
    EXPECT_EQ(tables, (Texts{"", "LINK", "NODE", "custom_tag_table"}));
}

TEST_F(ProjectWhyFileTest, AFileWithAByteChanged)
{
    const QByteArray whole = content();
    for (int position = 0; position < whole.size(); position += position < 120 ? 1 : 97) {
        QByteArray changed = whole;
        changed[position] = static_cast<char>(~whole.at(position));
        setContent(changed);
        comparedReport("byte " + std::to_string(position));
    }
}

TEST_F(ProjectWhyFileTest, OtherFormatsOfTheFile)
{
    for (const char *const pragma :
         {"PRAGMA encoding = 'UTF-16'", "PRAGMA auto_vacuum = FULL", "PRAGMA journal_mode = WAL",
          "PRAGMA page_size = 65536", "PRAGMA user_version = 7"}) {
        makeProject({QLatin1String(pragma)});
        EXPECT_TRUE(comparedReport(pragma).isLoaded()) << pragma;
    }
}

TEST_F(ProjectWhyFileTest, OtherPorts)
{
    EXPECT_EQ(comparedReport("COM1", QStringLiteral("COM1")).table, QStringLiteral("LINK"));
    run({"UPDATE LINK SET HMIPORT = 1000"});
    EXPECT_TRUE(comparedReport("COM1", QStringLiteral("COM1")).isLoaded());
    EXPECT_EQ(comparedReport("ETHERNET").table, QStringLiteral("LINK"));
}
