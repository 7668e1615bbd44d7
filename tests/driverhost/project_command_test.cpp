#include "tests/driverhost/support/slave_test.h"

#include <QDir>
#include <QFile>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>

class ProjectCommandTest : public SlaveTest
{
protected:
    void SetUp() override
    {
        SlaveTest::SetUp();
        write(file("list"), "link 1 ETHERNET\nnode 1 1 default 10.0.0.5:502\ntag 1 HR1\n");
    }
    QString file(const char *name) const { return folder.filePath(QLatin1String(name)); }
    static void write(const QString &path, const QByteArray &text)
    {
        QFile target(path);
        ASSERT_TRUE(target.open(QIODevice::WriteOnly));
        target.write(text);
    }
    static QByteArray contents(const QString &path)
    {
        QFile source(path);
        EXPECT_TRUE(source.open(QIODevice::ReadOnly));
        return source.readAll();
    }
    HostRun make(const QString &options, const char *name)
    {
        return host(QStringLiteral("project %1 --make %2 %3").arg(options, file("list"), file(name)));
    }
    static void runStatements(const QString &path, const QStringList &statements)
    {
        const QString name = QStringLiteral("project");
        {
            QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
            database.setDatabaseName(path);
            ASSERT_TRUE(database.open());
            for (const QString &statement : statements)
                EXPECT_TRUE(QSqlQuery(database).exec(statement)) << statement.toStdString();
        }
        QSqlDatabase::removeDatabase(name);
    }

    QTemporaryDir folder;
};

TEST_F(ProjectCommandTest, NeedsNoColumnThatTheDriverDoesNotNeed)
{
    ASSERT_EQ(make(QString(), "db").code, 0);
    runStatements(file("db"),
                  {QStringLiteral("CREATE TABLE SHORT AS SELECT LINKID, STATIONID, ISDEFAULT FROM NODE"),
                   QStringLiteral("DROP TABLE NODE"), QStringLiteral("ALTER TABLE SHORT RENAME TO NODE")});
    EXPECT_EQ(host(QStringLiteral("read TARGET HR1 --project ") + file("db")).code, 0);
    EXPECT_EQ(host(QStringLiteral("tags TARGET --project ") + file("db")).code, 0);
    const HostRun why = host(QStringLiteral("project --why ETHERNET ") + file("db"));
    EXPECT_EQ(why.code, 0) << why.out.toStdString();
    EXPECT_TRUE(why.out.contains(QLatin1String("the driver loads this project")));
    EXPECT_EQ(host(QStringLiteral("project ") + file("db")).out,
              QStringLiteral("link 1 ETHERNET\nnode 1 1 default\ntag 1 HR1\n"));
}

TEST_F(ProjectCommandTest, ReplacesNothingUnlessForcedAndKeepsTheOldFile)
{
    write(file("notes"), "dear diary");
    const HostRun refused = make(QString(), "notes");
    EXPECT_EQ(refused.code, 2);
    EXPECT_TRUE(refused.err.contains(QLatin1String("--force"))) << refused.err.toStdString();
    EXPECT_EQ(contents(file("notes")), QByteArray("dear diary"));

    const HostRun forced = make(QStringLiteral("--force"), "notes");
    EXPECT_EQ(forced.code, 0);
    EXPECT_EQ(forced.err,
              QStringLiteral("%1: 1 link, 1 node, 1 tag\nthe old file is %1.bak\n").arg(file("notes")));
    EXPECT_EQ(host(QStringLiteral("project ") + file("notes")).code, 0);
    EXPECT_EQ(contents(file("notes.bak")), QByteArray("dear diary"));
}

TEST_F(ProjectCommandTest, AProjectIsReplacedNoSoonerThanAnythingElse)
{
    ASSERT_EQ(make(QString(), "db").code, 0);
    runStatements(file("db"), {QStringLiteral("CREATE TABLE RECIPES (NAME TEXT)")});
    const QByteArray old = contents(file("db"));
    EXPECT_EQ(make(QString(), "db").code, 2);
    EXPECT_EQ(contents(file("db")), old);
    EXPECT_EQ(make(QStringLiteral("--force"), "db").code, 0);
    EXPECT_EQ(contents(file("db.bak")), old);
    EXPECT_EQ(make(QStringLiteral("--force"), "db").code, 0) << "the backup of a backup is none";
    EXPECT_NE(contents(file("db.bak")), old);
}

TEST_F(ProjectCommandTest, ADirectoryIsNotReplaced)
{
    ASSERT_TRUE(QDir(folder.path()).mkdir(QStringLiteral("db")));
    const HostRun run = make(QStringLiteral("--force"), "db");
    EXPECT_EQ(run.code, 2);
    EXPECT_TRUE(run.err.contains(QLatin1String("db is a directory"))) << run.err.toStdString();
}

TEST_F(ProjectCommandTest, TouchesNoOtherFileWhileItWrites)
{
    write(file("db.new"), "mine");
    EXPECT_EQ(make(QString(), "db").code, 0);
    EXPECT_EQ(contents(file("db.new")), QByteArray("mine"));
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden),
              (QStringList{"db", "db.new", "list"}));
}
