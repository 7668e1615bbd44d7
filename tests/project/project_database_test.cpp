#include "tests/support/driver_test.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QSqlDatabase>

#include <cstdlib>
#include <sys/stat.h>
#include <unistd.h>

// The load of the project database with the first command.

namespace
{

// A driver that has loaded nothing yet, in a program without a database.
class FirstUse : public testing::Test
{
protected:
    FirstUse() : known(QSqlDatabase::connectionNames())
    {
        ProjectDatabase::remove();
        channel.setResponder([](const QByteArray &) { return framed("01 03 02 12 34"); });
    }

    ~FirstUse() override { ProjectDatabase::remove(); }

    // The error text of a word read, "ok" when it went through.
    std::string load()
    {
        channel.forgetCalls();
        const QByteArray data = driver.read(&channel, makeCommand(WordItem, QLatin1String("HR1"), 1));
        if (!driver.hasError()) {
            EXPECT_EQ(data, fromHex("34 12"));
            return "ok";
        }
        EXPECT_EQ(data, QByteArray());
        EXPECT_EQ(channel.calls().size(), 1u);
        EXPECT_EQ(channel.count(ScriptedChannel::GetDeviceSetting), 1);
        return driver.getLastError().toUtf8().constData();
    }

    // Ends the process: with 0 when a load could not open the database, with an alarm when it hangs.
    void loadSoon()
    {
        alarm(20);
        std::exit(load() == CanNotOpen ? EXIT_SUCCESS : EXIT_FAILURE);
    }

    // The connection that the driver registered.
    QString connection() const
    {
        QStringList names = QSqlDatabase::connectionNames();
        for (int i = 0; i < known.size(); ++i)
            names.removeAll(known.at(i));
        EXPECT_EQ(names.size(), 1);
        return names.isEmpty() ? QString() : names.first();
    }

    bool isOpen() const { return QSqlDatabase::database(connection(), false).isOpen(); }

    static void makeFile(const QByteArray &content)
    {
        ProjectDatabase::makeFolders();
        QFile file(ProjectDatabase::path());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
    }

    SleepRecorder pauses;
    ScriptedChannel channel;
    DriverModbusRtuSlaveOverTcp driver;
    QStringList known;
};

QString text(const char *latin1)
{
    return QLatin1String(latin1);
}

} // namespace

TEST_F(FirstUse, MissingFile)
{
    channel.retries = 3;
    channel.connected = false;
    EXPECT_EQ(load(), CanNotOpen);
    EXPECT_EQ(load(), NoStation);
    EXPECT_EQ(load(), NoStation);
    EXPECT_FALSE(QDir(QCoreApplication::applicationDirPath()).exists(text("compile")));
    EXPECT_FALSE(QFile::exists(QCoreApplication::applicationDirPath() + text("/database")));
}

TEST_F(FirstUse, MissingFileBeforeAWrite)
{
    const CommunicatorCommand command = makeCommand(WordItem, text("HR1"), 1);
    EXPECT_FALSE(driver.write(&channel, command, fromHex("34 12")));
    EXPECT_EQ(driver.getLastError(), text(CanNotOpen));
    EXPECT_FALSE(driver.write(&channel, command, fromHex("34 12")));
    EXPECT_EQ(driver.getLastError(), text(NoStation));
    EXPECT_EQ(channel.calls().size(), 2u);
}

TEST_F(FirstUse, WriteLoadsAsWell)
{
    const ProjectDatabase project(QStringList(), 1);
    channel.setResponder(echoOf);
    EXPECT_TRUE(driver.write(&channel, makeCommand(WordItem, text("HR1"), 1), fromHex("34 12")));
    EXPECT_EQ(channel.count(ScriptedChannel::GetDeviceSetting), 1);
}

TEST_F(FirstUse, FailedOpenLeavesAClosedConnection)
{
    EXPECT_EQ(load(), CanNotOpen);
    EXPECT_TRUE(QSqlDatabase::contains(connection()));
    EXPECT_FALSE(isOpen());
}

TEST_F(FirstUse, DatabaseThatAppearsLater)
{
    ProjectDatabase::makeFolders();
    EXPECT_EQ(load(), CanNotOpen);
    const ProjectDatabase project(QStringList(), 1);
    EXPECT_EQ(load(), "ok");
    EXPECT_EQ(load(), "ok");
    EXPECT_EQ(channel.count(ScriptedChannel::GetDeviceSetting), 0);
}

