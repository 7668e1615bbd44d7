#include "tests/driverhost/support/slave_test.h"

#include <QTemporaryDir>

// What the program says about a failure: which value of which station, what happened, what to do.

namespace
{

SlaveOptions withTwoStations()
{
    SlaveOptions options;
    options.stations = {1, 5};
    options.memory.addHole({5, Area::HoldingRegisters, 9, 9});
    return options;
}

} // namespace

class MessagesTest : public SlaveTest
{
protected:
    MessagesTest() : SlaveTest(withTwoStations()) {}

    void expectError(const QString &arguments, const QString &text)
    {
        const HostRun run = host(arguments);
        EXPECT_TRUE(run.err.contains(text)) << arguments.toStdString() << '\n' << run.err.toStdString();
    }
    QString makeProject(const QByteArray &tags)
    {
        QFile list(folder.filePath("list"));
        EXPECT_TRUE(list.open(QIODevice::WriteOnly));
        list.write("link 1 ETHERNET\nnode 1 1 default 127.0.0.1:" + QByteArray::number(slave.port()) + '\n' +
                   tags);
        list.close();
        EXPECT_EQ(runHost({"project", "--make", list.fileName(), folder.filePath("project")}).code, 0);
        return folder.filePath("project");
    }

    QTemporaryDir folder;
};

TEST_F(MessagesTest, NameTheStationAsTheTableDoes)
{
    const QString text = "driverhost: 5-HR10: exception code:0x02 (";
    expectError("read TARGET 5-HR10 HR1 --retries 0", text);
    expectError("read TARGET 5-HR1 --count 300 --retries 0", "5-HR1: 300 items are more");
    expectError("write TARGET 5-HR10 1 --retries 0", text);
    expectError("watch TARGET 5-HR10 --retries 0 --count 1", " 5-HR10: exception code:0x02 (");
    expectError("write TARGET 5-HR1 7", "5-HR1: wrote");
    expectError("write TARGET 5-HR1 7 --verify", "5-HR1: verified");
    expectError("read TARGET 5-HR65536 --count 2", "address \"5-HR65536\": 2 items");
    expectError("tags --retries 0 --project " + makeProject("tag 1 5-HR10\n"), text);
}

TEST_F(MessagesTest, NameTheTagThatCouldNotBeRead)
{
    // The run is read as bytes from DO1 on; what is in the project is FN5DO3.
    slave.inject(Fault{Fault::Exception, 4}, 2);
    expectError("tags --retries 0 --project " + makeProject("tag 1 5-FN5DO3\n"), "driverhost: 5-FN5DO3: ");
}
