#include "tests/driverhost/support/pty_program.h"
#include "tests/driverhost/support/slave_test.h"
#include "tests/peers/raw_master.h"
#include "tests/peers/scripted_peer.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <csignal>

// What a snapshot holds is put back.

namespace
{

const char Ranges[] =
    "range 1-HR1..9\nHR1 5\nHR2 6\nHR3..4 0\nHR5 7\nHR6..8 0\nHR9 8\nrange 1-DO3..4\nDO3 1\nDO4 0\n"
    "end\n";

} // namespace

class RestoreTest : public SlaveTest
{
protected:
    explicit RestoreTest(const SlaveOptions &options = SlaveOptions()) : SlaveTest(options) {}

    void SetUp() override
    {
        SlaveTest::SetUp();
        write(Ranges);
    }
    void write(const QByteArray &ranges, const QString &where = {}) const
    {
        QFile file(path());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("driverhost snapshot\nformat 1\ntime yesterday\ntarget " +
                   (where.isEmpty() ? target() : where).toUtf8() + '\n' + ranges);
    }
    QString path() const { return folder.filePath("plc.snapshot"); }
    HostRun restore(const QString &options = "--yes") { return host("restore " + path() + ' ' + options); }
    std::vector<int> registers()
    {
        std::vector<int> values;
        for (int offset = 0; offset < 9; ++offset)
            values.push_back(holdingRegister(offset));
        return values;
    }

    QTemporaryDir folder;
};

using Values = std::vector<int>;

TEST_F(RestoreTest, WritesOnlyWhatDiffersAndVerifies)
{
    setHoldingRegister(0, 5);
    const HostRun run = restore("--yes --trace");
    EXPECT_EQ(run.code, 0) << run.err.toStdString();
    EXPECT_EQ(run.out, "1-HR2: is 0, becomes 6\n1-HR5: is 0, becomes 7\n1-HR9: is 0, becomes 8\n"
                       "1-DO3: is 0, becomes 1\n");
    EXPECT_TRUE(run.err.contains("\n4 values written and verified\n")) << run.err.toStdString();
    EXPECT_EQ(run.err.count("> 01 10 "), 3) << "HR2, HR5 and HR9";
    EXPECT_FALSE(run.err.contains("> 01 10 00 00 ")) << "HR1 did not differ";
    EXPECT_EQ(registers(), (Values{5, 6, 0, 0, 7, 0, 0, 0, 8}));
    EXPECT_EQ(slave.value(1, Area::Coils, 2), 1);
    const HostRun again = restore();
    EXPECT_EQ(again.code, 0);
    EXPECT_EQ(again.out, "");
    EXPECT_TRUE(again.err.contains("\nnothing to put back\n"));
}

TEST_F(RestoreTest, ADryRunWritesNothing)
{
    const HostRun run = restore("--dry-run");
    EXPECT_EQ(run.code, 0) << run.err.toStdString();
    EXPECT_EQ(run.out.count("becomes"), 5);
    EXPECT_TRUE(run.err.contains("\n5 values would be written to " + target() + '\n'));
    EXPECT_EQ(registers(), Values(9, 0));
    EXPECT_EQ(restore("--dry-run --yes").code, 2);
}

TEST_F(RestoreTest, WritesNothingUnaskedWhereItCannotAsk)
{
    const HostRun run = restore("");
    EXPECT_EQ(run.code, 2);
    EXPECT_TRUE(run.err.contains("standard input is no terminal to ask on; expected --yes or --dry-run"));
    EXPECT_EQ(slave.counts().requests, 0u);
}

TEST_F(RestoreTest, AsksOnATerminal)
{
    const QString question = "Write 5 values to " + target() + "? [y/N]";
    for (const char *answer : {"n\r", "\r", "\x04", "nay\r", "ye\r"}) {
        PtyProgram program({"restore", path()});
        ASSERT_TRUE(program.waitForScreen([&](const Screen &screen) {
            return screen.text().contains(question);
        })) << program.output().toStdString();
        EXPECT_TRUE(program.screen().text().contains("1-HR5: is 0, becomes 7")) << "before it asks";
        program.type(answer);
        EXPECT_EQ(program.waitForEnd(), 1);
        EXPECT_TRUE(program.screen().text().contains("nothing is written"));
    }
    EXPECT_EQ(registers(), Values(9, 0));
    for (const char *answer : {"y\r", "YES\r"}) {
        setHoldingRegister(0, 0);
        PtyProgram program({"restore", path()});
        ASSERT_TRUE(
            program.waitForScreen([](const Screen &screen) { return screen.text().contains("[y/N]"); }));
        program.type(answer);
        EXPECT_EQ(program.waitForEnd(), 0) << program.output().toStdString();
        EXPECT_EQ(registers(), (Values{5, 6, 0, 0, 7, 0, 0, 0, 8}));
    }
}

