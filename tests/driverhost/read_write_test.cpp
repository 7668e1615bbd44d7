#include "desk/wire/rtu_frame.h"
#include "tests/driverhost/support/slave_test.h"
#include "tests/peers/tcp_peer.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

namespace
{

QStringList linesOf(const QString &text)
{
    return text.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

SlaveOptions withoutHR1000()
{
    SlaveOptions options;
    options.memory.addHole({0, Area::HoldingRegisters, 999, 999});
    return options;
}

} // namespace

class ReadWriteTest : public SlaveTest
{
protected:
    ReadWriteTest() : SlaveTest(withoutHR1000()) {}
};

TEST_F(ReadWriteTest, ReadsSeveralAddressesAsAlignedText)
{
    setHoldingRegister(99, 65535);
    slave.setValue(1, Area::InputRegisters, 2, 7);
    slave.setValue(1, Area::DiscreteInputs, 16, 1);
    const HostRun run = host(QStringLiteral("read TARGET HR100 IR3 DI17 HR100.15"));
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(run.out, QStringLiteral("address   offset  value\n"
                                      "HR100         99  65535\n"
                                      "IR3            2      7\n"
                                      "DI17          16      1\n"
                                      "HR100.15      99      1\n"));
    EXPECT_EQ(run.err, QString());
}

TEST_F(ReadWriteTest, FindsTheSlaveByNameAndByBothKindsOfAddresses)
{
    const QString port = QString::number(slave.port());
    EXPECT_EQ(host(QStringLiteral("read HR1 --host localhost --port ") + port).code, 0);
    EXPECT_EQ(host(QStringLiteral("read rtutcp://localhost:%1/1 HR1").arg(port)).code, 0);
    EXPECT_EQ(host(QStringLiteral("read --port %1 HR1 --station 9 --retries 0 --timeout 60").arg(port)).code,
              4);

    SlaveOptions options;
    options.address = QHostAddress::LocalHostIPv6;
    SlaveThread other(options);
    if (!other.start())
        GTEST_SKIP() << "no IPv6 here";
    EXPECT_EQ(host(QStringLiteral("read rtutcp://[::1]:%1/1 HR1").arg(other.port())).code, 0);
    EXPECT_EQ(host(QStringLiteral("read HR1 --host ::1 --port %1").arg(other.port())).code, 0);
}

TEST_F(ReadWriteTest, ReadsAsCsvAndJson)
{
    setHoldingRegister(9, 0xFFFE);
    EXPECT_EQ(host(QStringLiteral("read TARGET HR10 --as signed --format csv")).out,
              QStringLiteral("station,address,offset,kind,value,failure,error\n1,HR10,9,word,-2,,\n"));
    const QStringList lines =
        linesOf(host(QStringLiteral("read TARGET HR10 HR11 --as hex --format json")).out);
    ASSERT_EQ(lines.size(), 3) << "two values and the summary";
    const QJsonObject first = QJsonDocument::fromJson(lines.at(0).toUtf8()).object();
    EXPECT_EQ(first, (QJsonObject{{"station", 1},
                                  {"address", "HR10"},
                                  {"offset", 9},
                                  {"kind", "word"},
                                  {"value", 0xFFFE},
                                  {"text", "0xFFFE"}}));
}

TEST_F(ReadWriteTest, ReadsFloatsInBothWordOrders)
{
    setHoldingRegister(19, 0x3FC0);
    setHoldingRegister(20, 0x0000);
    EXPECT_EQ(linesOf(host(QStringLiteral("read TARGET HR20 --as float --word-order high")).out).value(1),
              QStringLiteral("HR20         19    1.5"));
    setHoldingRegister(19, 0x0000);
    setHoldingRegister(20, 0x3FC0);
    EXPECT_EQ(linesOf(host(QStringLiteral("read TARGET HR20 --as float")).out).value(1),
              QStringLiteral("HR20         19    1.5"));
}

TEST_F(ReadWriteTest, SplitsWhatOneRequestCannotCarryAndSaysSo)
{
    setHoldingRegister(299, 42);
    const HostRun run = host(QStringLiteral("read TARGET HR1 --count 300 --format csv"));
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(linesOf(run.out).size(), 301);
    EXPECT_EQ(linesOf(run.out).last(), QStringLiteral("1,HR300,299,word,42,,"));
    EXPECT_TRUE(run.err.contains(QLatin1String("in 3 portions"))) << run.err.toStdString();
    EXPECT_EQ(slave.counts().requests, 3u);
}

TEST_F(ReadWriteTest, ReadsBytesOfBitsWithoutAProject)
{
    slave.setValue(1, Area::Coils, 8, 1);
    slave.setValue(1, Area::Coils, 15, 1);
    EXPECT_EQ(
        linesOf(host(QStringLiteral("read TARGET DO1 --kind byte --count 2 --format csv")).out).value(2),
        QStringLiteral("1,DO9,8,byte,129,,"));
    EXPECT_EQ(linesOf(host(QStringLiteral("read TARGET DO9 --raw --kind byte --format csv")).out).value(1),
              QStringLiteral("1,DO9,,byte,129,,"));
}

TEST_F(ReadWriteTest, RefusesAddressesBeforeAnythingIsSent)
{
    for (const char *arguments : {"read TARGET RH10",
                                  "read TARGET HR1 HR0",
                                  "read TARGET HR65536 --count 2",
                                  "read TARGET HR1.16",
                                  "read TARGET",
                                  "read TARGET HR1 --kind nibble",
                                  "read TARGET HR1 --as octal",
                                  "read TARGET HR1 --device COM",
                                  "read TARGET HR1 --device 12",
                                  "read TARGET HR1 --count 0",
                                  "read TARGET HR1 --no-such-option",
                                  "read TARGET HR1 --delay 4295",
                                  "read rtutcp://[::1 HR1",
                                  "write TARGET HR1",
                                  "write TARGET HR1 65536",
                                  "write TARGET IR1 1",
                                  "write TARGET DI1 1",
                                  "write TARGET DO1 2",
                                  "write TARGET DO1 1 --kind byte",
                                  "write TARGET HR1 1.5",
                                  "write TARGET HR1 --kind dword 4294967296"}) {
        const HostRun run = host(QLatin1String(arguments));
        EXPECT_EQ(run.code, 2) << arguments;
        EXPECT_EQ(run.out, QString()) << arguments;
        EXPECT_TRUE(run.err.startsWith(QLatin1String("driverhost: "))) << arguments;
    }
    EXPECT_EQ(slave.counts().connections, 0u);
}

TEST_F(ReadWriteTest, HandsAnyTextOnWhenItIsToldTo)
{
    slave.setValue(1, Area::InputRegisters, 9, 5);
    const HostRun run = host(QStringLiteral("read TARGET --raw RH10"));
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(linesOf(run.out).value(1).simplified(), QStringLiteral("RH10 5"));
}

TEST_F(ReadWriteTest, TakesTheStationOutOfTheAddress)
{
    const HostRun run = host(QStringLiteral("read TARGET 2-HR100 --timeout 60 --retries 0"));
    EXPECT_EQ(run.code, 4);
    EXPECT_EQ(linesOf(run.err).value(0),
              QStringLiteral("driverhost: 2-HR100: PLC no response (read 1 word(s) from 2-HR100)"));
    EXPECT_EQ(slave.counts().foreign, 1u);
}

TEST_F(ReadWriteTest, TellsTheKindsOfFailureApart)
{
    const HostRun exception = host(QStringLiteral("read TARGET HR1000 --retries 0"));
    EXPECT_EQ(exception.code, 5);
    EXPECT_EQ(linesOf(exception.err).value(0),
              QStringLiteral("driverhost: HR1000: exception code:0x02 (read 1 word(s) from 1-HR1000)"));
    EXPECT_TRUE(linesOf(exception.err).value(1).startsWith(QLatin1String("  check: ")));

    slave.inject(Fault{Fault::WrongCrc, -1});
    EXPECT_EQ(host(QStringLiteral("read TARGET HR1 --retries 0")).code, 4);
    slave.inject(Fault{Fault::WrongCrc, -1});
    EXPECT_EQ(host(QStringLiteral("read TARGET HR1 --retries 1")).code, 0);

    slave.stop();
    const HostRun refused = host(QStringLiteral("read TARGET HR1 HR2"));
    EXPECT_EQ(refused.code, 3);
    EXPECT_EQ(refused.err.count(QLatin1String("cannot connect to 127.0.0.1")), 1);
}

TEST_F(ReadWriteTest, OneFailureDoesNotHideTheOtherValues)
{
    const HostRun run = host(QStringLiteral("read TARGET HR1 HR1000 HR2 --retries 0 --format csv"));
    EXPECT_EQ(run.code, 5);
    ASSERT_EQ(linesOf(run.out).size(), 4);
    EXPECT_EQ(linesOf(run.out).at(2),
              QStringLiteral("1,HR1000,999,word,,exception,exception code:0x02 (read 1 "
                             "word(s) from 1-HR1000)"));
}

TEST_F(ReadWriteTest, TellsWhenTheProjectIsNoUse)
{
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("project"));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("this is no database");
    file.close();
    const HostRun noDatabase = host(QStringLiteral("read TARGET HR1 --project ") + path);
    EXPECT_EQ(noDatabase.code, 6);
    EXPECT_EQ(linesOf(noDatabase.err).value(0), QStringLiteral("driverhost: HR1: can not open database"));
    ASSERT_TRUE(file.resize(0));
    EXPECT_EQ(linesOf(host(QStringLiteral("read TARGET HR1 --project ") + path).err).value(0),
              QStringLiteral("driverhost: HR1: failed to get default station id"));
    EXPECT_EQ(
        host(QStringLiteral("read TARGET HR1 --project ") + folder.filePath(QStringLiteral("none"))).code, 6);
    EXPECT_EQ(slave.counts().connections, 0u);
}

