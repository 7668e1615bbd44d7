#include "desk/wire/trace.h"
#include "tests/driverhost/interop/pymodbus_slave.h"
#include "tests/driverhost/support/host_program.h"
#include "tests/peers/dissector.h"
#include "tests/peers/driver_link.h"
#include "tests/peers/exercise.h"
#include "tests/peers/raw_master.h"

#include <gtest/gtest.h>

#include <QSet>

// The driver against a slave that nobody here wrote, and its frames before a judge that nobody here wrote.

namespace
{

class Interop : public testing::Test
{
protected:
    static void SetUpTestSuite() { slave = new PymodbusSlave; }
    static void TearDownTestSuite()
    {
        delete slave;
        slave = nullptr;
    }

    void SetUp() override
    {
        ASSERT_NE(0, slave->port())
            << "wants python3-pymodbus, python3-serial and python3-serial-asyncio for " << PymodbusPython;
        ASSERT_TRUE(layProjectBesideProgram(exerciseTags()));
        link = std::make_unique<DriverLink>(channelTo(slave->port(), 10000));
        link->channel().setObserver([this](ChannelEvent event, const QByteArray &bytes) {
            if (event == ChannelEvent::Sent)
                trace.sent(bytes);
            if (event == ChannelEvent::Received)
                trace.received(bytes);
        });
    }

    static PymodbusSlave *slave;
    QStringList lines;
    MasterTrace trace{[this](const QString &line) { lines.append(line); }};
    std::unique_ptr<DriverLink> link;
};

PymodbusSlave *Interop::slave = nullptr;

TEST_F(Interop, EveryFunctionReadsAndWrites)
{
    exerciseEveryFunction(*link);
}

TEST_F(Interop, StationsAreApart)
{
    EXPECT_TRUE(link->writeWords("HR3001", {5}));
    link->channel().setStation(2);
    EXPECT_EQ(std::vector<int>{0}, link->readWords("HR3001"));
    EXPECT_EQ(std::vector<int>{exerciseInputRegister(9, 2)}, link->readWords("IR10"));
}

TEST_F(Interop, RefusalsOfTheSlave)
{
    EXPECT_TRUE(link->read(Bits, 2008, "DO1").isEmpty());
    EXPECT_EQ("exception code:0x03", link->error());
    EXPECT_FALSE(link->write(Bits, 1976, "DO1", QByteArray(247, '\0')));
    EXPECT_EQ("exception code:0x03", link->error());
    EXPECT_EQ(std::vector<int>{exerciseInputRegister(9, 1)}, link->readWords("IR10"));
}

TEST_F(Interop, SilenceOfForeignStationsAndBroadcasts)
{
    DriverLink hasty(channelTo(slave->port(), 200));
    hasty.channel().setStation(9);
    EXPECT_TRUE(hasty.readWords("HR1").empty());
    EXPECT_EQ("PLC no response", hasty.error());
    hasty.channel().setStation(0);
    EXPECT_FALSE(hasty.writeWords("HR3010", {77}));
    EXPECT_EQ("PLC no response", hasty.error());
    EXPECT_EQ(std::vector<int>{77}, link->readWords("HR3010"));
}

// Every frame of the above is what its direction says, whole and with a good CRC.
TEST_F(Interop, EveryFrameStandsBeforeTheDissector)
{
    exerciseEveryFunction(*link);
    link->read(Bits, 2008, "DO1");
    link->channel().setStation(2);
    link->readWords("IR10");

    QString error;
    const QList<DissectedFrame> frames = dissect(lines, error);
    ASSERT_EQ("", error);
    ASSERT_EQ(lines.size(), frames.size());
    QSet<int> functions;
    for (int i = 0; i < frames.size(); ++i) {
        const QString &line = lines.at(i);
        const bool isSent = line.contains(" > ");
        EXPECT_TRUE(frames.at(i).hasGoodCrc) << line.toStdString();
        EXPECT_FALSE(frames.at(i).isMalformed) << line.toStdString();
        EXPECT_EQ(isSent, frames.at(i).isQuery) << line.toStdString();
        EXPECT_EQ(!isSent, frames.at(i).isResponse) << line.toStdString();
        functions.insert(frames.at(i).function);
    }
    EXPECT_EQ((QSet<int>{1, 2, 3, 4, 5, 6, 15, 16}), functions);
}

// The judge does distinguish good frames from bad ones.
TEST_F(Interop, TheDissectorSeesBadFrames)
{
    const QDateTime now = QDateTime::currentDateTime();
    const auto line = [&](FrameDirection direction, const QByteArray &bytes) {
        return traceLine(now, direction, bytes, QString());
    };
    QByteArray badCrc = frameOf("010300000001");
    badCrc[7] = static_cast<char>(badCrc.at(7) ^ 1);
    QString error;
    const QList<DissectedFrame> frames =
        dissect({line(FrameDirection::Sent, frameOf("010300000001")), line(FrameDirection::Sent, badCrc),
                 line(FrameDirection::Received, frameOf("0103020001")),
                 line(FrameDirection::Received, frameOf("01830201"))},
                error);
    ASSERT_EQ("", error);
    ASSERT_EQ(4, frames.size());
    EXPECT_TRUE(frames.at(0).hasGoodCrc && frames.at(0).isQuery);
    EXPECT_FALSE(frames.at(1).hasGoodCrc);
    EXPECT_TRUE(frames.at(2).hasGoodCrc && frames.at(2).isResponse);
    EXPECT_EQ(3, frames.at(2).function);
}

// The same through the program itself, with the trace that it writes.
TEST_F(Interop, TheProgramAndItsTrace)
{
    const QString target = QStringLiteral("rtutcp://127.0.0.1:%1/1").arg(slave->port());
    const HostRun written = runHost({"write", target, "HR3020", "4660", "--trace"});
    EXPECT_EQ(0, written.code) << written.err.toStdString();
    const HostRun read = runHost({"read", target, "HR3020", "IR10", "DI10", "--trace"});
    EXPECT_EQ(0, read.code) << read.err.toStdString();
    EXPECT_TRUE(read.out.contains("4660")) << read.out.toStdString();
    EXPECT_TRUE(read.out.contains(QString::number(exerciseInputRegister(9, 1)))) << read.out.toStdString();

    QString error;
    const QList<DissectedFrame> frames = dissect((written.err + read.err).split('\n'), error);
    ASSERT_EQ("", error);
    ASSERT_EQ(2 * 4, frames.size());
    for (const DissectedFrame &frame : frames)
        EXPECT_TRUE(frame.hasGoodCrc && !frame.isMalformed);
}

} // namespace