TEST_F(FirstUse, DatabaseThatAppearsAfterAFailedLookup)
{
    ProjectDatabase::makeFolders();
    EXPECT_EQ(load(), CanNotOpen);
    EXPECT_EQ(load(), NoStation);
    const ProjectDatabase project(QStringList(), 1);
    EXPECT_EQ(load(), "ok");
}

TEST_F(FirstUse, FilesThatAreNoDatabase)
{
    const QByteArray header("SQLite format 3", 16);
    const QByteArray others[] = {
        QByteArray("x"),       QByteArray("text that is no database, longer than a header"),
        header.left(15),       "SQLite format 2" + QByteArray(1, '\0'),
        header.left(15) + "x", QByteArray(4096, '\0'),
        " " + header.left(15)};
    for (const QByteArray &content : others) {
        makeFile(content);
        DriverModbusRtuSlaveOverTcp fresh;
        fresh.read(&channel, makeCommand(WordItem, text("HR1"), 1));
        EXPECT_EQ(fresh.getLastError(), text(CanNotOpen)) << content.constData();
        fresh.read(&channel, makeCommand(WordItem, text("HR1"), 1));
        EXPECT_EQ(fresh.getLastError(), text(NoStation));
    }
    EXPECT_EQ(channel.trace(), "");
}

TEST_F(FirstUse, HeaderWithNothingAfterIt)
{
    makeFile(QByteArray("SQLite format 3", 16));
    EXPECT_EQ(load(), NoStation);
    EXPECT_EQ(load(), NoStation);
}

TEST_F(FirstUse, EmptyFileIsADatabaseWithoutTables)
{
    makeFile(QByteArray());
    EXPECT_EQ(load(), NoStation);
    EXPECT_TRUE(isOpen());
    EXPECT_EQ(QFile(ProjectDatabase::path()).size(), 0);
}

TEST_F(FirstUse, AFolderInPlaceOfTheFile)
{
    QDir program(QCoreApplication::applicationDirPath());
    program.mkpath(text("compile/database/database"));
    EXPECT_EQ(load(), CanNotOpen);
    program.rmdir(text("compile/database/database"));
}

// Nobody is at the other end of the pipe, and a device may have nothing to say: neither is waited for.
TEST_F(FirstUse, APipeOrADeviceInPlaceOfTheFile)
{
    const QByteArray path = QFile::encodeName(ProjectDatabase::path());
    ProjectDatabase::makeFolders();
    ASSERT_EQ(mkfifo(path.constData(), 0600), 0);
    EXPECT_EXIT(loadSoon(), testing::ExitedWithCode(0), "");
    QFile::remove(ProjectDatabase::path());

    ASSERT_TRUE(QFile::link(text("/dev/null"), ProjectDatabase::path()));
    EXPECT_EQ(load(), CanNotOpen);
    EXPECT_EQ(load(), NoStation);
}

TEST_F(FirstUse, ALinkThatLeadsNowhere)
{
    ProjectDatabase::makeFolders();
    ASSERT_TRUE(QFile::link(text("nowhere"), ProjectDatabase::path()));
    EXPECT_EQ(load(), CanNotOpen);
    EXPECT_FALSE(QFile::exists(ProjectDatabase::path()));
}

TEST_F(FirstUse, NoLinkForThePort)
{
    ProjectDatabase project;
    project.addLink(1, 1000);
    project.addNode(1, 1, true);
    EXPECT_EQ(load(), NoStation);
    EXPECT_TRUE(isOpen());
    EXPECT_EQ(load(), NoStation);
    project.addLink(2, 2000);
    EXPECT_EQ(load(), NoStation);
    project.addNode(2, 1, false);
    EXPECT_EQ(load(), NoStation);
    project.addNode(2, 1, true);
    EXPECT_EQ(load(), "ok");
}

TEST_F(FirstUse, DeviceTextChoosesTheLink)
{
    ProjectDatabase project;
    project.addLink(1, 2000);
    project.addNode(1, 1, true);
    channel.setting.deviceString = text("COM12");
    EXPECT_EQ(load(), NoStation);
    project.addLink(2, 1011);
    project.addNode(2, 1, true);
    EXPECT_EQ(load(), "ok");
}

TEST_F(FirstUse, DeviceTextIsAskedAnewWhileNothingIsLoaded)
{
    const ProjectDatabase project(QStringList(), 1, 1000);
    EXPECT_EQ(load(), NoStation);
    channel.setting.deviceString = text("COM1");
    EXPECT_EQ(load(), "ok");
}

