#include "desk/slave/slave_thread.h"
#include "desk/wire/rtu_frame.h"
#include "tests/peers/raw_master.h"

#include <gtest/gtest.h>

#include <QElapsedTimer>

#include <ostream>

namespace
{

const int Silence = 50;

const char ReadTwo[] = "010300000002";

// Its first registers hold 0x1122 and 0x3344.
class SlaveFault : public testing::Test
{
protected:
    SlaveFault()
    {
        EXPECT_TRUE(slave.start()) << slave.errorString().toStdString();
        slave.setValue(1, Area::HoldingRegisters, 0, 0x1122);
        slave.setValue(1, Area::HoldingRegisters, 1, 0x3344);
    }

    // Sends the request with this fault ahead of it.
    void request(RawMaster &master, Fault::Kind kind, int value = -1)
    {
        slave.inject({kind, value});
        master.send(frameOf(ReadTwo));
    }

    void expectGoodExchange(RawMaster &master) { EXPECT_EQ("01030411223344", master.ask(ReadTwo)); }

    SlaveThread slave;
    const QByteArray rightReply = frameOf("01030411223344");
};

TEST_F(SlaveFault, Silence)
{
    RawMaster master(slave.port());
    request(master, Fault::Silence);
    EXPECT_TRUE(master.isSilent(::Silence));
    expectGoodExchange(master);
    EXPECT_EQ(1u, slave.counts().faults.value(Fault::Silence));
}

TEST_F(SlaveFault, HoldsBackUntilAReplyIsSent)
{
    RawMaster master(slave.port());
    request(master, Fault::Merge);
    request(master, Fault::Silence);
    EXPECT_TRUE(master.isSilent(::Silence)) << "nothing takes it along";
    master.send(frameOf("010300000001"));
    EXPECT_EQ(rightReply + frameOf("0103021122"), master.receive(9 + 7));
}

TEST_F(SlaveFault, Delay)
{
    RawMaster master(slave.port());
    QElapsedTimer clock;
    clock.start();
    request(master, Fault::Delay, 60);
    EXPECT_EQ(rightReply, master.receive(9));
    EXPECT_GE(clock.elapsed(), 60);
    expectGoodExchange(master);
}

TEST_F(SlaveFault, LateOnTheNextConnection)
{
    QElapsedTimer clock;
    clock.start();
    {
        RawMaster master(slave.port());
        request(master, Fault::Late, 60);
        EXPECT_TRUE(master.isSilent(20));
    }
    RawMaster next(slave.port());
    next.send(frameOf("010300010001"));
    EXPECT_EQ(rightReply + frameOf("0103023344"), next.receive(9 + 7));
    EXPECT_GE(clock.elapsed(), 60);
}

TEST_F(SlaveFault, TruncationAtEveryByte)
{
    for (int size = 0; size < rightReply.size(); ++size) {
        RawMaster master(slave.port());
        request(master, Fault::Truncate, size);
        EXPECT_EQ(rightReply.left(size), master.receive(size));
        expectGoodExchange(master);
    }
}

TEST_F(SlaveFault, TruncationLeavesSomethingOut)
{
    RawMaster master(slave.port());
    for (int i = 0; i < 50; ++i) {
        request(master, Fault::Truncate);
        const QByteArray part = master.receive(1);
        EXPECT_TRUE(rightReply.startsWith(part));
        EXPECT_GE(part.size(), 1);
        EXPECT_LT(part.size(), rightReply.size());
    }
}

TEST_F(SlaveFault, AnotherMastersReply)
{
    RawMaster master(slave.port());
    request(master, Fault::OtherMaster, 7);
    EXPECT_EQ(frameOf("070304EEDDCCBB") + rightReply, master.receive(18));
    expectGoodExchange(master);
}

TEST_F(SlaveFault, WrongStation)
{
    RawMaster master(slave.port());
    request(master, Fault::WrongStation);
    EXPECT_EQ(frameOf("02030411223344"), master.receive(9));
    request(master, Fault::WrongStation, 77);
    EXPECT_EQ(frameOf("4D030411223344"), master.receive(9));
    expectGoodExchange(master);
}

TEST_F(SlaveFault, WrongFunction)
{
    RawMaster master(slave.port());
    request(master, Fault::WrongFunction);
    EXPECT_EQ(frameOf("01040411223344"), master.receive(9));
    request(master, Fault::WrongFunction, 16);
    EXPECT_EQ(frameOf("01100411223344"), master.receive(9));
    expectGoodExchange(master);
}

TEST_F(SlaveFault, WrongCrcDiffersInOneBit)
{
    RawMaster master(slave.port());
    QByteArrayList seen;
    for (int i = 0; i < 40; ++i) {
        request(master, Fault::WrongCrc);
        const QByteArray reply = master.receive(9);
        EXPECT_EQ(rightReply.left(7), reply.left(7));
        const uint difference = wordAt(reply, 7) ^ wordAt(rightReply, 7);
        EXPECT_EQ(1u, qPopulationCount(difference));
        if (!seen.contains(reply))
            seen.append(reply);
    }
    EXPECT_GT(seen.size(), 3);
    expectGoodExchange(master);
}

TEST_F(SlaveFault, ExceptionInsteadOfExecution)
{
    RawMaster master(slave.port());
    slave.inject({Fault::Exception, 6});
    EXPECT_EQ("018606", master.ask("010600000005"));
    EXPECT_EQ(0x1122, slave.value(1, Area::HoldingRegisters, 0));
    slave.inject({Fault::Exception, -1});
    EXPECT_EQ("018304", master.ask(ReadTwo));
    expectGoodExchange(master);
}

TEST_F(SlaveFault, LostRepliesAreExecuted)
{
    RawMaster master(slave.port());
    slave.inject({Fault::Silence, -1});
    master.send(frameOf("010600000005"));
    EXPECT_EQ("01030400053344", master.ask(ReadTwo));
}

TEST_F(SlaveFault, JunkBeforeAndAfter)
{
    RawMaster master(slave.port());
    request(master, Fault::JunkBefore, 5);
    EXPECT_EQ(rightReply, master.receive(14).mid(5));
    request(master, Fault::JunkAfter, 5);
    EXPECT_EQ(rightReply, master.receive(14).left(9));
    request(master, Fault::JunkBefore);
    const QByteArray bytes = master.receiveSegment();
    EXPECT_TRUE(bytes.endsWith(rightReply));
    EXPECT_GT(bytes.size(), rightReply.size());
}

TEST_F(SlaveFault, OneByteASegment)
{
    RawMaster master(slave.port());
    QElapsedTimer clock;
    clock.start();
    request(master, Fault::Split, 5);
    EXPECT_EQ(rightReply, master.receive(9));
    EXPECT_GE(clock.elapsed(), 8 * 5);
    request(master, Fault::Split);
    EXPECT_EQ(rightReply, master.receive(9));
    expectGoodExchange(master);
}

TEST_F(SlaveFault, TwoRepliesMerged)
{
    RawMaster master(slave.port());
    request(master, Fault::Merge);
    EXPECT_TRUE(master.isSilent(::Silence));
    master.send(frameOf("010300010001"));
    EXPECT_EQ(rightReply + frameOf("0103023344"), master.receiveSegment());
    expectGoodExchange(master);
}

TEST_F(SlaveFault, DoubleAndStaleReplies)
{
    RawMaster master(slave.port());
    request(master, Fault::Double);
    EXPECT_EQ(rightReply + rightReply, master.receiveSegment());
    slave.inject({Fault::Stale, -1});
    master.send(frameOf("010300010001"));
    EXPECT_EQ(rightReply + frameOf("0103023344"), master.receiveSegment());
    expectGoodExchange(master);
}

TEST_F(SlaveFault, EchoOfTheRequest)
{
    RawMaster master(slave.port());
    request(master, Fault::Echo);
    EXPECT_EQ(frameOf(ReadTwo) + rightReply, master.receiveSegment());
    expectGoodExchange(master);
}

TEST_F(SlaveFault, Reset)
{
    RawMaster master(slave.port());
    request(master, Fault::Reset);
    EXPECT_EQ(RawMaster::End::Reset, master.waitForEnd());
    RawMaster next(slave.port());
    expectGoodExchange(next);
}

TEST_F(SlaveFault, Close)
{
    RawMaster master(slave.port());
    request(master, Fault::Close);
    EXPECT_EQ(RawMaster::End::Closed, master.waitForEnd());
    RawMaster next(slave.port());
    expectGoodExchange(next);
}

TEST_F(SlaveFault, HalfOpenStaysDead)
{
    RawMaster master(slave.port());
    request(master, Fault::HalfOpen);
    master.send(frameOf(ReadTwo));
    EXPECT_EQ(RawMaster::End::StillOpen, master.waitForEnd(::Silence));
    RawMaster next(slave.port());
    expectGoodExchange(next);
    EXPECT_EQ(2u, slave.counts().requests);
}

TEST_F(SlaveFault, InjectedFaultsComeInTheirOrderAndThenEnd)
{
    RawMaster master(slave.port());
    slave.inject({Fault::Exception, 1}, 2);
    slave.inject({Fault::Exception, 2});
    for (const char *reply : {"018301", "018301", "018302", "01030411223344"})
        EXPECT_EQ(reply, master.ask(ReadTwo));
}

TEST_F(SlaveFault, BroadcastsAreNotSpoiled)
{
    RawMaster master(slave.port());
    slave.inject({Fault::Exception, 1});
    master.send(frameOf("000600000007"));
    EXPECT_EQ("018301", master.ask(ReadTwo));
    EXPECT_EQ("01030400073344", master.ask(ReadTwo));
}

} // namespace
