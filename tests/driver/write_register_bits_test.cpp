#include "tests/doubles/model_slave.h"
#include "tests/support/driver_test.h"

#include <limits>

// Bits in registers: read, change, write back.

namespace
{

class WriteRegisterBits : public DriverTest
{
protected:
    WriteRegisterBits()
    {
        channel.setResponder([this](const QByteArray &request) { return slave.answer(request); });
    }

    ModelSlave slave;
};

} // namespace

TEST_F(WriteRegisterBits, OneBit)
{
    EXPECT_TRUE(write(BitItem, "HR21.3", 1, fromHex("01")));
    EXPECT_EQ(channel.requests(), frames({"01 03 00 14 00 01", "01 10 00 14 00 01 02 00 08"}));
    EXPECT_EQ(channel.readLengths(), (std::vector<int>{5, 2, 5, 3}));
    EXPECT_EQ(slave.holdingRegisters[20], 8);
    EXPECT_EQ(error(), NoError);
}

TEST_F(WriteRegisterBits, OtherBitsStay)
{
    slave.holdingRegisters[0] = 0xFFFF;
    slave.holdingRegisters[1] = 0x1234;
    EXPECT_TRUE(write(SecondBitItem, "HR1.14", 4, fromHex("F8")));
    EXPECT_EQ(slave.holdingRegisters[0], 0x3FFF);
    EXPECT_EQ(slave.holdingRegisters[1], 0x1236);
}

TEST_F(WriteRegisterBits, TwoBitsAcrossRegisters)
{
    EXPECT_TRUE(write(BitItem, "HR1.15", 2, fromHex("03")));
    EXPECT_EQ(channel.requests(), frames({"01 03 00 00 00 02", "01 10 00 00 00 02 04 80 00 00 01"}));
}

TEST_F(WriteRegisterBits, BitBeyondTheFirstRegister)
{
    EXPECT_TRUE(write(BitItem, "HR1.35", 1, fromHex("01")));
    EXPECT_EQ(channel.requests(), frames({"01 03 00 00 00 03", "01 10 00 00 00 03 06 00 00 00 00 00 08"}));
}

TEST_F(WriteRegisterBits, WithFunction6)
{
    slave.holdingRegisters[20] = 0x0101;
    EXPECT_TRUE(write(BitItem, "FN6HR21.0", 16, fromHex("34 12")));
    EXPECT_EQ(channel.requests(), frames({"01 03 00 14 00 01", "01 06 00 14 12 34"}));
    EXPECT_EQ(channel.readLengths(), (std::vector<int>{5, 2, 5, 3}));
}

TEST_F(WriteRegisterBits, Function6WritesEveryRegisterBackWithoutPauses)
{
    channel.delay = 30;
    slave.holdingRegisters[1] = 0xAAAA;
    EXPECT_TRUE(write(SecondBitItem, "fn6hr1.15", 18, fromHex("01 00 02")));
    EXPECT_EQ(channel.requests(),
              frames({"01 03 00 00 00 03", "01 06 00 00 80 00", "01 06 00 01 00 00", "01 06 00 02 00 01"}));
    EXPECT_EQ(pauses.sleeps(), std::vector<qint64>(1, 30000000));
    EXPECT_EQ(channel.count(ScriptedChannel::DelayTime), 1);
}

TEST_F(WriteRegisterBits, FailedReadWritesNothing)
{
    for (const char *address : {"HR1.3", "FN6HR1.3"}) {
        channel.forgetCalls();
        channel.addReply(framed("01 83 02"));
        EXPECT_FALSE(write(SecondBitItem, address, 1, fromHex("01")));
        EXPECT_EQ(error(), "exception code:0x02");
        EXPECT_EQ(channel.requests(), frames({"01 03 00 00 00 01"}));
    }
}

TEST_F(WriteRegisterBits, FailedWriteBack)
{
    channel.addReply(framed("01 03 02 00 00"));
    channel.addReply(framed("01 90 04"));
    EXPECT_FALSE(write(BitItem, "HR1.3", 1, fromHex("01")));
    EXPECT_EQ(error(), "exception code:0x04 (write 1 bit to 1-HR1.3)");
}