TEST_F(RestoreTest, CtrlCIsNoYes)
{
    PtyProgram program({"restore", path()});
    ASSERT_TRUE(program.waitForScreen([](const Screen &screen) { return screen.text().contains("[y/N]"); }));
    program.type("\x03");
    EXPECT_EQ(program.waitForEnd(), 130);
    EXPECT_EQ(registers(), Values(9, 0));
}

TEST_F(RestoreTest, NeverWritesInputs)
{
    write("range 1-IR1..2\nIR1 5\nIR2 6\nrange 1-HR1\nHR1 4\nrange 1-DI1\nDI1 1\nend\n");
    const HostRun run = restore("--yes --format csv");
    EXPECT_EQ(run.code, 0) << run.err.toStdString();
    EXPECT_EQ(run.out, "station,address,offset,kept,now,result\n1,IR1,0,5,0,input\n1,IR2,1,6,0,input\n"
                       "1,HR1,0,4,0,verified\n1,DI1,0,1,0,input\n");
    EXPECT_TRUE(run.err.contains("\ninputs are never written; 3 of them differ\n")) << run.err.toStdString();
    EXPECT_TRUE(run.err.contains("\n1-HR1: is 0, becomes 4\n")) << "people still see what changes";
    EXPECT_EQ(slave.value(1, Area::InputRegisters, 0), 0);
}

TEST_F(RestoreTest, GoesToAnotherSlaveWhenToldSo)
{
    SlaveOptions options;
    options.stations = {7};
    SlaveThread other(options);
    ASSERT_TRUE(other.start());
    EXPECT_EQ(restore(QStringLiteral("rtutcp://127.0.0.1:%1/7 --yes").arg(other.port())).code, 0);
    EXPECT_EQ(other.value(7, Area::HoldingRegisters, 4), 7);
    EXPECT_EQ(slave.counts().requests, 0u);
}

TEST_F(RestoreTest, SaysWhatIsReadBackAsSomethingElse)
{
    ScriptedPeer peer([](ScriptedPeer &master) {
        master.receive(8); // HR1..2
        master.send(frameOf("01030400000000"));
        master.receive(13);
        master.send(frameOf("011000000002"));
        master.receive(8);
        master.send(frameOf("01030400050000"));
        master.receive(1); // nothing more
    });
    write("range 1-HR1..2\nHR1 5\nHR2 6\nend\n", QStringLiteral("rtutcp://127.0.0.1:%1/1").arg(peer.port()));
    const HostRun run = restore("--yes --format json");
    EXPECT_EQ(run.code, 7) << run.err.toStdString();
    EXPECT_TRUE(run.err.contains("\ndriverhost: 1-HR2: wrote 6, read back 0\nwritten and verified: 1-HR1\n"
                                 "written, and read back as something else: 1-HR2\n"))
        << run.err.toStdString();
    const QStringList rows = run.out.split('\n');
    EXPECT_EQ(QJsonDocument::fromJson(rows.value(1).toUtf8()).object().value("result"), "different");
    EXPECT_EQ(QJsonDocument::fromJson(rows.value(2).toUtf8())
                  .object()
                  .value("summary")
                  .toObject()
                  .value("verified"),
              1);
}

namespace
{

SlaveOptions faultyAt(const char *rule)
{
    SlaveOptions options;
    EXPECT_TRUE(options.faults.add(QLatin1String(rule)));
    return options;
}

} // namespace

// Two reads, then a write and its verification for each of HR1..2, HR5, HR9 and DO3: the fifth request is the
// write of HR5.
class BrokenRestoreTest : public RestoreTest
{
protected:
    BrokenRestoreTest() : RestoreTest(faultyAt("silence=1/5")) {}
};