TEST_F(FirstUse, NoTagTable)
{
    const ProjectDatabase project(QStringList(), 1);
    ProjectDatabase::execute(text("DROP TABLE custom_tag_table"));
    EXPECT_EQ(load(), NoAddresses);
    EXPECT_TRUE(isOpen());
    EXPECT_EQ(load(), NoAddresses);
    ProjectDatabase::execute(text("CREATE TABLE custom_tag_table (address, connector_id)"));
    EXPECT_EQ(load(), "ok");
}

TEST_F(FirstUse, SuccessClosesTheConnectionAndKeepsItRegistered)
{
    {
        const ProjectDatabase project(stringList({"DI1"}), 1);
        EXPECT_EQ(load(), "ok");
    }
    EXPECT_TRUE(QSqlDatabase::contains(connection()));
    EXPECT_FALSE(isOpen());
    // The file is gone by now.
    EXPECT_EQ(load(), "ok");
    EXPECT_FALSE(isOpen());
    EXPECT_EQ(channel.count(ScriptedChannel::GetDeviceSetting), 0);
}

TEST_F(FirstUse, ChangesAfterTheLoadAreNotSeen)
{
    ProjectDatabase project(stringList({"DO1"}), 1);
    EXPECT_EQ(load(), "ok");
    project.addTags(stringList({"DO2"}), 1);
    channel.forgetCalls();
    channel.addReply(framed("01 01 01 FF"));
    EXPECT_EQ(driver.read(&channel, makeCommand(ByteItem, text("DO1"), 1)), fromHex("01"));
    EXPECT_EQ(channel.requests().size(), 1);
}

TEST_F(FirstUse, ConnectionIsReadOnly)
{
    const ProjectDatabase project(QStringList(), 1);
    EXPECT_EQ(load(), "ok");
    const QSqlDatabase database = QSqlDatabase::database(connection(), false);
    EXPECT_EQ(database.driverName(), text("QSQLITE"));
    EXPECT_EQ(database.connectOptions(), text("QSQLITE_OPEN_READONLY"));
    EXPECT_EQ(database.databaseName(), ProjectDatabase::path());
}

TEST_F(FirstUse, DestroyingTheDriverLeavesTheConnectionRegistered)
{
    ProjectDatabase project;
    const CommunicatorCommand command = makeCommand(WordItem, text("HR1"), 1);
    {
        DriverModbusRtuSlaveOverTcp shortLived;
        shortLived.read(&channel, command);
        EXPECT_EQ(shortLived.getLastError(), text(NoStation));
        EXPECT_TRUE(isOpen());
    }
    EXPECT_TRUE(QSqlDatabase::contains(connection()));
    EXPECT_TRUE(isOpen());
    EXPECT_EQ(channel.count(ScriptedChannel::Close), 0);
}

// A connection that is already registered under the driver's name is taken as it is.
TEST_F(FirstUse, RegisteredConnectionIsTaken)
{
    const ProjectDatabase project(QStringList(), 1);
    const QString other = QCoreApplication::applicationDirPath() + text("/other");
    ASSERT_TRUE(QFile::rename(ProjectDatabase::path(), other));
    EXPECT_EQ(load(), CanNotOpen);
    QSqlDatabase::database(connection(), false).setDatabaseName(other);
    EXPECT_EQ(load(), "ok");
    QFile::remove(other);
}

TEST_F(FirstUse, ErrorOfAFailedLoadIsClearedByTheNextSuccess)
{
    EXPECT_EQ(load(), CanNotOpen);
    const ProjectDatabase project(QStringList(), 1);
    // The folders were missing when the name was made, so the file is looked for beside the program.
    EXPECT_EQ(load(), NoStation);
    const QString beside = QCoreApplication::applicationDirPath() + text("/database");
    ASSERT_TRUE(QFile::copy(ProjectDatabase::path(), beside));
    EXPECT_EQ(load(), "ok");
    EXPECT_EQ(driver.getLastError(), text(NoStation));
    QFile::remove(beside);
}

TEST_F(FirstUse, UnsuitableDeviceTextStopsTheProcess)
{
    const ProjectDatabase project(QStringList(), 1);
    channel.setting.deviceString = text("COM");
    EXPECT_DEATH(load(), "i >= 0 && \\(i\\+1\\) < dev_str\\.size\\(\\)");
}

// The file is looked for before the device text is looked at.
TEST_F(FirstUse, UnsuitableDeviceTextWithoutADatabase)
{
    channel.setting.deviceString = text("COM");
    EXPECT_EQ(load(), CanNotOpen);
    EXPECT_DEATH(load(), "i >= 0 && \\(i\\+1\\) < dev_str\\.size\\(\\)");
}