TEST_F(ReadWriteTest, WritesAndVerifies)
{
    const HostRun run = host(QStringLiteral("write TARGET HR100 1234 -5 0xff --verify"));
    EXPECT_EQ(run.code, 0) << run.err.toStdString();
    EXPECT_EQ(run.out, QString());
    EXPECT_TRUE(run.err.contains(QLatin1String("HR100: verified")));
    EXPECT_EQ(holdingRegister(99), 1234);
    EXPECT_EQ(holdingRegister(100), 0xFFFB);
    EXPECT_EQ(holdingRegister(101), 255);

    EXPECT_EQ(host(QStringLiteral("write TARGET HR1.3 on off on")).code, 0);
    EXPECT_EQ(holdingRegister(0), 0x28);
    EXPECT_EQ(host(QStringLiteral("write TARGET FN5DO9 1 0 1 --verify")).code, 0);
    EXPECT_EQ(slave.value(1, Area::Coils, 10), 1);
    EXPECT_EQ(host(QStringLiteral("write TARGET HR50 -0.5 --as float --word-order high --verify")).code, 0);
    EXPECT_EQ(holdingRegister(49), 0xBF00);
}

TEST_F(ReadWriteTest, VerifyNoticesADifference)
{
    // The device confirms the write and changes the value before it is read back.
    TcpPeer device;
    QProcess process;
    process.start(hostProgram(),
                  {QStringLiteral("write"), QStringLiteral("--port"), QString::number(device.port()),
                   QStringLiteral("HR1"), QStringLiteral("7"), QStringLiteral("--verify")});
    ASSERT_TRUE(device.accept());
    ASSERT_EQ(device.receive(11), withCrc(QByteArray::fromHex("011000000001020007")));
    ASSERT_TRUE(device.send(withCrc(QByteArray::fromHex("011000000001"))));
    ASSERT_EQ(device.receive(8), withCrc(QByteArray::fromHex("010300000001")));
    ASSERT_TRUE(device.send(withCrc(QByteArray::fromHex("0103020008"))));
    ASSERT_TRUE(process.waitForFinished());
    EXPECT_EQ(process.exitCode(), 7);
    EXPECT_TRUE(process.readAllStandardError().contains("HR1: wrote 7, read back 8"));
}