TEST_F(BrokenRestoreTest, TellsExactlyWhereItStopped)
{
    const HostRun run = restore("--yes --timeout 60 --retries 0");
    EXPECT_EQ(run.code, 4);
    EXPECT_TRUE(run.err.contains("driverhost: 1-HR5: PLC no response")) << run.err.toStdString();
    EXPECT_TRUE(run.err.endsWith("\nwritten and verified: 1-HR1..2\n"
                                 "sent but not confirmed, perhaps written: 1-HR5\n"
                                 "not sent: 1-HR9 and 1-DO3\n"))
        << run.err.toStdString();
    EXPECT_EQ(holdingRegister(1), 6);
    EXPECT_EQ(holdingRegister(8), 0);
    const HostRun rest = restore();
    EXPECT_EQ(rest.code, 0) << "and the rest the next time";
    EXPECT_EQ(registers(), (Values{5, 6, 0, 0, 7, 0, 0, 0, 8}));
}

TEST_F(BrokenRestoreTest, HasItInItsRows)
{
    const HostRun run = restore("--yes --timeout 60 --retries 0 --format csv");
    EXPECT_EQ(run.code, 4);
    EXPECT_EQ(run.out, "station,address,offset,kept,now,result\n1,HR1,0,5,0,verified\n1,HR2,1,6,0,verified\n"
                       "1,HR5,4,7,0,unconfirmed\n1,HR9,8,8,0,not-sent\n1,DO3,2,1,0,not-sent\n");
}

TEST_F(BrokenRestoreTest, TellsTheSameAfterCtrlC)
{
    QProcess process;
    process.start(hostProgram(), {"restore", path(), "--yes", "--timeout", "600000"});
    ASSERT_TRUE(waitUntil([&] { return slave.counts().requests == 5; }));
    EXPECT_EQ(kill(static_cast<pid_t>(process.processId()), SIGINT), 0);
    ASSERT_TRUE(process.waitForFinished());
    EXPECT_EQ(process.exitCode(), 130);
    const QString errors = process.readAllStandardError();
    EXPECT_TRUE(errors.endsWith("driverhost: interrupted\nwritten and verified: 1-HR1..2\n"
                                "sent but not confirmed, perhaps written: 1-HR5\n"
                                "not sent: 1-HR9 and 1-DO3\n"))
        << errors.toStdString();
}

// The fourth request is the verification of HR1..2.
class BrokenVerificationTest : public RestoreTest
{
protected:
    BrokenVerificationTest() : RestoreTest(faultyAt("close=1/4")) {}
};

TEST_F(BrokenVerificationTest, SaysThatItIsWrittenAllTheSame)
{
    const HostRun run = restore("--yes --timeout 60 --retries 0");
    EXPECT_EQ(run.code, 4);
    EXPECT_TRUE(run.err.endsWith("\nwritten, not verified: 1-HR1..2\nnot sent: 1-HR5 and 1-HR9 and 1-DO3\n"))
        << run.err.toStdString();
}

namespace
{

SlaveOptions oldSlave()
{
    SlaveOptions options;
    options.functions = {1, 2, 3, 4, 5, 6};
    options.memory.addHole({1, Area::HoldingRegisters, 4, 4});
    options.limits.registers = 2;
    return options;
}

} // namespace

class OldSlaveRestoreTest : public RestoreTest
{
protected:
    OldSlaveRestoreTest() : RestoreTest(oldSlave()) {}
};

TEST_F(OldSlaveRestoreTest, IsWrittenOneByOne)
{
    const HostRun refused = restore();
    EXPECT_EQ(refused.code, 5);
    EXPECT_TRUE(refused.err.contains("\nrefused: 1-HR1..2\nnot sent: 1-HR9 and 1-DO3\n"))
        << refused.err.toStdString();
    EXPECT_TRUE(refused.err.contains("a slave without functions 15 and 16 is written with --one-by-one"));
    const HostRun run = restore("--yes --one-by-one");
    EXPECT_TRUE(run.err.contains("\n1-HR5: was 7, is missing; it cannot be put back\n"))
        << run.err.toStdString();
    EXPECT_TRUE(run.err.contains("\n4 values written and verified\n")) << run.err.toStdString();
    EXPECT_EQ(run.code, 10) << "HR5 is not as it was";
    EXPECT_EQ(registers(), (Values{5, 6, 0, 0, 0, 0, 0, 0, 8}));
}
