#include "bench/tcp/client.h"
#include "bench/tcp/slave.h"

#include <modbus.h>

#include <cerrno>
#include <stdexcept>

namespace
{

class LibmodbusClient : public Client
{
public:
    LibmodbusClient() : context(modbus_new_tcp("127.0.0.1", slave.port()), modbus_free)
    {
        modbus_set_slave(context.get(), 1);
        if (modbus_connect(context.get()) != 0)
            throw std::runtime_error(modbus_strerror(errno));
    }

    ~LibmodbusClient() override { modbus_close(context.get()); }

    const char *name() const override { return "libmodbus"; }

    void prepare(const Transaction &next) override
    {
        transaction = next;
        const auto count = static_cast<size_t>(transaction.count);
        registers.assign(count, 0);
        bits.assign(count, 0);
        for (int i = 0; 2 * i + 1 < transaction.written.size(); ++i)
            registers[static_cast<size_t>(i)] =
                static_cast<uint16_t>(static_cast<unsigned char>(transaction.written.at(2 * i)) |
                                      static_cast<unsigned char>(transaction.written.at(2 * i + 1)) << 8);
    }

    void run() override
    {
        switch (transaction.function) {
        case 1:
            done = modbus_read_bits(context.get(), transaction.start, transaction.count, bits.data());
            break;
        case 3:
            done =
                modbus_read_registers(context.get(), transaction.start, transaction.count, registers.data());
            break;
        default:
            done =
                modbus_write_registers(context.get(), transaction.start, transaction.count, registers.data());
        }
    }

    QByteArray result() override
    {
        if (done != transaction.count)
            throw std::runtime_error(modbus_strerror(errno));
        if (!transaction.written.isEmpty())
            return QByteArray();
        return transaction.function == 1 ? packedBits() : littleEndianRegisters();
    }

private:
    QByteArray packedBits() const
    {
        QByteArray bytes((transaction.count + 7) / 8, '\0');
        for (int i = 0; i < transaction.count; ++i)
            if (bits[static_cast<size_t>(i)] != 0)
                bytes[i / 8] = static_cast<char>(bytes.at(i / 8) | 1 << i % 8);
        return bytes;
    }

    QByteArray littleEndianRegisters() const
    {
        QByteArray bytes;
        for (const uint16_t value : registers) {
            bytes.append(static_cast<char>(value & 0xFF));
            bytes.append(static_cast<char>(value >> 8));
        }
        return bytes;
    }

    Slave slave{Framing::Mbap};
    std::unique_ptr<modbus_t, void (*)(modbus_t *)> context;
    Transaction transaction;
    std::vector<uint16_t> registers;
    std::vector<uint8_t> bits;
    int done = 0;
};

} // namespace

std::unique_ptr<Client> libmodbusClient()
{
    return std::make_unique<LibmodbusClient>();
}
