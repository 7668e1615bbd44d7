#include "tests/driverhost/support/host_program.h"
#include "tests/peers/exercise.h"
#include "tests/peers/serial_bridge.h"

#include <gtest/gtest.h>

#include <atomic>
#include <modbus/modbus.h>
#include <thread>

// The driver against a slave of libmodbus, which speaks RTU on serial lines only.

namespace
{

const int Addresses = 65536;

class LibmodbusSlave
{
public:
    explicit LibmodbusSlave(const QString &device)
    {
        context = modbus_new_rtu(device.toLocal8Bit().constData(), 115200, 'N', 8, 1);
        mapping = modbus_mapping_new(Addresses, Addresses, Addresses, Addresses);
        for (int i = 0; i < Addresses; ++i) {
            mapping->tab_input_bits[i] = exerciseInput(i) ? 1 : 0;
            mapping->tab_input_registers[i] = static_cast<uint16_t>(exerciseInputRegister(i, 1));
        }
        modbus_set_slave(context, 1);
        modbus_set_indication_timeout(context, 0, 50000);
        isConnected = modbus_connect(context) == 0;
        thread = std::thread([this] { serve(); });
    }

    ~LibmodbusSlave()
    {
        isStopping = true;
        thread.join();
        modbus_close(context);
        modbus_mapping_free(mapping);
        modbus_free(context);
    }
    LibmodbusSlave(const LibmodbusSlave &) = delete;
    LibmodbusSlave &operator=(const LibmodbusSlave &) = delete;

    bool isConnected = false;

private:
    void serve()
    {
        std::vector<uint8_t> request(MODBUS_RTU_MAX_ADU_LENGTH);
        while (!isStopping) {
            const int size = modbus_receive(context, request.data());
            if (size > 0)
                modbus_reply(context, request.data(), size, mapping);
        }
    }

    modbus_t *context = nullptr;
    modbus_mapping_t *mapping = nullptr;
    std::atomic<bool> isStopping{false};
    std::thread thread;
};

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