TEST_F(WriteRegisterBits, Function6StopsAtTheFirstFailure)
{
    channel.addReply(framed("01 03 06 00 00 00 00 00 00"));
    channel.addReply(framed("01 06 00 00 80 00"));
    channel.addReply(framed("01 86 04"));
    EXPECT_FALSE(write(BitItem, "FN6HR1.15", 18, fromHex("FF FF FF")));
    EXPECT_EQ(error(), "exception code:0x04 (write 18 bit to 1-FN6HR1.15)");
    EXPECT_EQ(channel.requests().size(), 3);
}

TEST_F(WriteRegisterBits, RetryReadsAgain)
{
    channel.retries = 1;
    channel.addReply(framed("01 03 02 00 00"));
    channel.addReply(framed("01 90 04"));
    slave.holdingRegisters[0] = 0x4000;
    EXPECT_TRUE(write(BitItem, "HR1.3", 1, fromHex("01")));
    EXPECT_EQ(slave.holdingRegisters[0], 0x4008);
}

// What can be read is more than can be written in one request.
TEST_F(WriteRegisterBits, Limits)
{
    const QByteArray bits = patternBytes(250);
    EXPECT_TRUE(write(BitItem, "HR1", 1968, bits));
    EXPECT_EQ(channel.requests().size(), 2);
    EXPECT_FALSE(write(BitItem, "HR1", 1969, bits));
    EXPECT_EQ(error(), "can't write any word to HR1 (write 1969 bit to 1-HR1)");
    EXPECT_EQ(channel.requests().size(), 3);
    EXPECT_FALSE(write(BitItem, "hr7", 2000, bits));
    EXPECT_EQ(error(), "can't write any word to HR7 (write 2000 bit to 1-hr7)");
    EXPECT_FALSE(write(BitItem, "hr7", 2001, bits));
    EXPECT_EQ(error(), "can't read any word from HR7 (write 2001 bit to 1-hr7)");
    EXPECT_EQ(channel.requests().size(), 4);
}

TEST_F(WriteRegisterBits, Function6HasOnlyTheLimitOfTheRead)
{
    channel.delay = 30;
    const QByteArray bits = patternBytes(250);
    EXPECT_TRUE(write(BitItem, "FN6HR65412", 2000, bits));
    EXPECT_EQ(channel.requests().size(), 126);
    EXPECT_EQ(pauses.sleeps().size(), 1u);
    for (int i = 0; i < 2000; ++i)
        EXPECT_EQ(slave.holdingRegisters[static_cast<size_t>(65411 + i / 16)] >> i % 16 & 1,
                  bits.at(i / 8) >> i % 8 & 1);
    channel.forgetCalls();
    EXPECT_FALSE(write(BitItem, "FN6HR1", 2001, bits));
    EXPECT_EQ(error(), "can't read any word from HR1 (write 2001 bit to 1-FN6HR1)");
    EXPECT_FALSE(write(SecondBitItem, "fn6hr65536.1", 16, bits));
    EXPECT_EQ(error(), "can't read any word from HR65536");
    EXPECT_TRUE(isSilent());
}

TEST_F(WriteRegisterBits, HugeAndNegativeCountsAreRefused)
{
    for (const int count :
         {-1, -16, std::numeric_limits<int>::min(), std::numeric_limits<int>::max(), 0x20000000, 0x40000001})
        for (const char *address : {"HR1", "FN6HR1.15", "HR1.255"}) {
            EXPECT_FALSE(write(SecondBitItem, address, count, fromHex("FF")));
            EXPECT_EQ(error(), "can't read any word from HR1") << address << " " << count;
        }
    EXPECT_TRUE(isSilent());
}

// No register is read and none written, so nothing is confirmed either.
TEST_F(WriteRegisterBits, CountOfZero)
{
    for (const char *address : {"HR1", "FN6HR1"}) {
        channel.forgetCalls();
        channel.addReply(framed("01 03 00"));
        EXPECT_FALSE(write(BitItem, address, 0, fromHex("FF")));
        EXPECT_EQ(error(), NoError);
        EXPECT_EQ(channel.requests(), frames({"01 03 00 00 00 00"}));
    }
}

TEST_F(WriteRegisterBits, CountOfZeroAfterABitWritesTheRegistersBack)
{
    slave.holdingRegisters[0] = 0x1234;
    EXPECT_TRUE(write(BitItem, "HR1.4", 0, fromHex("FF")));
    EXPECT_EQ(channel.requests(), frames({"01 03 00 00 00 01", "01 10 00 00 00 01 02 12 34"}));
}
