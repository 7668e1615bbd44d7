#include "tests/doubles/frames.h"
#include "tests/doubles/model_slave.h"
#include "tests/support/gtest_qt.h"

// The slave that other tests compare the driver with must itself be right: it answers the examples of
// "MODBUS Application Protocol V1.1b3", chapter 6.

namespace
{

void setBits(std::vector<std::uint8_t> &area, size_t start, const QByteArray &packed, int count)
{
    for (int i = 0; i < count; ++i)
        area[start + static_cast<size_t>(i)] = static_cast<std::uint8_t>(packed.at(i / 8) >> i % 8 & 1);
}

} // namespace

TEST(ModelSlave, AnswersReads)
{
    ModelSlave slave(17);
    setBits(slave.coils, 0x13, fromHex("CD 6B 05"), 19);
    setBits(slave.discreteInputs, 0xC4, fromHex("AC DB 35"), 22);
    slave.holdingRegisters[0x6B] = 0x022B;
    slave.holdingRegisters[0x6D] = 0x0064;
    slave.inputRegisters[8] = 0x000A;
    EXPECT_EQ(slave.answer(framed("11 01 00 13 00 13")), framed("11 01 03 CD 6B 05"));
    EXPECT_EQ(slave.answer(framed("11 02 00 C4 00 16")), framed("11 02 03 AC DB 35"));
    EXPECT_EQ(slave.answer(framed("11 03 00 6B 00 03")), framed("11 03 06 02 2B 00 00 00 64"));
    EXPECT_EQ(slave.answer(framed("11 04 00 08 00 01")), framed("11 04 02 00 0A"));
}

TEST(ModelSlave, TakesWrites)
{
    ModelSlave slave;
    EXPECT_EQ(slave.answer(framed("01 05 00 AC FF 00")), framed("01 05 00 AC FF 00"));
    EXPECT_EQ(slave.coils[0xAC], 1);
    EXPECT_EQ(slave.answer(framed("01 05 00 AC 00 00")), framed("01 05 00 AC 00 00"));
    EXPECT_EQ(slave.coils[0xAC], 0);
    EXPECT_EQ(slave.answer(framed("01 06 00 01 00 03")), framed("01 06 00 01 00 03"));
    EXPECT_EQ(slave.holdingRegisters[1], 3);
    EXPECT_EQ(slave.answer(framed("01 0F 00 13 00 0A 02 CD 01")), framed("01 0F 00 13 00 0A"));
    EXPECT_EQ(slave.answer(framed("01 01 00 13 00 0B")), framed("01 01 02 CD 01"));
    EXPECT_EQ(slave.answer(framed("01 10 00 01 00 02 04 00 0A 01 02")), framed("01 10 00 01 00 02"));
    EXPECT_EQ(slave.holdingRegisters[1], 0x000A);
    EXPECT_EQ(slave.holdingRegisters[2], 0x0102);
}

TEST(ModelSlave, AnswersWhatItCannotServeWithExceptions)
{
    ModelSlave slave(1, 100);
    EXPECT_EQ(slave.answer(framed("01 2B 0E 01 00")), framed("01 AB 01"));
    EXPECT_EQ(slave.answer(framed("01 03 00 63 00 02")), framed("01 83 02"));
    EXPECT_EQ(slave.answer(framed("01 05 00 64 FF 00")), framed("01 85 02"));
    EXPECT_EQ(slave.answer(framed("01 06 00 64 00 01")), framed("01 86 02"));
    EXPECT_EQ(slave.answer(framed("01 0F 00 5D 00 08 01 00")), framed("01 8F 02"));
    EXPECT_EQ(slave.answer(framed("01 10 00 63 00 02 04 00 00 00 00")), framed("01 90 02"));
    EXPECT_EQ(slave.answer(framed("01 03 00 00 00 00")), framed("01 83 03"));
    EXPECT_EQ(slave.answer(framed("01 03 00 00 00 7E")), framed("01 83 03"));
    EXPECT_EQ(slave.answer(framed("01 02 00 00 07 D9")), framed("01 82 03"));
    EXPECT_EQ(slave.answer(framed("01 05 00 00 FF 01")), framed("01 85 03"));
    EXPECT_EQ(slave.answer(framed("01 0F 00 00 00 09 01 00")), framed("01 8F 03"));
    EXPECT_EQ(slave.answer(framed("01 10 00 00 00 01 02 00")), framed("01 90 03"));
}

TEST(ModelSlave, StaysSilentWhenItIsNotMeant)
{
    ModelSlave slave(3);
    EXPECT_FALSE(slave.answer(framed("03 03 00 00 00 01")).isEmpty());
    EXPECT_EQ(slave.answer(framed("02 03 00 00 00 01")), QByteArray());
    EXPECT_EQ(slave.answer(fromHex("03 03 00 00 00 01 00 00")), QByteArray());
    EXPECT_EQ(slave.answer(framed("03 06 00 00")), QByteArray());
    EXPECT_EQ(slave.answer(fromHex("03 03 00")), QByteArray());
    EXPECT_EQ(slave.answer(QByteArray()), QByteArray());
}
