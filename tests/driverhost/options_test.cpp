#include "tests/driverhost/support/slave_test.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

// Options that do not fit together, and what else a command line may say.

class OptionsTest : public SlaveTest
{
protected:
    void expectRefusal(const QString &arguments, const char *text)
    {
        const HostRun run = host(arguments);
        EXPECT_EQ(run.code, 2) << arguments.toStdString();
        EXPECT_EQ(run.out, "") << arguments.toStdString();
        EXPECT_TRUE(run.err.contains(QLatin1String(text))) << arguments.toStdString() << '\n'
                                                           << run.err.toStdString();
    }
    QString file(const char *name, const QByteArray &text = {})
    {
        const QString path = folder.filePath(QLatin1String(name));
        QFile made(path);
        if (!text.isNull() && made.open(QIODevice::WriteOnly))
            made.write(text);
        return path;
    }
    QString makeProject(const QByteArray &list)
    {
        const QString path = folder.filePath("project");
        EXPECT_EQ(runHost({"project", "--force", "--make", file("list", list), path}).code, 0);
        return path;
    }

    QTemporaryDir folder;
};

TEST_F(OptionsTest, ThatWouldChangeWhatIsWrittenAreRefused)
{
    expectRefusal("write TARGET HR10 5 --word-order low",
                  "--word-order is for double words; expected --kind dword");
    expectRefusal("read TARGET HR10 --word-order high", "--word-order is for double words");
    expectRefusal("write TARGET HR10 0b11 --as hex", "value \"0b11\": binary, or hexadecimal? write 0x0b11");
    EXPECT_EQ(slave.counts().connections, 0u);
    EXPECT_EQ(host("write TARGET HR10 5 --kind dword --word-order high --verify").code, 0);
    EXPECT_EQ(holdingRegister(10), 5);
    EXPECT_EQ(host("write TARGET HR10 0b11").code, 0);
    EXPECT_EQ(holdingRegister(9), 3);
    EXPECT_EQ(host("write TARGET HR10 0x0B11 --as hex").code, 0);
    EXPECT_EQ(holdingRegister(9), 0x0B11);
}

TEST_F(OptionsTest, ThatMakeNoSenseWithTheOthersAreRefused)
{
    expectRefusal("write TARGET HR1 1 --dry-run --verify",
                  "--dry-run sends nothing that --verify could read back");
    expectRefusal("write TARGET 0-HR1 1 --retries 2", "--retries: a broadcast is sent once");
    expectRefusal("read TARGET HR1 --raw --word-order high", "--raw hands addresses on as they stand");
    expectRefusal("scan TARGET HR --probe HR2", "--probe goes with stations");
    expectRefusal("scan TARGET HR --passes 1", "--passes goes with stations");
    expectRefusal("scan stations --station 5", "--station: stations are all asked");
    expectRefusal("scan TARGET HR1..20 --to 30", "\"HR1..20\" says itself where it begins and ends");
    expectRefusal("tags TARGET --project x --interval 2", "--interval goes with --watch");
    expectRefusal("tags TARGET --project x --count 2", "--count goes with --watch");
    expectRefusal("slave --seed 2", "--seed goes with --fault");
}

TEST_F(OptionsTest, ThatSayWhatTheTargetSaysAreRefused)
{
    for (const char *option : {"--host localhost", "--port 502", "--station 2"})
        expectRefusal(QStringLiteral("read TARGET HR1 ") + option, " beside rtutcp://127.0.0.1:");
    EXPECT_EQ(slave.counts().connections, 0u);
}

TEST_F(OptionsTest, OfASlaveAreWhatItHas)
{
    expectRefusal("slave --functions 3,7", "this slave has no function 7; it has 1 to 6, 8, 15 and 16");
    expectRefusal("slave --functions 3-8", "this slave has no function 7");
    expectRefusal("slave --functions 43", "this slave has no function 43");
}

