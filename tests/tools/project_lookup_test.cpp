#include "drivers/tools/project_lookup.h"
#include "tests/doubles/frames.h"
#include "tests/doubles/project_database.h"
#include "tests/support/gtest_qt.h"

#include <QCoreApplication>
#include <QFile>
#include <QSqlDatabase>

namespace
{

QString text(const char *utf8)
{
    return QString::fromUtf8(utf8);
}

// The program's folder with some of the folders below it that may lead to the database.
class ProjectFolders : public testing::Test
{
protected:
    ProjectFolders() : program(QCoreApplication::applicationDirPath()) { ProjectDatabase::remove(); }

    ~ProjectFolders() override
    {
        program.rmdir(QLatin1String("compile/database"));
        program.rmdir(QLatin1String("compile"));
        program.rmdir(QLatin1String("database"));
        QFile::remove(program.filePath(QLatin1String("compile")));
    }

    QString below(const char *path) const { return program.path() + QLatin1String(path); }

    QDir program;
};

// A named connection to a project database with three links, used by nobody else.
class LinkLookup : public testing::Test
{
protected:
    LinkLookup() : name(QLatin1String("lookup"))
    {
        project.addLink(5, 1000);
        project.addLink(6, 2000);
        project.addLink(7, 1011);
        project.addNode(5, 9, false);
        project.addNode(5, 11, true, text("10.0.0.1"), 502);
        project.addNode(6, 300, true, text("10.0.0.2"), 503);
        project.addNode(7, 3, false);
        QSqlDatabase database = QSqlDatabase::addDatabase(QLatin1String("QSQLITE"), name);
        database.setDatabaseName(ProjectDatabase::path());
    }

    ~LinkLookup() override { QSqlDatabase::removeDatabase(name); }

    // "5/11" or "none".
    std::string defaultOf(int hmiPort) const
    {
        int linkId = -7;
        unsigned char station = 77;
        const bool found = GetLinkIdAndDefaultStationId(name, hmiPort, linkId, station);
        std::string result = std::to_string(linkId) + "/" + std::to_string(station);
        if (found)
            return result;
        EXPECT_EQ(result, "-7/77") << "outputs are touched only by success";
        return "none";
    }

    // "5/11 6/44": the list after the lookup, and that the result says whether it is empty.
    std::string listOf(int hmiPort, const char *ip, unsigned short port,
                       QList<LinkIdStationId> list = QList<LinkIdStationId>()) const
    {
        const bool found = GetLinkIdAndDefaultStationId(name, hmiPort, text(ip), port, list);
        EXPECT_EQ(found, !list.isEmpty());
        return shown(list);
    }

    std::string listOf(int linkId, QList<LinkIdStationId> list = QList<LinkIdStationId>()) const
    {
        const bool found = GetLinkIdAndDefaultStationId(name, linkId, list);
        EXPECT_EQ(found, !list.isEmpty());
        return shown(list);
    }

    static QList<LinkIdStationId> prefilled()
    {
        const LinkIdStationId entry = {99, 98};
        return QList<LinkIdStationId>() << entry;
    }

    const QString name;
    ProjectDatabase project;

private:
    static std::string shown(const QList<LinkIdStationId> &list)
    {
        std::string entries;
        for (int i = 0; i < list.size(); ++i)
            entries += (i > 0 ? " " : "") + std::to_string(list.at(i).linkId) + "/" +
                       std::to_string(list.at(i).stationId);
        return entries;
    }
};

} // namespace

TEST_F(ProjectFolders, NamesOfTheFolders)
{
    EXPECT_EQ(COMPILE_PATH, text("compile"));
    EXPECT_EQ(DATABASE_PATH, text("database"));
}

TEST_F(ProjectFolders, NoneOfThem)
{
    EXPECT_EQ(GetCompilePath().path(), below(""));
    EXPECT_EQ(GetDatabaseName(), below("/database"));
}

TEST_F(ProjectFolders, BothOfThem)
{
    program.mkpath(QLatin1String("compile/database"));
    EXPECT_EQ(GetCompilePath().path(), below("/compile"));
    EXPECT_EQ(GetDatabaseName(), below("/compile/database/database"));
}

