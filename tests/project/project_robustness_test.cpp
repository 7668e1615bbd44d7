#include "tests/support/driver_test.h"
#include "tests/support/used_bits.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSqlDatabase>
#include <QSqlQuery>

#include <sys/stat.h>

// Databases that are locked, cut, odd or large: a clear text or the right map, and never a change to the
// file.

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

void setContent(const QByteArray &content)
{
    QFile file(ProjectDatabase::path());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    ASSERT_EQ(file.write(content), content.size());
}

QStringList filesBeside(const QString &path)
{
    return QFileInfo(path).dir().entryList(QDir::Files);
}

// What a driver makes of the database as it is: the used bits of station 1, or its text.
std::string outcome()
{
    const SleepRecorder pauses;
    ScriptedChannel channel;
    DriverModbusRtuSlaveOverTcp driver;
    return usedBits(driver, channel, 1);
}

bool isText(const std::string &result)
{
    return result == CanNotOpen || result == NoStation || result == NoAddresses;
}

// A project of many small pages.
class ManyPages
{
public:
    ManyPages()
    {
        setContent(QByteArray());
        QStringList tags;
        for (int number = 1; number < 1500; number += 5)
            tags << text(number % 2 == 0 ? "DI" : "DO") + QString::number(number);
        ProjectDatabase::execute(text("CREATE TABLE LINK (LINKID, HMIPORT)"));
        ProjectDatabase::execute(text("CREATE TABLE NODE (LINKID, STATIONID, ISDEFAULT, IP, PORT)"));
        ProjectDatabase::execute(text("CREATE TABLE custom_tag_table (address, connector_id)"));
        project.addLink(1, 2000);
        project.addNode(1, 1, true);
        project.addTags(tags, 1);
    }

private:
    ProjectDatabase project;
};

} // namespace

TEST(ProjectRobustness, NothingIsWritten)
{
    const ProjectDatabase project(stringList({"DI1", "DO3", "HR1"}), 1);
    const QString path = ProjectDatabase::path();
    const QByteArray content = contentOf(path);
    struct stat before = {};
    ASSERT_EQ(stat(QFile::encodeName(path).constData(), &before), 0);
    EXPECT_EQ(outcome(), "DI 0, DO 2");
    struct stat after = {};
    ASSERT_EQ(stat(QFile::encodeName(path).constData(), &after), 0);
    EXPECT_EQ(contentOf(path), content);
    EXPECT_EQ(after.st_mtim.tv_sec, before.st_mtim.tv_sec);
    EXPECT_EQ(after.st_mtim.tv_nsec, before.st_mtim.tv_nsec);
    EXPECT_EQ(after.st_ctim.tv_sec, before.st_ctim.tv_sec);
    EXPECT_EQ(after.st_ctim.tv_nsec, before.st_ctim.tv_nsec);
    EXPECT_EQ(after.st_ino, before.st_ino);
    EXPECT_EQ(filesBeside(path), QStringList(text("database")));
}

// Root may write everywhere; what counts for it is that nothing was.
TEST(ProjectRobustness, ReadOnlyFileInAReadOnlyFolder)
{
    const ProjectDatabase project(stringList({"DI1"}), 1);
    const QByteArray path = QFile::encodeName(ProjectDatabase::path());
    const QByteArray folder = QFile::encodeName(QFileInfo(ProjectDatabase::path()).path());
    ASSERT_EQ(chmod(path.constData(), 0444), 0);
    ASSERT_EQ(chmod(folder.constData(), 0555), 0);
    EXPECT_EQ(outcome(), "DI 0");
    EXPECT_EQ(filesBeside(ProjectDatabase::path()), QStringList(text("database")));
    ASSERT_EQ(chmod(folder.constData(), 0755), 0);
}

