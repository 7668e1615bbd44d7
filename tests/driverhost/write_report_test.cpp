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

TEST(WriteReport, TellsConfirmedUnknownAndRefusedApart)
{
    const Exchange first = exchange("010600000001", "010600000001");
    const Exchange second = exchange("010600010002", "010600010002");
    const Exchange refused = exchange("010600020003", "018602");
    const Exchange silent = exchange("010600020003", "");
    EXPECT_EQ(writtenBeforeFailure({first, second, refused}), QStringList{"already written: HR1..2"});
    EXPECT_EQ(writtenBeforeFailure({first, silent}),
              (QStringList{"already written: HR1", "sent but not confirmed, perhaps written: HR3"}));
    EXPECT_EQ(writtenBeforeFailure({silent, first, exchange("010600020003", "010600020003")}),
              QStringList{"already written: HR1 and HR3"});
    EXPECT_EQ(writtenBeforeFailure({exchange("010500070000", "010500070000")}),
              QStringList{"already written: DO8"});
    EXPECT_EQ(writtenBeforeFailure({exchange("01100004000306000000000000", "")}),
              QStringList{"sent but not confirmed, perhaps written: HR5..7"});
    EXPECT_TRUE(writtenBeforeFailure({refused}).isEmpty());
    EXPECT_TRUE(writtenBeforeFailure({exchange("010300000001", "")}).isEmpty());
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