TEST_F(OptionsTest, RangesAreTakenWhereverAddressesAre)
{
    setHoldingRegister(4, 9);
    EXPECT_EQ(host("read TARGET HR4..5 DO1..2 --format csv").out,
              "station,address,offset,kind,value,failure,error\n1,HR4,3,word,0,,\n1,HR5,4,word,9,,\n"
              "1,DO1,0,bit,0,,\n1,DO2,1,bit,0,,\n");
    EXPECT_EQ(host("read TARGET HR4..5 --kind dword --format csv").out.section('\n', 1, 1),
              "1,HR4,3,dword,589824,,");
    EXPECT_EQ(host("read TARGET HR4..7:u32 --format csv").out.count('\n'), 3);
    EXPECT_EQ(host("watch TARGET 1-HR4..5 --count 1").out.count('\n'), 2);
    EXPECT_EQ(host("write TARGET HR1..3 7 8 9").code, 0);
    EXPECT_EQ(holdingRegister(2), 9);
    EXPECT_EQ(host("scan TARGET HR3..20 --delay 0").out, "HR3..20\n");
    EXPECT_EQ(host("scan TARGET stations --to 1 --probe HR1..5").out, "1  answers\n");
    const QString project = makeProject("link 1 ETHERNET\nnode 1 1 default 10.0.0.5:502\ntag 1 2-HR1..3\n");
    EXPECT_TRUE(runHost({"project", project}).out.endsWith("tag 1 2-HR1\ntag 1 2-HR2\ntag 1 2-HR3\n"));
}

TEST_F(OptionsTest, RangesSayThemselvesHowManyTheyAre)
{
    expectRefusal("read TARGET HR1..5 --count 3", "\"HR1..5\" holds 5 items, and not 3");
    expectRefusal("write TARGET HR1..5 1 2", "\"HR1..5\" holds 5 items, and not 2");
    expectRefusal("read TARGET HR1..5 --kind dword",
                  "\"HR1..5\": a dword takes 2 registers, and these are 5");
    expectRefusal("read TARGET HR1..5:f32", "\"HR1..5\": a f32 takes 2 registers, and these are 5");
    expectRefusal("read TARGET HR5..1",
                  "the last number of \"HR5..1\": \"1\": expected a whole number from 5");
    expectRefusal("read TARGET HR1.3..5", "\"HR1.3..5\": ranges are of whole registers");
    expectRefusal("read TARGET HR1..", "the last number of \"HR1..\"");
    expectRefusal("read TARGET XX1..5", "unknown area \"XX\"");
}

TEST_F(OptionsTest, ASlavesValuesMayStandForARange)
{
    const QString good = file("good", "HR1..3 = 1 2 3\n");
    const QString bad = file("bad", "HR1..3 = 1 2\n");
    expectRefusal("slave --values " + bad, "\"HR1..3\" are 3 addresses; expected as many values, and not 2");
    QProcess process;
    process.start(hostProgram(), {"slave", "--port", "0", "--values", good});
    EXPECT_TRUE(waitUntil([&] { return process.waitForReadyRead(10); }));
    process.kill();
    process.waitForFinished();
}

TEST_F(OptionsTest, AnIntervalOfNothingIsDocumented)
{
    EXPECT_TRUE(host("watch --help").out.simplified().contains("0: no pause"));
    EXPECT_EQ(host("watch TARGET HR1 --interval 0 --count 3").out.count('\n'), 3);
}

TEST_F(OptionsTest, AUnknownSchemeIsNamed)
{
    expectRefusal("read tcp://10.0.0.5:502 HR1",
                  "unknown scheme \"tcp\"; expected rtutcp, for RTU framing over TCP");
}

TEST_F(OptionsTest, OneThingIsNotSeveral)
{
    EXPECT_TRUE(host("write TARGET HR1 1").err.contains("wrote 1 item of kind word"));
    EXPECT_TRUE(host("watch TARGET HR1 --count 1").err.contains("\n1 transaction in "));
    EXPECT_TRUE(host("scan TARGET HR --to 1").err.startsWith("1 range found up to HR1\n"));
    EXPECT_TRUE(host("scan TARGET stations --to 1").err.startsWith("1 station answered\n"));
    expectRefusal("read TARGET HR65536 --kind dword", "1 item of kind dword would end beyond HR65536");
    slave.inject(Fault{Fault::Exception, 0x0B});
    EXPECT_TRUE(host("scan TARGET stations --to 1 --passes 1")
                    .err.contains("for 1 station the gateway answered that it is not there"));
    const QString project = makeProject("link 1 ETHERNET\nnode 1 1 default\n");
    EXPECT_TRUE(
        runHost({"project", "--why", "ETHERNET", project}).out.contains("table LINK: 1 row, 1 of them with"));
}

