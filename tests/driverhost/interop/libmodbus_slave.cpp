#include "tests/driverhost/interop/libmodbus_peer.h"
#include "tests/peers/serial_bridge.h"

#include <gtest/gtest.h>

// The driver against a slave of libmodbus, which speaks RTU on serial lines only.

namespace
{

class Libmodbus : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_FALSE(line.device().isEmpty());
        ASSERT_TRUE(slave.isConnected) << modbus_strerror(errno);
        ASSERT_TRUE(layProjectBesideProgram(exerciseTags()));
        link = std::make_unique<DriverLink>(channelTo(line.port(), 10000));
    }

    SerialBridge line;
    LibmodbusSlave slave{line.device()};
    std::unique_ptr<DriverLink> link;
};

TEST_F(Libmodbus, EveryFunctionReadsAndWrites)
{
    exerciseEveryFunction(*link);
}

TEST_F(Libmodbus, Refusals)
{
    EXPECT_TRUE(link->read(Bits, 2008, "DO1").isEmpty());
    EXPECT_EQ("exception code:0x03", link->error());
    EXPECT_EQ(std::vector<int>{exerciseInputRegister(9, 1)}, link->readWords("IR10"));
}

} // namespace