TEST(ProjectRobustness, CutAtAnyPage)
{
    const ManyPages project;
    const QByteArray whole = contentOf(ProjectDatabase::path());
    const int pageSize = static_cast<unsigned char>(whole.at(16)) * 256;
    ASSERT_GE(whole.size(), 4 * pageSize);
    for (int size = 0; size < whole.size(); size += pageSize) {
        setContent(whole.left(size));
        EXPECT_TRUE(isText(outcome())) << size;
        EXPECT_EQ(contentOf(ProjectDatabase::path()), whole.left(size));
    }
    setContent(whole);
    EXPECT_EQ(outcome().substr(0, 8), "DI 5 15 ");
}

// SQLite takes a page that is cut for one that ends in zeros: no text has to come of it, only no harm.
TEST(ProjectRobustness, CutInsideAPage)
{
    const ManyPages project;
    const QByteArray whole = contentOf(ProjectDatabase::path());
    for (int size = 1; size < whole.size(); size += 97) {
        setContent(whole.left(size));
        EXPECT_FALSE(outcome().empty()) << size;
        EXPECT_EQ(contentOf(ProjectDatabase::path()), whole.left(size));
    }
}

TEST(ProjectRobustness, Header)
{
    const ManyPages project;
    const QByteArray whole = contentOf(ProjectDatabase::path());
    const std::string right = outcome();
    for (int i = 0; i < 100; ++i) {
        QByteArray changed = whole;
        changed[i] = static_cast<char>(~whole.at(i));
        setContent(changed);
        const std::string result = outcome();
        EXPECT_TRUE(isText(result) || result == right) << i << ": " << result;
    }
}

TEST(ProjectRobustness, MissingTables)
{
    const struct {
        const char *table;
        const char *text;
    } tables[] = {{"LINK", NoStation}, {"NODE", NoStation}, {"custom_tag_table", NoAddresses}};
    for (const auto &table : tables) {
        const ProjectDatabase project(stringList({"DI1"}), 1);
        ProjectDatabase::execute(text("DROP TABLE ") + text(table.table));
        EXPECT_EQ(outcome(), table.text) << table.table;
    }
}

TEST(ProjectRobustness, MissingColumns)
{
    const struct {
        const char *table;
        const char *columns;
        const char *text;
    } tables[] = {{"LINK", "LINKID", NoStation},
                  {"LINK", "HMIPORT", NoStation},
                  {"NODE", "LINKID, STATIONID", NoStation},
                  {"NODE", "LINKID, ISDEFAULT", NoStation},
                  {"NODE", "STATIONID, ISDEFAULT", NoStation},
                  {"custom_tag_table", "address", NoAddresses},
                  {"custom_tag_table", "connector_id", NoAddresses}};
    for (const auto &table : tables) {
        const ProjectDatabase project(stringList({"DI1"}), 1);
        ProjectDatabase::execute(text("DROP TABLE ") + text(table.table));
        ProjectDatabase::execute(
            QString::fromLatin1("CREATE TABLE %1 (%2)").arg(text(table.table), text(table.columns)));
        EXPECT_EQ(outcome(), table.text) << table.table << " " << table.columns;
    }
}

// Ip and port of a node are for other drivers.
TEST(ProjectRobustness, FewestColumnsThatWillDo)
{
    const ProjectDatabase project(stringList({"DI1"}), 1);
    ProjectDatabase::execute(text("DROP TABLE NODE"));
    ProjectDatabase::execute(text("CREATE TABLE NODE (LINKID, STATIONID, ISDEFAULT)"));
    ProjectDatabase::execute(text("INSERT INTO NODE VALUES (1, 1, 1)"));
    EXPECT_EQ(outcome(), "DI 0");
}

