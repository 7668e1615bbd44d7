#include "tests/peers/raw_master.h"
#include "tests/peers/running_slave.h"

#include <gtest/gtest.h>

#include <ostream>

namespace
{

// Long enough to notice a reply that should not come; a test that waits for one waits much longer.
const int Silence = 50;

TEST(EmbeddedSlave, ReadsCoilsAndDiscreteInputs)
{
    RunningSlave slave;
    slave.setValue(1, Area::Coils, 16, 1);
    slave.setValue(1, Area::Coils, 25, 1);
    slave.setValue(1, Area::DiscreteInputs, 17, 1);
    RawMaster master(slave.port());
    EXPECT_EQ("0101020102", master.ask("01010010000A"));
    EXPECT_EQ("0102020200", master.ask("01020010000A"));
}

TEST(EmbeddedSlave, ReadsRegisters)
{
    RunningSlave slave;
    slave.setValue(1, Area::HoldingRegisters, 99, 0x1234);
    slave.setValue(1, Area::InputRegisters, 100, 0xABCD);
    RawMaster master(slave.port());
    EXPECT_EQ("01030412340000", master.ask("010300630002"));
    EXPECT_EQ("0104040000ABCD", master.ask("010400630002"));
}

TEST(EmbeddedSlave, WritesSingleItems)
{
    RunningSlave slave;
    RawMaster master(slave.port());
    EXPECT_EQ("01050007FF00", master.ask("01050007FF00"));
    EXPECT_EQ(1, slave.value(1, Area::Coils, 7));
    EXPECT_EQ("010101C0", (master.ask("01050006FF00"), master.ask("010100000008")));
    EXPECT_EQ("010500070000", master.ask("010500070000"));
    EXPECT_EQ(0, slave.value(1, Area::Coils, 7));
    EXPECT_EQ("01060007BEEF", master.ask("01060007BEEF"));
    EXPECT_EQ(0xBEEF, slave.value(1, Area::HoldingRegisters, 7));
}

TEST(EmbeddedSlave, WritesRuns)
{
    RunningSlave slave;
    RawMaster master(slave.port());
    EXPECT_EQ("010F0003000A", master.ask("010F0003000A024D02"));
    EXPECT_EQ("0101024D02", master.ask("01010003000A"));
    EXPECT_EQ("011000030002", master.ask("0110000300020400011234"));
    EXPECT_EQ(1, slave.value(1, Area::HoldingRegisters, 3));
    EXPECT_EQ(0x1234, slave.value(1, Area::HoldingRegisters, 4));
    EXPECT_EQ(0, slave.value(1, Area::InputRegisters, 4));
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
    EXPECT_EQ(0x1111, slave.value(1, Area::HoldingRegisters, 122));
    EXPECT_EQ(0, slave.value(1, Area::HoldingRegisters, 123));
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

// The beginning of a large write swallows what follows until the line has been silent.
TEST(EmbeddedSlave, GoesOnAfterAnUnfinishedRequest)
{
    RunningSlave slave;
    RawMaster master(slave.port());
    master.send(QByteArray::fromHex("01100000007BF6"));
    master.send(frameOf("010300010001"));
    EXPECT_EQ(frameOf("0103020000"), master.receive(7));
}

// More than all buffers on the way hold: the slave waits until somebody reads.
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
    EXPECT_EQ(0x77, slave.value(2, Area::HoldingRegisters, 1));
    EXPECT_EQ(1u, slave.counts().broadcasts);
}

TEST(EmbeddedSlave, HolesGetExceptionTwo)
{
    SlaveOptions options;
    options.memory.addHole({0, Area::HoldingRegisters, 10, 12});
    options.memory.addHole({0, Area::Coils, 5, 5});
    options.memory.addHole({2, Area::InputRegisters, 0, 65535});
    RunningSlave slave(options);
    RawMaster master(slave.port());
    EXPECT_EQ("0103020000", master.ask("010300090001"));
    EXPECT_EQ("018302", master.ask("0103000A0001"));
    EXPECT_EQ("018302", master.ask("010300090002"));
    EXPECT_EQ("018302", master.ask("0103000C0002"));
    EXPECT_EQ("0103020000", master.ask("0103000D0001"));
    EXPECT_EQ("018602", master.ask("0106000B0001"));
    EXPECT_EQ(0, slave.value(1, Area::HoldingRegisters, 11));
    EXPECT_EQ("019002", master.ask("01100009000204AAAABBBB"));
    EXPECT_EQ(0, slave.value(1, Area::HoldingRegisters, 9));
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
    options.memory.setValue(0, Area::HoldingRegisters, 0, 7);
    options.memory.setValue(2, Area::HoldingRegisters, 0, 8);
    options.memory.setValue(0, Area::DiscreteInputs, 65535, 1);
    RunningSlave slave(options);
    RawMaster master(slave.port());
    EXPECT_EQ("0103020007", master.ask("010300000001"));
    EXPECT_EQ("0203020008", master.ask("020300000001"));
    EXPECT_EQ("02020101", master.ask("0202FFFF0001"));
}

} // namespace
