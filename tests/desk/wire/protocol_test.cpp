#include "desk/wire/protocol.h"
#include "desk/wire/rtu_frame.h"
#include "drivers/modbus_rtu_slave_over_tcp/limits.h"
#include "drivers/modbus_rtu_slave_over_tcp/rtu_frame.h"
#include "tests/desk/support/dry_driver.h"
#include "tests/peers/driver_link.h"
#include "tests/peers/text_printing.h"

#include <gtest/gtest.h>

// The protocol's numbers of the desk beside those of the driver, which keeps its own: equal where they should
// be, and where they differ it is on purpose.

namespace
{

QString device()
{
    return QStringLiteral("ETHERNET");
}

} // namespace

TEST(Protocol, NumbersThatTheDriverNamesAsWell)
{
    EXPECT_EQ(int(modbus::ReadCoils), int(ReadCoils));
    EXPECT_EQ(int(modbus::ReadDiscreteInputs), int(ReadDiscreteInputs));
    EXPECT_EQ(int(modbus::ReadHoldingRegisters), int(ReadHoldingRegisters));
    EXPECT_EQ(int(modbus::ReadInputRegisters), int(ReadInputRegisters));
    EXPECT_EQ(int(modbus::WriteSingleCoil), int(WriteSingleCoil));
    EXPECT_EQ(int(modbus::WriteSingleRegister), int(WriteSingleRegister));
    EXPECT_EQ(int(modbus::WriteMultipleCoils), int(WriteMultipleCoils));
    EXPECT_EQ(int(modbus::WriteMultipleRegisters), int(WriteMultipleRegisters));
    EXPECT_EQ(modbus::CrcSize, RtuCrcSize);
    EXPECT_EQ(unsigned(modbus::AddressSpace), AddressSpace);
    EXPECT_EQ(modbus::MaxReadRegisters, MaxRegistersRead);
    EXPECT_EQ(unsigned(modbus::MaxWriteRegisters), MaxRegistersWritten);
}

class ProtocolTest : public testing::Test
{
protected:
    void SetUp() override { ASSERT_TRUE(layProjectBesideProgram()); }
};

TEST_F(ProtocolTest, FunctionsThatTheDriverSends)
{
    const struct {
        bool isRead;
        ItemKind kind;
        const char *address;
        int function;
    } commands[] = {{true, BitItem, "DO1", modbus::ReadCoils},
                    {true, BitItem, "DI1", modbus::ReadDiscreteInputs},
                    {true, WordItem, "HR1", modbus::ReadHoldingRegisters},
                    {true, WordItem, "IR1", modbus::ReadInputRegisters},
                    {false, BitItem, "FN5DO1", modbus::WriteSingleCoil},
                    {false, WordItem, "FN6HR1", modbus::WriteSingleRegister},
                    {false, BitItem, "DO1", modbus::WriteMultipleCoils},
                    {false, WordItem, "HR1", modbus::WriteMultipleRegisters}};
    for (const auto &command : commands) {
        DryDriver driver(device());
        EXPECT_EQ(command.isRead ? driver.read(command.kind, command.address)
                                 : driver.write(command.kind, command.address),
                  QString());
        ASSERT_EQ(driver.requests().size(), 1u) << command.address;
        const QByteArray &request = driver.requests().front();
        EXPECT_EQ(functionOf(request), command.function) << command.address;
        EXPECT_TRUE(hasGoodCrc(request)) << command.address;
        EXPECT_EQ(request.size(), requestSize(request)) << command.address;
        if (!modbus::isWriteMultiple(command.function)) {
            EXPECT_EQ(request.size(), modbus::ShortFrameSize) << command.address;
        }
    }
}

// How many items of a kind the driver reads or writes at once, and the protocol's number.
TEST_F(ProtocolTest, LimitsOfTheDriver)
{
    const int aboveTheProtocol = 8;
    const struct {
        bool isRead;
        ItemKind kind;
        const char *address;
        int max;
    } limits[] = {
        {true, WordItem, "HR1", modbus::MaxReadRegisters},
        {true, WordItem, "IR1", modbus::MaxReadRegisters},
        {false, WordItem, "HR1", modbus::MaxWriteRegisters},
        {false, WordItem, "FN6HR1", modbus::MaxWriteRegisters},
        // There are slaves that serve more than the protocol has: 2008 bits still fit the driver's reply,
        {true, BitItem, "DO1", modbus::MaxReadBits + aboveTheProtocol},
        {true, BitItem, "DI1", modbus::MaxReadBits + aboveTheProtocol},
        // and 1976 coils the one byte that counts bytes of a request.
        {false, BitItem, "DO1", modbus::MaxWriteCoils + aboveTheProtocol},
        {false, BitItem, "FN5DO1", modbus::MaxWriteCoils + aboveTheProtocol},
    };
    for (const auto &limit : limits) {
        DryDriver driver(device());
        const auto command = [&](int count) {
            return limit.isRead ? driver.read(limit.kind, limit.address, count)
                                : driver.write(limit.kind, limit.address, count);
        };
        EXPECT_EQ(command(limit.max), QString()) << limit.address;
        const size_t requests = driver.requests().size();
        EXPECT_TRUE(command(limit.max + 1).startsWith(QLatin1String("can't "))) << limit.address;
        EXPECT_EQ(driver.requests().size(), requests) << limit.address;
    }
}

// Every area ends where the desk says that it ends.
TEST_F(ProtocolTest, TheEndOfAnArea)
{
    for (const char *const area : {"HR", "IR", "DO", "DI"}) {
        const QByteArray last = area + QByteArray::number(modbus::AddressSpace);
        const ItemKind kind = area[0] == 'D' ? BitItem : WordItem;
        DryDriver driver(device());
        EXPECT_EQ(driver.read(kind, last, 1), QString()) << area;
        EXPECT_EQ(wordAt(driver.requests().back(), 2), modbus::AddressSpace - 1) << area;
        EXPECT_TRUE(driver.read(kind, last, 2).startsWith(QLatin1String("can't read"))) << area;
    }
}

// The desk knows stations up to 247 and those beyond as reserved; the driver sends whatever a byte holds.
TEST_F(ProtocolTest, StationsOfTheDriver)
{
    for (const int station : {modbus::BroadcastStation, modbus::MaxStation, modbus::MaxStationNumber}) {
        DryDriver driver(device(), station);
        EXPECT_EQ(driver.read(WordItem, "HR1"), QString());
        EXPECT_EQ(int(byteAt(driver.requests().back(), 0)), station);
    }
    DryDriver driver(device(), modbus::MaxStationNumber + 2);
    driver.read(WordItem, "HR1");
    EXPECT_EQ(int(byteAt(driver.requests().back(), 0)), 1);
}