TEST(ProjectRobustness, OddValuesOfLinksAndNodes)
{
    const struct {
        const char *link;
        const char *node;
        const char *result;
    } rows[] = {{"NULL, 2000", "NULL, 1, 1", NoStation},
                {"1, NULL", "1, 1, 1", NoStation},
                {"1, '2000'", "1, 1, 1", NoStation},
                {"1, x'32303030'", "1, 1, 1", NoStation},
                {"1, 2000.0", "1, 1, 1", "DI 0"},
                {"1, 2000", "'1', 1, 1", NoStation},
                {"1, 2000", "1, 1, NULL", NoStation},
                {"1, 2000", "1, 1, 2", NoStation},
                {"1, 2000", "1, '1', 1", "DI 0"},
                {"1, 2000", "1, 1.0, 1", "DI 0"},
                {"1, 2000", "1, 4294967297, 1", "DI 0"},
                {"1, 2000", "1, NULL, 1", "invalid address 1-DI"},
                {"1, 2000", "1, 'one', 1", "invalid address 1-DI"},
                {"1, 2000", "1, x'FF', 1", "invalid address 1-DI"},
                {"4294967297, 2000", "4294967297, 1, 1", "DI 0"},
                {"'x', 2000", "'x', 1, 1", "invalid address 1-DI"},
                {"-1, 2000", "-1, 1, 1", "invalid address 1-DI"}};
    for (const auto &row : rows) {
        ProjectDatabase project;
        project.addTags(stringList({"DI1"}), 1);
        ProjectDatabase::execute(QString::fromLatin1("INSERT INTO LINK VALUES (%1)").arg(text(row.link)));
        ProjectDatabase::execute(
            QString::fromLatin1("INSERT INTO NODE VALUES (%1, NULL, NULL)").arg(text(row.node)));
        EXPECT_EQ(outcome(), row.result) << row.link << " / " << row.node;
    }
}

TEST(ProjectRobustness, LongTags)
{
    const QString digits(100000, QLatin1Char('9'));
    const ProjectDatabase project(QStringList()
                                      << text("DI1") << text("DI") + digits << digits + text("-DI2")
                                      << QString(1000000, QLatin1Char('D'))
                                      << text("DO") + QString(1000000, QLatin1Char('x')) + text("3"),
                                  1);
    EXPECT_EQ(outcome(), "DI 0 65535, DO 2");
}

// SQLite follows the link and refuses what is longer than 512 characters, which the system does not.
TEST(ProjectRobustness, ALinkToAPathThatIsTooLongForSQLite)
{
    const ProjectDatabase project(stringList({"DI1"}), 1);
    QString deep = text("deep");
    for (int i = 0; i < 3; ++i)
        deep += QLatin1Char('/') + QString(200, QLatin1Char('d'));
    QDir folder = QFileInfo(ProjectDatabase::path()).dir();
    ASSERT_TRUE(folder.mkpath(deep));
    ASSERT_TRUE(folder.rename(text("database"), deep + text("/database")));
    ASSERT_TRUE(QFile::link(deep + text("/database"), ProjectDatabase::path()));
    EXPECT_EQ(outcome(), CanNotOpen);
    ASSERT_TRUE(folder.remove(deep + text("/database")));
    ASSERT_TRUE(folder.rmpath(deep));
}

TEST(ProjectRobustness, ManyRows)
{
    const ProjectDatabase project(QStringList(), 1);
    ProjectDatabase::execute(text("CREATE TABLE digit (d)"));
    for (int d = 0; d < 10; ++d)
        ProjectDatabase::execute(QString::fromLatin1("INSERT INTO digit VALUES (%1)").arg(d));
    // 1-DO1 to 1-DO100000, of which every number that divides by 100 counts, the others belong to register
    // tags.
    ProjectDatabase::execute(
        text("INSERT INTO custom_tag_table SELECT CASE WHEN d.d = 0 AND e.d = 0 THEN '1-DO' ELSE 'HR' END "
             "|| (a.d * 10000 + b.d * 1000 + c.d * 100 + d.d * 10 + e.d + 1), 1 "
             "FROM digit a, digit b, digit c, digit d, digit e"));
    std::string right = "DO";
    // Numbers above 65536 start again with the first address: 65601 is address 64.
    std::vector<bool> used(65536);
    for (int number = 1; number <= 100000; number += 100)
        used[static_cast<size_t>((number - 1) % 65536)] = true;
    for (size_t address = 0; address < used.size(); ++address)
        if (used[address])
            right += " " + std::to_string(address);
    EXPECT_EQ(outcome(), right);
}