TEST_F(OptionsTest, AnEndpointIsNotMadeUp)
{
    const QString project = makeProject("link 1 ETHERNET\nnode 1 1 default\ntag 1 HR1\n");
    expectRefusal("tags --project " + project,
                  "the default node of link 1 has no endpoint; expected a target besides");
    EXPECT_EQ(host("tags TARGET --project " + project).code, 0);
    EXPECT_EQ(
        host(QStringLiteral("tags --host 127.0.0.1 --port %1 --project %2").arg(slave.port()).arg(project))
            .code,
        0);
}

TEST_F(OptionsTest, FilesMayBeginWithAMinusSign)
{
    const QString list = file("-1.txt", "link 1 ETHERNET\nnode 1 1 default\n");
    QProcess process;
    process.setWorkingDirectory(folder.path());
    process.start(hostProgram(), {"project", "--make", "-1.txt", "-1.db"});
    ASSERT_TRUE(process.waitForFinished());
    EXPECT_EQ(process.exitCode(), 0) << process.readAllStandardError().constData() << list.toStdString();
    EXPECT_TRUE(QFile::exists(folder.filePath("-1.db")));
    process.start(hostProgram(), {"read", target(), "HR1", "--project", "-1.db"});
    ASSERT_TRUE(process.waitForFinished());
    EXPECT_EQ(process.exitCode(), 0) << process.readAllStandardError().constData();
}

TEST_F(OptionsTest, ADirectoryIsCalledOne)
{
    const QString path = folder.path();
    for (const QString &arguments :
         {"read TARGET HR1 --project " + path, "tags TARGET --project " + path, "project " + path,
          "project --make " + path + " new", "slave --values " + path, "info --plugin " + path,
          "read TARGET HR1 --plugin " + path, "points --check " + path}) {
        const HostRun run = host(arguments);
        EXPECT_NE(run.code, 0) << arguments.toStdString();
        EXPECT_TRUE(run.err.contains(path + " is a directory"))
            << arguments.toStdString() << run.err.toStdString();
    }
}

TEST_F(OptionsTest, DatabasesAreSpokenOfInPlainWords)
{
    const QString empty = file("empty", "");
    EXPECT_EQ(host("project " + empty).err, "driverhost: " + empty + ": there is no table LINK\n");
    const QString text = file("text", "dear diary, today I was no database at all");
    EXPECT_EQ(host("project " + text).err, "driverhost: " + text + ": it is no SQLite database\n");
    const QString letter = file("letter", "x");
    EXPECT_EQ(host("project " + letter).err, "driverhost: " + letter + ": it is no SQLite database\n");
    EXPECT_TRUE(host("project --why ETHERNET " + empty)
                    .out.contains(
                        "\nthe file is there and empty, which SQLite takes for a database without tables\n"));
    EXPECT_TRUE(host("project --why ETHERNET " + empty).out.contains("\ntable LINK is at fault\n"));
    EXPECT_TRUE(host("project --why ETHERNET " + empty)
                    .out.contains("\ntable LINK cannot be read: there is no table LINK\n"));
}

TEST(Program, SaysItsVersion)
{
    const HostRun run = runHost({"--version"});
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(run.out, "driverhost 1.0.0\n");
}

TEST(Program, HelpsWithASubcommand)
{
    EXPECT_EQ(runHost({"help", "read"}).out, runHost({"read", "--help"}).out);
    EXPECT_EQ(runHost({"help"}).out, runHost({"--help"}).out);
    EXPECT_EQ(runHost({"help", "frobnicate"}).code, 2);
}

TEST(Program, DoesNotTakeHelpForPrintedThatIsNot)
{
    if (!QFile::exists("/dev/full"))
        GTEST_SKIP() << "no full device here";
    for (const QStringList &arguments : {QStringList{"--help"}, QStringList{"read", "--help"},
                                         QStringList{"help", "scan"}, QStringList{"--version"}}) {
        QProcess process;
        process.setStandardOutputFile("/dev/full");
        process.start(hostProgram(), arguments);
        ASSERT_TRUE(process.waitForFinished());
        EXPECT_EQ(process.exitCode(), 141) << arguments.join(' ').toStdString();
        EXPECT_TRUE(process.readAllStandardError().contains("No space left on device"));
    }
}
