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
    explicit LibmodbusSlave(const QString &device, int station = 1)
    {
        context = modbus_new_rtu(device.toLocal8Bit().constData(), 115200, 'N', 8, 1);
        mapping = modbus_mapping_new(Addresses, Addresses, Addresses, Addresses);
        for (int i = 0; i < Addresses; ++i) {
            mapping->tab_input_bits[i] = exerciseInput(i) ? 1 : 0;
            mapping->tab_input_registers[i] = static_cast<uint16_t>(exerciseInputRegister(i, 1));
        }
        modbus_set_slave(context, station);
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

    void setHoldingRegister(int number, int value)
    {
        mapping->tab_registers[number - 1] = static_cast<uint16_t>(value);
    }
    int holdingRegister(int number) const { return mapping->tab_registers[number - 1]; }

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

// Known bytes of types and orders, through the program. No master reads while they are laid there.
TEST_F(Libmodbus, ReadsAndWritesTypedValues)
{
    const std::vector<int> known{0x47F1, 0x2000, 0x2000, 0x47F1, 0xF147, 0x0020, 0x0020, 0xF147, 0x3FF8,
                                 0,      0,      0,      0x1234, 0x5678, 0x5075, 0x6D70, 0xFFFE};
    for (size_t i = 0; i < known.size(); ++i)
        slave.setHoldingRegister(1 + static_cast<int>(i), known[i]);
    const QString target = QStringLiteral("rtutcp://127.0.0.1:%1/1").arg(line.port());
    const HostRun read =
        runHost({"read", target, "HR1:f32@ABCD", "HR3:f32@CDAB", "HR5:f32@BADC", "HR7:f32@DCBA",
                 "HR9:f64@ABCDEFGH", "HR13:bcd32@ABCD", "HR15:str4", "HR17:i16", "--format", "csv"});
    EXPECT_EQ(read.code, 0) << read.err.toStdString();
    QStringList values;
    for (const QString &row : read.out.split('\n', Qt::SkipEmptyParts).mid(1))
        values += row.section(',', 4, 4);
    EXPECT_EQ(values, (QStringList{"123456", "123456", "123456", "123456", "1.5", "12345678", "Pump", "-2"}));
}

// libmodbus takes what comes within half a second of a request to another station for the reply of that.
TEST(LibmodbusScan, FindsASlaveThatTakesTheNextRequestForAReply)
{
    struct Case {
        const char *options;
        const char *found;
        const char *told;
    };
    for (const Case &c :
         {Case{"--passes 1 --after-silence 0 --timeout 50 --delay 0", "", "\n0 stations answered\n"},
          Case{"--after-silence 0 --timeout 50 --delay 0", "5  answers\n",
               "\nnothing answered: asking 2 stations once more, with 2000 ms for each reply"},
          Case{"--passes 1", "5  answers\n", "\n1 station answered\n"}}) {
        const SerialBridge line;
        const LibmodbusSlave slave(line.device(), 5);
        ASSERT_TRUE(slave.isConnected) << modbus_strerror(errno);
        const HostRun run =
            runHost(QStringList{"scan", QStringLiteral("rtutcp://127.0.0.1:%1").arg(line.port()), "stations",
                                "--from", "4", "--to", "5"} +
                    QString(c.options).split(' '));
        EXPECT_EQ(run.out, c.found) << c.options << '\n' << run.err.toStdString();
        EXPECT_TRUE(('\n' + run.err).contains(c.told)) << c.options << '\n' << run.err.toStdString();
    }
}

// The line takes one connection in its life.
TEST_F(Libmodbus, TakesTypedValues)
{
    const QString target = QStringLiteral("rtutcp://127.0.0.1:%1/1").arg(line.port());
    const HostRun written =
        runHost({"write", target, "HR1:f32@BADC=123456", "HR3:u64@GHEFCDAB=0x0123456789ABCDEF",
                 "HR7:str3=Abc", "HR9:bcd16=1234", "--verify"});
    EXPECT_EQ(written.code, 0) << written.err.toStdString();
    const std::vector<int> expected{0xF147, 0x0020, 0xCDEF, 0x89AB, 0x4567, 0x0123, 0x4162, 0x6300, 0x1234};
    for (size_t i = 0; i < expected.size(); ++i)
        EXPECT_EQ(slave.holdingRegister(1 + static_cast<int>(i)), expected[i]) << i;
}

} // namespace
