#include "tests/support/driver_test.h"
#include "tests/support/used_bits.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSqlDatabase>
#include <QSqlQuery>

// A project that another program has open, or had open when it was cut off.

namespace
{

QString text(const char *latin1)
{
    return QLatin1String(latin1);
}

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    return file.readAll();
}

void setContent(const QString &path, const QByteArray &content)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    ASSERT_EQ(file.write(content), content.size());
}

QString journal()
{
    return ProjectDatabase::path() + text("-journal");
}

QStringList filesOfTheProject()
{
    return QFileInfo(ProjectDatabase::path()).dir().entryList(QDir::Files);
}

// Another program, with a connection of its own that may write.
class OtherProgram
{
public:
    OtherProgram()
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(text("QSQLITE"), text("other program"));
        database.setDatabaseName(ProjectDatabase::path());
        EXPECT_TRUE(database.open());
    }

    ~OtherProgram() { QSqlDatabase::removeDatabase(text("other program")); }

    OtherProgram(const OtherProgram &) = delete;
    OtherProgram &operator=(const OtherProgram &) = delete;

    static void execute(const QString &statement)
    {
        QSqlQuery query(QSqlDatabase::database(text("other program")));
        EXPECT_TRUE(query.exec(statement)) << statement.toUtf8().constData();
    }
};

class ProjectInUse : public testing::Test
{
protected:
    ProjectInUse() : project(stringList({"DI1"}), 1) {}

    // Otherwise the folders stay.
    ~ProjectInUse() override
    {
        for (const char *suffix : {"-journal", "-shm", "-wal"})
            QFile::remove(ProjectDatabase::path() + text(suffix));
    }

    // What the driver makes of the database: the used bits of station 1, or its text.
    std::string load() { return usedBits(driver, channel, 1); }

    ProjectDatabase project;
    SleepRecorder pauses;
    ScriptedChannel channel;
    DriverModbusRtuSlaveOverTcp driver;
};

} // namespace

// docs/host-contract.md says how long a command waits.
TEST_F(ProjectInUse, LockedUntilLater)
{
    {
        const OtherProgram other;
        OtherProgram::execute(text("BEGIN EXCLUSIVE"));
        EXPECT_EQ(load(), NoStation);
        EXPECT_NEAR(static_cast<double>(pauses.waits()), 5e6, 1e5);
        EXPECT_EQ(load(), NoStation);
        EXPECT_NEAR(static_cast<double>(pauses.waits()), 10e6, 2e5);
        OtherProgram::execute(text("COMMIT"));
    }
    EXPECT_EQ(load(), "DI 0");
    EXPECT_NEAR(static_cast<double>(pauses.waits()), 10e6, 2e5);
}

// In this mode also readers keep files beside the database; docs/project-database.md tells of them.
TEST_F(ProjectInUse, WriteAheadLog)
{
    QByteArray content = contentOf(ProjectDatabase::path());
    content[18] = 2; // the versions of the format that writers and readers have to know
    content[19] = 2;
    setContent(ProjectDatabase::path(), content);
    EXPECT_EQ(load(), "DI 0");
    EXPECT_EQ(filesOfTheProject(), stringList({"database", "database-shm", "database-wal"}));
    EXPECT_EQ(contentOf(ProjectDatabase::path()), content);
}

// The other program is cut off in the middle of its changes: the journal has the pages as they were, and who
// may only read cannot put them back.
TEST_F(ProjectInUse, HotJournal)
{
    QByteArray changed;
    QByteArray pagesBefore;
    {
        const OtherProgram other;
        OtherProgram::execute(text("PRAGMA cache_size = 1"));
        OtherProgram::execute(text("BEGIN"));
        for (int i = 0; i < 1000; ++i)
            OtherProgram::execute(
                QString::fromLatin1("INSERT INTO custom_tag_table VALUES ('DI%1', 1)").arg(i));
        changed = contentOf(ProjectDatabase::path());
        pagesBefore = contentOf(journal());
        OtherProgram::execute(text("ROLLBACK"));
    }
    setContent(ProjectDatabase::path(), changed);
    setContent(journal(), pagesBefore);

    EXPECT_EQ(load(), NoStation);
    EXPECT_EQ(contentOf(ProjectDatabase::path()), changed);
    EXPECT_EQ(contentOf(journal()), pagesBefore);

    {
        const OtherProgram other;
        OtherProgram::execute(text("UPDATE LINK SET LINKID = 1"));
    }
    EXPECT_EQ(load(), "DI 0");
}
