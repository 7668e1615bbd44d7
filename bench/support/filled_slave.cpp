#include "bench/support/filled_slave.h"

#include "tests/doubles/frames.h"

namespace
{

std::uint16_t registerValue(int address)
{
    return static_cast<std::uint16_t>(address * 257 + 0x1234);
}

} // namespace

ModelSlave filledSlave()
{
    ModelSlave slave;
    for (size_t i = 0; i < slave.coils.size(); ++i) {
        const int address = static_cast<int>(i);
        slave.coils[i] = bitValue(address) ? 1 : 0;
        slave.holdingRegisters[i] = registerValue(address);
    }
    slave.discreteInputs = slave.coils;
    slave.inputRegisters = slave.holdingRegisters;
    return slave;
}

bool bitValue(int address)
{
    return address % 3 == 0 || address % 7 == 2;
}

QByteArray wireRegisters(int start, int count)
{
    QByteArray bytes;
    for (int i = 0; i < count; ++i)
        bytes += bigEndian(registerValue(start + i));
    return bytes;
}

QByteArray hostRegisters(int start, int count)
{
    QByteArray bytes;
    for (int i = 0; i < count; ++i) {
        bytes.append(static_cast<char>(registerValue(start + i) & 0xFF));
        bytes.append(static_cast<char>(registerValue(start + i) >> 8));
    }
    return bytes;
}

QByteArray hostBits(int start, int count)
{
    QByteArray bytes((count + 7) / 8, '\0');
    for (int i = 0; i < count; ++i)
        if (bitValue(start + i))
            bytes[i / 8] = static_cast<char>(bytes.at(i / 8) | 1 << i % 8);
    return bytes;
}
