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

TEST_F(MessagesTest, NameAnExceptionAndWhatToDo)
{
    expectError(
        "read TARGET 5-HR10 --retries 0",
        "\n  check: illegal data address: the range touches an address that the slave does not have;");
    expectError("watch TARGET 5-HR10 HR1 --retries 0 --count 2 --interval 0",
                "\n  1 x exception code:0x02 (read 1 word(s) from 5-HR10)\n"
                "    check: illegal data address: the range touches an address");
    slave.inject(Fault{Fault::Exception, 6}, 1);
    expectError("write TARGET HR1 1 --retries 0",
                "\n  check: server device busy: ask less often: raise the delay\n");
    slave.inject(Fault{Fault::Exception, 0x63}, 1);
    expectError("read TARGET HR1 --retries 0",
                "\n  check: unknown: the slave is there and refuses; see its manual");
}

TEST_F(MessagesTest, SendNobodyToTheCablesWhenTheNameIsWrong)
{
    const HostRun run = runHost({"read", "rtutcp://no-such-host.invalid/1", "HR1"});
    EXPECT_EQ(run.code, 3);
    EXPECT_TRUE(
        run.err.contains("driverhost: HR1: cannot connect to no-such-host.invalid:502: unknown host name\n"))
        << run.err.toStdString();
    EXPECT_TRUE(run.err.contains("\n  check: the name as it is spelt")) << run.err.toStdString();
    EXPECT_FALSE(run.err.contains("cable")) << run.err.toStdString();
}

TEST_F(MessagesTest, SayHowOftenItWasTriedAndHowLong)
{
    slave.inject(Fault{Fault::Silence, -1}, 3);
    expectError("read TARGET HR1 --retries 2 --timeout 50 --settle off", "\n  3 attempts, time-out 50 ms\n");
    slave.inject(Fault{Fault::Silence, -1}, 1);
    expectError("write TARGET HR1 1 --retries 0 --timeout 50", "\n  1 attempt, time-out 50 ms\n");
    slave.inject(Fault{Fault::WrongCrc, -1}, 2);
    expectError("read TARGET HR1 --retries 1 --settle off", "\n  2 attempts\n");
    expectError("read TARGET 9-HR1 --retries 1 --timeout 50",
                "\n  check: station id, baud rate behind the gateway, wiring, and --timeout\n"
                "  2 attempts, 1 of them not sent (--settle), time-out 50 ms\n");
}

TEST_F(MessagesTest, SayWhenAnAnswerTookSeveralAttempts)
{
    slave.inject(Fault{Fault::WrongCrc, -1}, 2);
    expectError("read TARGET HR1 --settle off", "HR1: answered at attempt 3 of 4\n");
    slave.inject(Fault{Fault::WrongCrc, -1}, 1);
    expectError("write TARGET 5-HR1 7 --retries 1 --settle off", "5-HR1: answered at attempt 2 of 2\n");
    EXPECT_EQ(host("read TARGET HR1").err, "");
}

TEST_F(MessagesTest, NameTheTagThatCouldNotBeRead)
{
    // The run is read as bytes from DO1 on; what is in the project is FN5DO3.
    slave.inject(Fault{Fault::Exception, 4}, 2);
    expectError("tags --retries 0 --project " + makeProject("tag 1 5-FN5DO3\n"), "driverhost: 5-FN5DO3: ");
}
