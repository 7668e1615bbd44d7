#include "host/support/host_program.h"
#include "host/support/raw_master.h"
#include "slave/slave_thread.h"
#include "trace_frame.h"

#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QMutex>
#include <QStringList>

#include <memory>
#include <ostream>
#include <thread>
#include <utility>
#include <vector>

namespace
{

// Long enough to notice a reply that should not come; a test that waits for one waits much longer.
const int Silence = 50;

struct RunningSlave : SlaveThread {
    explicit RunningSlave(const SlaveOptions &slaveOptions = SlaveOptions()) : SlaveThread(slaveOptions)
    {
        EXPECT_TRUE(start()) << errorString().toStdString();
    }
};

TEST(EmbeddedSlave, ReadsCoilsAndDiscreteInputs)
{
    RunningSlave slave;
    slave.setValue(1, SlaveArea::Coils, 16, 1);
    slave.setValue(1, SlaveArea::Coils, 25, 1);
    slave.setValue(1, SlaveArea::DiscreteInputs, 17, 1);
    RawMaster master(slave.port());
    EXPECT_EQ("0101020102", master.ask("01010010000A"));
    EXPECT_EQ("0102020200", master.ask("01020010000A"));
}

TEST(EmbeddedSlave, ReadsRegisters)
{
    RunningSlave slave;
    slave.setValue(1, SlaveArea::HoldingRegisters, 99, 0x1234);
    slave.setValue(1, SlaveArea::InputRegisters, 100, 0xABCD);
    RawMaster master(slave.port());
    EXPECT_EQ("01030412340000", master.ask("010300630002"));
    EXPECT_EQ("0104040000ABCD", master.ask("010400630002"));
}

TEST(EmbeddedSlave, WritesSingleItems)
{
    RunningSlave slave;
    RawMaster master(slave.port());
    EXPECT_EQ("01050007FF00", master.ask("01050007FF00"));
    EXPECT_EQ(1, slave.value(1, SlaveArea::Coils, 7));
    EXPECT_EQ("010101C0", (master.ask("01050006FF00"), master.ask("010100000008")));
    EXPECT_EQ("010500070000", master.ask("010500070000"));
    EXPECT_EQ(0, slave.value(1, SlaveArea::Coils, 7));
    EXPECT_EQ("01060007BEEF", master.ask("01060007BEEF"));
    EXPECT_EQ(0xBEEF, slave.value(1, SlaveArea::HoldingRegisters, 7));
}

TEST(EmbeddedSlave, WritesRuns)
{
    RunningSlave slave;
    RawMaster master(slave.port());
    EXPECT_EQ("010F0003000A", master.ask("010F0003000A024D02"));
    EXPECT_EQ("0101024D02", master.ask("01010003000A"));
    EXPECT_EQ("011000030002", master.ask("0110000300020400011234"));
    EXPECT_EQ(1, slave.value(1, SlaveArea::HoldingRegisters, 3));
    EXPECT_EQ(0x1234, slave.value(1, SlaveArea::HoldingRegisters, 4));
    EXPECT_EQ(0, slave.value(1, SlaveArea::InputRegisters, 4));
}

TEST(EmbeddedSlave, EveryAreaGoesUpToTheLastAddress)
{
    RunningSlave slave;
    RawMaster master(slave.port());
    EXPECT_EQ("0106FFFF1234", master.ask("0106FFFF1234"));
    EXPECT_EQ("0103021234", master.ask("0103FFFF0001"));
    EXPECT_EQ("0105FFFFFF00", master.ask("0105FFFFFF00"));
    EXPECT_EQ("01010101", master.ask("0101FFFF0001"));
    EXPECT_EQ("01020100", master.ask("0102FFFF0001"));
    EXPECT_EQ("0104020000", master.ask("0104FFFF0001"));
    for (const char *beyond : {"0101FFFF0002", "0102FFFF0002", "0103FFFF0002", "0104FFFF0002"})
        EXPECT_EQ("02", master.ask(beyond).mid(4)) << beyond;
}

TEST(EmbeddedSlave, RefusesWhatTheProtocolRefuses)
{
    RunningSlave slave;
    RawMaster master(slave.port());
    EXPECT_EQ("018303", master.ask("010300000000"));
    EXPECT_EQ("018303", master.ask("01030000007E"));
    EXPECT_EQ("018103", master.ask("0101000007D1"));
    EXPECT_EQ("018503", master.ask("010500000001"));
    EXPECT_EQ("01E301", master.ask("01630102"));
    EXPECT_EQ(5u, slave.counts().exceptions);
}

TEST(EmbeddedSlave, LargestRequests)
{
    RunningSlave slave;
    RawMaster master(slave.port());
    EXPECT_EQ(2 * (3 + 250), master.ask("01030000007D").size());
    EXPECT_EQ(2 * (3 + 250), master.ask("0101000007D0").size());
    const QByteArray registers = "01100000007BF6" + QByteArray(246 * 2, '1');
    EXPECT_EQ("01100000007B", master.ask(registers.constData()));
    EXPECT_EQ(0x1111, slave.value(1, SlaveArea::HoldingRegisters, 122));
    EXPECT_EQ(0, slave.value(1, SlaveArea::HoldingRegisters, 123));
}

TEST(EmbeddedSlave, RequestsInAnyPieces)
{
    RunningSlave slave;
    RawMaster master(slave.port());
    for (const char byte : frameOf("010600010102"))
        master.send(QByteArray(1, byte));
    EXPECT_EQ(frameOf("010600010102"), master.receive(8));

    master.send(frameOf("010600020304") + frameOf("010300010002") + frameOf("01060003").left(3));
    EXPECT_EQ(frameOf("010600020304") + frameOf("01030401020304"), master.receive(8 + 9));
}

TEST(EmbeddedSlave, GoesOnAfterNoise)
{
    RunningSlave slave;
    RawMaster master(slave.port());
    master.send("noise");
    EXPECT_EQ("010600010102", master.ask("010600010102"));
    QByteArray broken = frameOf("010600010506");
    broken[7] = static_cast<char>(broken.at(7) ^ 0x40);
    master.send(broken);
    EXPECT_EQ("0103020102", master.ask("010300010001"));
    EXPECT_EQ(quint64(5 + 8), slave.counts().droppedBytes);
}

// The begin of a large write swallows what follows until the line has been silent.
TEST(EmbeddedSlave, GoesOnAfterAnUnfinishedRequest)
{
    RunningSlave slave;
    RawMaster master(slave.port());
    master.send(QByteArray::fromHex("01100000007BF6"));
    master.send(frameOf("010300010001"));
    EXPECT_EQ(frameOf("0103020000"), master.receive(7));
}

// More than all buffers on the way hold: the slave waits until somebody reads.
TEST(EmbeddedSlave, ManyRequestsBeforeTheFirstReplyIsRead)
{
    const int requests = 50000;
    const int replySize = 5 + 250;
    RunningSlave slave;
    RawMaster master(slave.port());
    std::thread sender([&master] { master.send(frameOf("01030000007D").repeated(requests)); });
    const auto isStuck = [&slave, last = quint64(0)]() mutable {
        const quint64 now = slave.counts().requests;
        return now > 0 && std::exchange(last, now) == now;
    };
    EXPECT_TRUE(waitUntil(isStuck));
    EXPECT_LT(slave.counts().requests, quint64(requests));
    EXPECT_EQ(requests * replySize, master.receive(requests * replySize, 60000).size());
    sender.join();
    EXPECT_EQ("0103020000", master.ask("010300010001"));
}

TEST(EmbeddedSlave, StationsHaveTheirOwnMemory)
{
    SlaveOptions options;
    options.stations = {1, 5};
    RunningSlave slave(options);
    RawMaster master(slave.port());
    EXPECT_EQ("050600010055", master.ask("050600010055"));
    EXPECT_EQ("0503020055", master.ask("050300010001"));
    EXPECT_EQ("0103020000", master.ask("010300010001"));
}

TEST(EmbeddedSlave, IsSilentForOtherStations)
{
    RunningSlave slave;
    RawMaster master(slave.port());
    master.send(frameOf("020300010001"));
    EXPECT_TRUE(master.isSilent(Silence));
    EXPECT_EQ("0103020000", master.ask("010300010001"));
    EXPECT_EQ(1u, slave.counts().foreign);
}

TEST(EmbeddedSlave, ExecutesBroadcastsWithoutAReply)
{
    SlaveOptions options;
    options.stations = {1, 2};
    RunningSlave slave(options);
    RawMaster master(slave.port());
    master.send(frameOf("000600010077"));
    EXPECT_TRUE(master.isSilent(Silence));
    EXPECT_EQ("0103020077", master.ask("010300010001"));
    EXPECT_EQ(0x77, slave.value(2, SlaveArea::HoldingRegisters, 1));
    EXPECT_EQ(1u, slave.counts().broadcasts);
}

TEST(EmbeddedSlave, SeveralConnections)
{
    RunningSlave slave;
    std::vector<std::unique_ptr<RawMaster>> masters;
    for (int i = 0; i < 20; ++i)
        masters.push_back(std::make_unique<RawMaster>(slave.port()));
    masters.front()->send(frameOf("010300010001").left(5));
    EXPECT_EQ("010600010102", masters.back()->ask("010600010102"));
    for (size_t i = 1; i < masters.size(); ++i)
        EXPECT_EQ("0103020102", masters.at(i)->ask("010300010001"));
    masters.front()->send(frameOf("010300010001").mid(5));
    EXPECT_EQ(frameOf("0103020102"), masters.front()->receive(7));
    EXPECT_EQ(20u, slave.counts().connections);
}

TEST(EmbeddedSlave, HolesGetExceptionTwo)
{
    SlaveOptions options;
    options.memory.addHole({0, SlaveArea::HoldingRegisters, 10, 12});
    options.memory.addHole({0, SlaveArea::Coils, 5, 5});
    options.memory.addHole({2, SlaveArea::InputRegisters, 0, 65535});
    RunningSlave slave(options);
    RawMaster master(slave.port());
    EXPECT_EQ("0103020000", master.ask("010300090001"));
    EXPECT_EQ("018302", master.ask("0103000A0001"));
    EXPECT_EQ("018302", master.ask("010300090002"));
    EXPECT_EQ("018302", master.ask("0103000C0002"));
    EXPECT_EQ("0103020000", master.ask("0103000D0001"));
    EXPECT_EQ("018602", master.ask("0106000B0001"));
    EXPECT_EQ(0, slave.value(1, SlaveArea::HoldingRegisters, 11));
    EXPECT_EQ("019002", master.ask("01100009000204AAAABBBB"));
    EXPECT_EQ(0, slave.value(1, SlaveArea::HoldingRegisters, 9));
    EXPECT_EQ("018102", master.ask("010100000008"));
    EXPECT_EQ("01020100", master.ask("010200000008"));
    EXPECT_EQ("0104020000", master.ask("010400000001"));
}

TEST(EmbeddedSlave, LimitsBelowTheProtocols)
{
    SlaveOptions options;
    options.limits.registers = 10;
    options.limits.bits = 16;
    RunningSlave slave(options);
    RawMaster master(slave.port());
    EXPECT_EQ(2 * (3 + 20), master.ask("01030000000A").size());
    EXPECT_EQ("018303", master.ask("01030000000B"));
    EXPECT_EQ("018403", master.ask("01040000000B"));
    EXPECT_EQ("0101020000", master.ask("010100000010"));
    EXPECT_EQ("018103", master.ask("010100000011"));
    EXPECT_EQ("018203", master.ask("010200000011"));
    EXPECT_EQ("018F03", master.ask("010F0000001103FFFFFF"));
    const QByteArray elevenRegisters = "01100000000B16" + QByteArray(22 * 2, '0');
    EXPECT_EQ("019003", master.ask(elevenRegisters.constData()));
}

TEST(EmbeddedSlave, OnlySomeFunctions)
{
    SlaveOptions options;
    options.functions = {3, 6};
    RunningSlave slave(options);
    RawMaster master(slave.port());
    EXPECT_EQ("010600010102", master.ask("010600010102"));
    EXPECT_EQ("019001", master.ask("01100000000102AAAA"));
    EXPECT_EQ("018101", master.ask("010100000001"));
}

TEST(EmbeddedSlave, StartsWithTheValuesOfItsMemory)
{
    SlaveOptions options;
    options.stations = {1, 2};
    options.memory.setValue(0, SlaveArea::HoldingRegisters, 0, 7);
    options.memory.setValue(2, SlaveArea::HoldingRegisters, 0, 8);
    options.memory.setValue(0, SlaveArea::DiscreteInputs, 65535, 1);
    RunningSlave slave(options);
    RawMaster master(slave.port());
    EXPECT_EQ("0103020007", master.ask("010300000001"));
    EXPECT_EQ("0203020008", master.ask("020300000001"));
    EXPECT_EQ("02020101", master.ask("0202FFFF0001"));
}

TEST(EmbeddedSlave, TakesItsTimeForEveryReply)
{
    SlaveOptions options;
    options.latencyMs = 40;
    RunningSlave slave(options);
    RawMaster master(slave.port());
    QElapsedTimer clock;
    clock.start();
    master.send(frameOf("010600010102") + frameOf("010300010001"));
    EXPECT_EQ(frameOf("010600010102"), master.receive(8));
    EXPECT_GE(clock.elapsed(), 40);
    EXPECT_EQ(frameOf("0103020102"), master.receive(7));
    EXPECT_GE(clock.elapsed(), 80);
}

TEST(EmbeddedSlave, SendsABannerOnEveryConnection)
{
    SlaveOptions options;
    options.banner = "gateway 1.0\r\n";
    RunningSlave slave(options);
    for (int i = 0; i < 2; ++i) {
        RawMaster master(slave.port());
        EXPECT_EQ(options.banner, master.receive(options.banner.size()));
        EXPECT_EQ("0103020000", master.ask("010300010001"));
    }
}

TEST(EmbeddedSlave, StopClosesConnectionsAndPort)
{
    RunningSlave slave;
    RawMaster master(slave.port());
    EXPECT_EQ("010600010102", master.ask("010600010102"));
    const quint16 port = slave.port();
    slave.stop();
    EXPECT_EQ(RawMaster::End::Closed, master.waitForEnd());
    EXPECT_FALSE(RawMaster(port).isConnected());
    slave.stop();
}

TEST(EmbeddedSlave, StartsAgainOnTheSamePort)
{
    RunningSlave slave;
    const quint16 port = slave.port();
    RawMaster before(port);
    EXPECT_EQ("010600010102", before.ask("010600010102"));
    slave.stop();
    ASSERT_TRUE(slave.start()) << slave.errorString().toStdString();
    EXPECT_EQ(port, slave.port());
    RawMaster after(port);
    EXPECT_EQ("0103020000", after.ask("010300010001"));
}

TEST(EmbeddedSlave, StopsWithAReplyOnItsWay)
{
    SlaveOptions options;
    options.latencyMs = 60000;
    RunningSlave slave(options);
    RawMaster master(slave.port());
    master.send(frameOf("010600010102"));
    while (slave.counts().requests == 0)
        QThread::yieldCurrentThread();
    slave.stop();
    EXPECT_EQ(RawMaster::End::Closed, master.waitForEnd());
}

TEST(EmbeddedSlave, SaysWhyItCannotListen)
{
    RunningSlave slave;
    SlaveOptions options;
    options.port = slave.port();
    SlaveThread second(options);
    EXPECT_FALSE(second.start());
    EXPECT_FALSE(second.isRunning());
    EXPECT_FALSE(second.errorString().isEmpty());
}

TEST(EmbeddedSlave, ListensOnLoopbackUnlessTold)
{
    EXPECT_TRUE(SlaveOptions().address.isLoopback());
}

TEST(EmbeddedSlave, TracesWhatItDoes)
{
    QMutex mutex;
    QStringList lines;
    SlaveOptions options;
    options.trace = [&](const QString &line) {
        const QMutexLocker locker(&mutex);
        lines.append(line.mid(int(qstrlen("12:34:56.789 "))));
    };
    RunningSlave slave(options);
    slave.inject({Fault::WrongCrc, -1});
    {
        RawMaster master(slave.port());
        master.send(frameOf("010600010102"));
        master.receive(8);
        master.send("xy" + frameOf("010300010001"));
        master.receive(7);
    }
    slave.stop();
    ASSERT_GE(lines.size(), 6);
    EXPECT_TRUE(lines.at(0).startsWith("- #1 connected from 127.0.0.1 port "));
    EXPECT_EQ("< 01 06 00 01 01 02 58 5B  #1 station 1, write single register, HR2 (offset 1, quantity 1), "
              "value 258, CRC good",
              lines.at(1).toStdString());
    EXPECT_TRUE(lines.at(2).startsWith("> 01 06 00 01 01 02 "));
    EXPECT_TRUE(lines.at(2).contains("#1 [wrong-crc] station 1, write single register"));
    EXPECT_TRUE(lines.at(2).endsWith("CRC bad"));
    EXPECT_TRUE(lines.at(3).startsWith("! 78 79  #1 no request: "));
    EXPECT_TRUE(lines.at(4).startsWith("< 01 03 "));
    EXPECT_TRUE(lines.at(5).startsWith("> 01 03 02 01 02 "));
}

} // namespace
