#include "desk/wire/rtu_frame.h"
#include "drivers/qt/qt_lines.h"
#include "tests/peers/raw_master.h"
#include "tests/peers/running_slave.h"
#include "tests/peers/text_printing.h"
#include "tests/peers/waiting.h"

#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QMutex>
#include <QStringList>

#include <memory>
#include <thread>
#include <utility>
#include <vector>

namespace
{

TEST(SlaveConnection, ManyRequestsBeforeTheFirstReplyIsRead)
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

TEST(SlaveConnection, SeveralConnections)
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

TEST(SlaveConnection, TakesItsTimeForEveryReply)
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

TEST(SlaveConnection, SendsABannerOnEveryConnection)
{
    SlaveOptions options;
    options.gateway.banner = "gateway 1.0\r\n";
    RunningSlave slave(options);
    for (int i = 0; i < 2; ++i) {
        RawMaster master(slave.port());
        EXPECT_EQ(options.gateway.banner, master.receive(sizeOf(options.gateway.banner)));
        EXPECT_EQ("0103020000", master.ask("010300010001"));
    }
}

TEST(SlaveConnection, SendsHeartbeats)
{
    SlaveOptions options;
    options.gateway.heartbeat = "alive";
    options.gateway.heartbeatMs = 20;
    RunningSlave slave(options);
    RawMaster master(slave.port());
    QElapsedTimer clock;
    clock.start();
    EXPECT_EQ("alivealive", master.receive(10));
    EXPECT_GE(clock.elapsed(), 35);
}

TEST(SlaveConnection, SendsNoHeartbeatIntoAReply)
{
    SlaveOptions options;
    options.gateway.heartbeat = "alive";
    options.gateway.heartbeatMs = 5;
    RunningSlave slave(options);
    slave.inject({Fault::Split, 20});
    RawMaster master(slave.port());
    master.send(frameOf("010300010001"));
    const QByteArray reply = frameOf("0103020000");
    QByteArray received;
    EXPECT_TRUE(waitUntil([&] {
        received += master.receive(1);
        return received.contains(reply);
    })) << received.toHex().constData();
}

TEST(SlaveConnection, HoldsItsOnlySlot)
{
    SlaveOptions options;
    options.gateway.slotHeldMs = 60;
    RunningSlave slave(options);
    auto first = std::make_unique<RawMaster>(slave.port());
    EXPECT_EQ("0103020000", first->ask("010300010001"));
    EXPECT_NE(RawMaster::End::StillOpen, RawMaster(slave.port()).waitForEnd());
    first.reset();
    EXPECT_TRUE(waitUntil([&] { return RawMaster(slave.port()).ask("010300010001") == "0103020000"; }));
    EXPECT_GE(slave.counts().rejected, 1u);
    EXPECT_EQ(2u, slave.counts().connections);
}

TEST(SlaveConnection, ClosesWhatIsIdle)
{
    SlaveOptions options;
    options.gateway.idleCloseMs = 60;
    RunningSlave slave(options);
    RawMaster master(slave.port());
    QElapsedTimer clock;
    clock.start();
    EXPECT_EQ("0103020000", master.ask("010300010001"));
    EXPECT_EQ(RawMaster::End::Closed, master.waitForEnd());
    EXPECT_GE(clock.elapsed(), 55);
}

TEST(SlaveConnection, StopClosesConnectionsAndPort)
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

TEST(SlaveConnection, StartsAgainOnTheSamePort)
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

TEST(SlaveConnection, GoesOnByWhatItIsTold)
{
    RunningSlave slave;
    EXPECT_TRUE(slave.start()) << "it runs already";
    slave.setValues(
        {{1, Area::HoldingRegisters, 3, 7}, {1, Area::DiscreteInputs, 4, 1}, {1, Area::Coils, 5, 1}});
    QList<SlaveMemory::Value> values = slave.valuesAt({{1, Area::HoldingRegisters, 3, 0},
                                                       {1, Area::DiscreteInputs, 4, 0},
                                                       {1, Area::Coils, 5, 0},
                                                       {1, Area::Coils, 6, 9}});
    ASSERT_EQ(values.size(), 4);
    EXPECT_EQ(values[0].value, 7);
    EXPECT_EQ(values[1].value, 1);
    EXPECT_EQ(values[2].value, 1);
    EXPECT_EQ(values[3].value, 0);
    EXPECT_TRUE(slave.valuesAt({}).isEmpty());
    slave.setValues({});
}

TEST(SlaveConnection, StopsWithAReplyOnItsWay)
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

TEST(SlaveConnection, SaysWhyItCannotListen)
{
    RunningSlave slave;
    SlaveOptions options;
    options.port = slave.port();
    SlaveThread second(options);
    EXPECT_FALSE(second.start());
    EXPECT_FALSE(second.isRunning());
    EXPECT_FALSE(second.errorString().isEmpty());
}

TEST(SlaveConnection, ListensOnLoopbackUnlessTold)
{
    EXPECT_TRUE(SlaveOptions().address.isLoopback());
}

TEST(SlaveConnection, TracesWhatItSendsUnaskedAndThatItSendsNothing)
{
    QMutex mutex;
    QStringList lines;
    SlaveOptions options;
    options.gateway.banner = "hello";
    options.trace = [&](const QString &line) {
        const QMutexLocker locker(&mutex);
        lines.append(line.section(QLatin1Char(' '), 1));
    };
    RunningSlave slave(options);
    slave.inject({Fault::Silence, -1});
    {
        RawMaster master(slave.port());
        EXPECT_EQ("hello", master.receive(5));
        master.send(frameOf("010600010102") + frameOf("010300010001"));
        EXPECT_EQ(frameOf("0103020102"), master.receive(7));
    }
    slave.stop();
    ASSERT_GE(lines.size(), 4);
    EXPECT_EQ("> 68 65 6C 6C 6F  #1 banner", lines.at(1).toStdString());
    EXPECT_TRUE(lines.contains(QStringLiteral("- #1 [silence] nothing sent")));
}

TEST(SlaveConnection, TracesWhatItDoes)
{
    QMutex mutex;
    QStringList lines;
    SlaveOptions options;
    options.trace = [&](const QString &line) {
        const QMutexLocker locker(&mutex);
        lines.append(line.mid(int(qstrlen("12:34:56.789+00:00 "))));
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
