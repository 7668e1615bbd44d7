#include "desk/link/write_report.h"

#include "desk/link/dry_run_channel.h"
#include "desk/wire/rtu_frame.h"
#include "tests/driverhost/support/slave_test.h"

namespace
{

SlaveOptions withHole()
{
    SlaveOptions options;
    options.memory.addHole({0, Area::HoldingRegisters, 102, 102});
    options.memory.addHole({0, Area::Coils, 3, 3});
    return options;
}

Exchange exchange(const char *request, const char *reply)
{
    const QByteArray answer = QByteArray::fromHex(reply);
    return {withCrc(QByteArray::fromHex(request)), answer.isEmpty() ? answer : withCrc(answer)};
}

} // namespace

QStringList reported(const char *address, int count, const std::vector<Exchange> &exchanges)
{
    Items items;
    items.address = *parseAddress(QLatin1String(address));
    items.kind = defaultKind(items.address);
    items.count = count;
    WriteReport report(typedItems(items, ValueForm::Unsigned));
    report.add(exchanges);
    return report.lines();
}

TEST(WriteReport, TellsConfirmedUnknownRefusedAndUnsentApart)
{
    const Exchange first = exchange("010600000001", "010600000001");
    const Exchange second = exchange("010600010002", "010600010002");
    const Exchange refused = exchange("010600020003", "018602");
    const Exchange silent = exchange("010600020003", "");
    EXPECT_EQ(reported("FN6HR1", 4, {first, second, refused}),
              (QStringList{"already written: HR1..2", "refused: HR3", "not sent: HR4"}));
    EXPECT_EQ(reported("2-FN6HR1", 3, {first, silent}),
              (QStringList{"already written: 2-HR1", "sent but not confirmed, perhaps written: 2-HR3",
                           "not sent: 2-HR2"}));
    EXPECT_EQ(reported("FN6HR1", 3, {silent, first, exchange("010600020003", "010600020003")}),
              (QStringList{"already written: HR1 and HR3", "not sent: HR2"}));
    EXPECT_EQ(reported("FN6HR3", 1, {silent, refused}),
              QStringList{"sent but not confirmed, perhaps written: HR3"})
        << "the first attempt may have been executed";
    EXPECT_EQ(reported("FN5DO8", 1, {exchange("010500070000", "010500070000")}),
              QStringList{"already written: DO8"});
    EXPECT_EQ(reported("HR5", 3, {exchange("01100004000306000000000000", "")}),
              QStringList{"sent but not confirmed, perhaps written: HR5..7"});
    EXPECT_EQ(reported("HR1.3", 1, {exchange("010300000001", "")}), QStringList{"not sent: HR1"});
}

TEST(WriteReport, AnItemIsAsFarAsItsLeastCertainRegister)
{
    Items items;
    items.address = *parseAddress(QStringLiteral("FN6HR1"));
    items.kind = DoubleWordItem;
    items.count = 3;
    WriteReport report(typedItems(items, ValueForm::Unsigned));
    EXPECT_FALSE(report.hasTouched());
    report.add({exchange("010600000001", "010600000001"), exchange("010600010001", "010600010001"),
                exchange("010600020001", "010600020001"), exchange("010600030001", "018602")});
    EXPECT_EQ(report.stateOf(0), WriteState::Written);
    EXPECT_EQ(report.stateOf(1), WriteState::Unconfirmed) << "half of it is written";
    EXPECT_EQ(report.stateOf(2), WriteState::NotSent);
    EXPECT_TRUE(report.hasTouched());
}

TEST(DryRunChannel, ConfirmsEveryRequestOfTheDriver)
{
    DryRunChannel channel(1, QStringLiteral("ETHERNET"));
    char reply[256] = {};
    const auto answerTo = [&](const char *request) {
        const QByteArray frame = withCrc(QByteArray::fromHex(request));
        EXPECT_EQ(channel.writeData(frame.constData(), int(frame.size())), frame.size());
        return QByteArray(reply, channel.readData(reply, 5)) +
               QByteArray(reply, channel.readData(reply, 200));
    };
    EXPECT_EQ(answerTo("010300000002"), withCrc(QByteArray::fromHex("01030400000000")));
    EXPECT_EQ(answerTo("010100000009"), withCrc(QByteArray::fromHex("0101020000")));
    EXPECT_EQ(answerTo("01100004000204AAAABBBB"), withCrc(QByteArray::fromHex("011000040002")));
    EXPECT_EQ(answerTo("010600041234"), withCrc(QByteArray::fromHex("010600041234")));
    EXPECT_EQ(channel.requests().size(), 4u);
}

class WriteReportTest : public SlaveTest
{
protected:
    WriteReportTest() : SlaveTest(withHole()) {}
};

TEST_F(WriteReportTest, AFailedWriteSaysWhatItHasWritten)
{
    const HostRun registers = host(QStringLiteral("write TARGET FN6HR101 1 2 3 4 --retries 1"));
    EXPECT_EQ(registers.code, 5);
    EXPECT_TRUE(registers.err.contains(QLatin1String("\n  already written: HR101..102\n")))
        << registers.err.toStdString();
    EXPECT_EQ(holdingRegister(101), 2);
    EXPECT_TRUE(host(QStringLiteral("write TARGET FN5DO3 1 1 1 --retries 0"))
                    .err.contains(QLatin1String("already written: DO3\n")));
    EXPECT_FALSE(host(QStringLiteral("write TARGET HR101 1 2 3 4 --retries 0"))
                     .err.contains(QLatin1String("written")));
    slave.inject(Fault{Fault::Silence, -1});
    EXPECT_TRUE(host(QStringLiteral("write TARGET HR1 1 2 --retries 0 --timeout 60"))
                    .err.contains(QLatin1String("perhaps written: HR1..2")));
}

