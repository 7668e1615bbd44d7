#include "tests/desk/support/project_why_test.h"

#include "desk/project/sqlite_file.h"
#include "drivers/tools/project_lookup.h"
#include "tests/desk/support/dry_driver.h"
#include "tests/peers/text_printing.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>

ProjectWhyTest::ProjectWhyTest()
{
    QDir(QCoreApplication::applicationDirPath()).mkpath(QStringLiteral("compile/database"));
    makeProject();
}

ProjectWhyTest::~ProjectWhyTest()
{
    removeFiles();
}

QString ProjectWhyTest::path()
{
    return GetDatabaseName();
}

void ProjectWhyTest::removeFiles()
{
    QDir().rmdir(path());
    for (const char *const end : {"", "-wal", "-shm", "-journal"})
        QFile::remove(path() + QLatin1String(end));
}

void ProjectWhyTest::makeProject(const QStringList &first)
{
    removeFiles();
    run(first + QStringList{"CREATE TABLE LINK (LINKID, HMIPORT)",
                            "CREATE TABLE NODE (LINKID, STATIONID, ISDEFAULT, IP, PORT)",
                            "CREATE TABLE custom_tag_table (address, connector_id)",
                            "INSERT INTO LINK VALUES (1, 2000)", "INSERT INTO NODE VALUES (1, 1, 1, '', 0)",
                            "INSERT INTO custom_tag_table VALUES ('DI1', 1)"});
}

void ProjectWhyTest::makeProjectOfManyPages()
{
    const QString rows = QStringLiteral(
        "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 600) INSERT INTO ");
    makeProject({QStringLiteral("PRAGMA page_size = %1").arg(PageSize)});
    run({rows + QStringLiteral("LINK SELECT i + 1, 1000 + i FROM n"),
         rows + QStringLiteral("NODE SELECT i + 1, i, i % 2, NULL, NULL FROM n"),
         rows + QStringLiteral("custom_tag_table SELECT 'DO' || i, i % 2 FROM n")});
    EXPECT_TRUE(comparedReport("many pages").isLoaded());
}

void ProjectWhyTest::run(const QStringList &statements)
{
    SqliteFile database(path());
    database.run(QStringLiteral("PRAGMA synchronous = OFF"));
    for (const QString &statement : statements)
        database.run(statement);
    EXPECT_EQ(database.problem(), QString()) << statements.join(QLatin1Char('\n')).toStdString();
}

QByteArray ProjectWhyTest::content()
{
    QFile file(path());
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    return file.readAll();
}

void ProjectWhyTest::setContent(const QByteArray &content)
{
    removeFiles();
    QFile file(path());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(content);
}

LoadReport ProjectWhyTest::comparedReport(const std::string &what, const QString &device)
{
    const LoadReport report = explainLoad(path(), device);
    DryDriver driver(device);
    EXPECT_EQ(report.firstText, driver.read(WordItem, "HR1")) << what;
    EXPECT_EQ(report.laterText, driver.read(WordItem, "HR1")) << what;
    const LoadReport ofFolder = explainLoad(QCoreApplication::applicationDirPath(), device);
    EXPECT_EQ(ofFolder.firstText, report.firstText) << what;
    EXPECT_EQ(ofFolder.table, report.table) << what;
    EXPECT_TRUE(report.isLoaded() || report.steps.last().contains(report.firstText)) << what;
    EXPECT_EQ(!report.table.isEmpty(),
              report.steps.contains(QStringLiteral("table %1 is at fault").arg(report.table)))
        << what;
    return report;
}