TEST_F(ProjectFolders, OnlyTheFirst)
{
    program.mkpath(QLatin1String("compile"));
    EXPECT_EQ(GetCompilePath().path(), below("/compile"));
    EXPECT_EQ(GetDatabaseName(), below("/compile/database"));
}

TEST_F(ProjectFolders, OnlyTheSecond)
{
    program.mkpath(QLatin1String("database"));
    EXPECT_EQ(GetCompilePath().path(), below(""));
    EXPECT_EQ(GetDatabaseName(), below("/database/database"));
}

TEST_F(ProjectFolders, AFileOfThatNameIsNoFolder)
{
    QFile file(below("/compile"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.close();
    EXPECT_EQ(GetCompilePath().path(), below(""));
}

TEST(HmiPort, OfDeviceNames)
{
    const struct {
        const char *name;
        int port;
    } devices[] = {{"ETHERNET", 2000},
                   {"ethernet0", 2000},
                   {"Ethernet-2", 2000},
                   {"ETHERNETCOM7", 2000},
                   {"COM1", 1000},
                   {"COM2", 1001},
                   {"COM10", 1009},
                   {"COM12", 1011},
                   {"tty3", 1002},
                   {"x0", 999},
                   {"COM007", 1006},
                   {"1-2", 1001},
                   {"eth0", 999},
                   {"ETHERNE1", 1000},
                   {"XETHERNET5", 1004},
                   {"COM1.9", 1008},
                   {"\xC3\xA9"
                    "4",
                    1003},
                   {" 5", 1004},
                   {"COM123456", 124455}};
    for (const auto &device : devices)
        EXPECT_EQ(DevStrToHmiPort(text(device.name)), device.port) << device.name;
}

TEST(HmiPortDeathTest, NamesWithoutNumberOrOfDigitsOnlyStopTheProcess)
{
    for (const char *name : {"COM", "123", "", "0", "COM1x", "COM1 ", "ETHERNE", "COM\xEF\xBC\x91"})
        EXPECT_DEATH(DevStrToHmiPort(text(name)), "ASSERT: \"i >= 0 && \\(i\\+1\\) < dev_str\\.size\\(\\)\"")
            << name;
}

TEST_F(LinkLookup, DefaultNodeOfAPort)
{
    EXPECT_EQ(defaultOf(1000), "5/11");
    EXPECT_EQ(defaultOf(2000), "6/44");
    EXPECT_EQ(defaultOf(1011), "none");
    EXPECT_EQ(defaultOf(1), "none");
    EXPECT_EQ(defaultOf(-1), "none");
}

TEST_F(LinkLookup, FirstRowDecides)
{
    project.addLink(8, 3000);
    project.addNode(8, 21, true);
    project.addNode(8, 22, true);
    project.addLink(9, 3000);
    project.addNode(9, 23, true);
    EXPECT_EQ(defaultOf(3000), "8/21");
}

TEST_F(LinkLookup, ConnectionIsOpenedWhenItIsClosed)
{
    EXPECT_FALSE(QSqlDatabase::database(name, false).isOpen());
    EXPECT_EQ(defaultOf(1000), "5/11");
    EXPECT_TRUE(QSqlDatabase::database(name, false).isOpen());
}

TEST_F(LinkLookup, OddValuesAreTakenAsNumbers)
{
    ProjectDatabase::execute(text("INSERT INTO LINK VALUES ('12', '4000')"));
    ProjectDatabase::execute(text("INSERT INTO LINK VALUES ('12', 4000)"));
    ProjectDatabase::execute(text("INSERT INTO NODE VALUES ('12', '513', 1, NULL, NULL)"));
    EXPECT_EQ(defaultOf(4000), "12/1");
    project.addLink(13, 4001);
    ProjectDatabase::execute(text("INSERT INTO NODE VALUES (13, NULL, 1, NULL, NULL)"));
    EXPECT_EQ(defaultOf(4001), "13/0");
    project.addLink(14, 4002);
    ProjectDatabase::execute(text("INSERT INTO NODE VALUES (14, 'seven', 1, NULL, NULL)"));
    EXPECT_EQ(defaultOf(4002), "14/0");
    project.addLink(15, 4003);
    project.addNode(15, -1, true);
    EXPECT_EQ(defaultOf(4003), "15/255");
}

TEST_F(LinkLookup, FailedQueryFindsNothing)
{
    ProjectDatabase::execute(text("DROP TABLE NODE"));
    EXPECT_EQ(defaultOf(1000), "none");
    EXPECT_EQ(listOf(1000, "10.0.0.1", 502), "");
    EXPECT_EQ(listOf(5), "");
}

TEST_F(LinkLookup, NodesOfAnEndpoint)
{
    EXPECT_EQ(listOf(1000, "10.0.0.1", 502), "5/11");
    EXPECT_EQ(listOf(2000, "10.0.0.2", 503), "6/44");
    EXPECT_EQ(listOf(1000, "10.0.0.1", 503), "");
    EXPECT_EQ(listOf(1000, "10.0.0.2", 502), "");
    EXPECT_EQ(listOf(2000, "10.0.0.1", 502), "");
    EXPECT_EQ(listOf(1011, "127.0.0.1", 502), "");
    project.addNode(5, 12, true, text("10.0.0.1"), 502);
    project.addNode(5, 13, false, text("10.0.0.1"), 502);
    project.addNode(5, 14, true, text("10.0.0.1"), 65535);
    EXPECT_EQ(listOf(1000, "10.0.0.1", 502), "5/11 5/12");
    EXPECT_EQ(listOf(1000, "10.0.0.1", 65535), "5/14");
}

// The ip goes into the statement as it stands: marks of places in it are text, quotes are quotes.
TEST_F(LinkLookup, IpIsPlacedAsItStands)
{
    project.addNode(5, 31, true, text("%1"), 502);
    project.addNode(5, 32, true, text("%3"), 502);
    project.addNode(5, 33, true, text("502"), 502);
    project.addNode(5, 34, true, text("1000"), 502);
    project.addNode(5, 35, true, text("%%2%99 %s"), 502);
    project.addNode(5, 36, true, text("\xC3\xA9\xE2\x82\xAC"), 502);
    project.addNode(5, 37, true, text(""), 502);
    EXPECT_EQ(listOf(1000, "%1", 502), "5/31");
    EXPECT_EQ(listOf(1000, "%3", 502), "5/32");
    EXPECT_EQ(listOf(1000, "%%2%99 %s", 502), "5/35");
    EXPECT_EQ(listOf(1000, "\xC3\xA9\xE2\x82\xAC", 502), "5/36");
    EXPECT_EQ(listOf(1000, "", 502), "5/37");
    EXPECT_EQ(listOf(1000, "it's", 502), "");
    EXPECT_EQ(listOf(2000, "' OR NODE.IP = '10.0.0.2", 503), "5/44 6/44 7/44");
}

TEST_F(LinkLookup, DefaultNodesOfALink)
{
    EXPECT_EQ(listOf(5), "5/11");
    EXPECT_EQ(listOf(6), "6/44");
    EXPECT_EQ(listOf(7), "");
    project.addNode(5, 12, true);
    project.addNode(5, 267, true);
    EXPECT_EQ(listOf(5), "5/11 5/12 5/11");
}

TEST_F(LinkLookup, ListsAreAppendedTo)
{
    EXPECT_EQ(listOf(1000, "10.0.0.1", 502, prefilled()), "99/98 5/11");
    EXPECT_EQ(listOf(5, prefilled()), "99/98 5/11");
}

// What was there before counts as well.
TEST_F(LinkLookup, PrefilledListsAreAResult)
{
    EXPECT_EQ(listOf(1, "10.0.0.1", 502, prefilled()), "99/98");
    EXPECT_EQ(listOf(1, prefilled()), "99/98");
    ProjectDatabase::execute(text("DROP TABLE NODE"));
    EXPECT_EQ(listOf(1000, "10.0.0.1", 502, prefilled()), "99/98");
    EXPECT_EQ(listOf(5, prefilled()), "99/98");
}

TEST(LinkLookupWithoutConnection, FindsNothing)
{
    int linkId = 1;
    unsigned char station = 2;
    EXPECT_FALSE(GetLinkIdAndDefaultStationId(text("no such connection"), 2000, linkId, station));
    EXPECT_EQ(linkId, 1);
    EXPECT_EQ(station, 2);
}