TEST_F(WriteReportTest, ADryRunShowsTheFramesAndSendsNothing)
{
    const HostRun run = host(QStringLiteral("write TARGET FN6HR1 258 3 --dry-run"));
    EXPECT_EQ(run.code, 0);
    const QStringList lines = run.out.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    ASSERT_EQ(lines.size(), 2);
    EXPECT_TRUE(lines.at(0).startsWith(QLatin1String("01 06 00 00 01 02 "))) << lines.at(0).toStdString();
    EXPECT_TRUE(lines.at(1).startsWith(QLatin1String("01 06 00 01 00 03 "))) << lines.at(1).toStdString();
    EXPECT_TRUE(lines.at(1).contains(QLatin1String("HR2")));
    const HostRun bits = host(QStringLiteral("write TARGET 5-HR1.3 1 --dry-run"));
    EXPECT_TRUE(bits.out.startsWith(QLatin1String("05 03 00 00 00 01 "))) << bits.out.toStdString();
    EXPECT_TRUE(bits.out.contains(QLatin1String("\n05 10 00 00 00 01 02 00 08 ")));
    EXPECT_EQ(slave.counts().connections, 0u);
}

TEST_F(WriteReportTest, ABroadcastIsWarnedOf)
{
    const HostRun run = host(QStringLiteral("write TARGET 0-HR1 9 --retries 0 --timeout 60"));
    EXPECT_TRUE(run.err.startsWith(QLatin1String("station 0 is a broadcast"))) << run.err.toStdString();
    EXPECT_EQ(run.code, 0);
    EXPECT_TRUE(waitUntil([&] { return holdingRegister(0) == 9; }));
}

TEST_F(WriteReportTest, TheTraceHasALineForEachFrame)
{
    const HostRun run = host(QStringLiteral("write TARGET HR1 7 --verify --trace"));
    EXPECT_EQ(run.out, QString());
    EXPECT_EQ(run.err.count(QLatin1String(" > 01 10 ")), 1) << run.err.toStdString();
    EXPECT_EQ(run.err.count(QLatin1String(" < 01 10 00 00 00 01 ")), 1);
    EXPECT_EQ(run.err.count(QLatin1String(" > 01 03 00 00 00 01 84 0A  ")), 1);
    EXPECT_EQ(run.err.count(QLatin1String(" < 01 03 02 00 07 ")), 1) << "both stages of a reply on one line";
    slave.inject(Fault{Fault::JunkAfter, 2});
    const HostRun junk = host(QStringLiteral("read TARGET HR1 HR2 --trace"));
    EXPECT_EQ(junk.code, 0);
    EXPECT_EQ(junk.err.count(QLatin1String(" ! ")), 1) << junk.err.toStdString();
}

TEST_F(WriteReportTest, WhatOneRequestCannotCarryIsWrittenInPortions)
{
    QString values;
    for (int i = 1; i <= 300; ++i)
        values += QStringLiteral(" %1").arg(i);
    const HostRun run = host(QStringLiteral("write TARGET HR201") + values + QStringLiteral(" --verify"));
    EXPECT_EQ(run.code, 0) << run.err.toStdString();
    EXPECT_EQ(run.err, QStringLiteral(
                           "HR201: 300 items are more than one request carries; writing them in 3 portions, "
                           "one after the other\nHR201: wrote 300 items of kind word\nHR201: verified\n"));
    EXPECT_EQ(holdingRegister(200), 1);
    EXPECT_EQ(holdingRegister(499), 300);
    EXPECT_EQ(host(QStringLiteral("write TARGET HR201") + values + QStringLiteral(" --dry-run"))
                  .out.count(QLatin1String(" write multiple registers")),
              3);
}

TEST(WriteInPortions, ThatBreaksOffSaysWhatWasConfirmed)
{
    SlaveOptions options;
    ASSERT_TRUE(options.faults.add(QStringLiteral("silence=1/2")));
    SlaveThread slave(options);
    ASSERT_TRUE(slave.start());
    QStringList ones;
    while (ones.size() < 300)
        ones += QStringLiteral("1");
    const HostRun broken =
        runHost(QStringList{"write", QStringLiteral("rtutcp://127.0.0.1:%1/1").arg(slave.port()), "1-HR1",
                            "--retries", "0", "--timeout", "60"} +
                ones);
    EXPECT_EQ(broken.code, 4);
    EXPECT_TRUE(broken.err.contains(QLatin1String("driverhost: 1-HR124: PLC no response (")))
        << broken.err.toStdString();
    EXPECT_TRUE(broken.err.endsWith(QLatin1String("\n  already written: 1-HR1..123\n"
                                                  "  sent but not confirmed, perhaps written: 1-HR124..246\n"
                                                  "  not sent: 1-HR247..300\n")))
        << broken.err.toStdString();
}
