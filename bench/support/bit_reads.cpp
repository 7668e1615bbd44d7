#include "bench/support/bit_reads.h"

#include "bench/support/filled_slave.h"
#include "tests/doubles/command.h"

#include <functional>

namespace
{

const int ByteCount = 250;

// The pattern is that of make_projects.py.
BitRead bitRead(const char *name, const char *port, int requests, const std::function<bool(int)> &isUsed)
{
    QByteArray expected(ByteCount, '\0');
    for (int i = 0; i < 8 * ByteCount; ++i)
        if (isUsed(i) && bitValue(i))
            expected[i / 8] = static_cast<char>(expected.at(i / 8) | 1 << i % 8);
    return {QLatin1String(port),
            {name, makeCommand(ByteItem, QLatin1String("DI1"), ByteCount), {}, expected, 2, 0, 8 * ByteCount},
            requests};
}

} // namespace

std::vector<BitRead> measuredBitReads()
{
    return {bitRead("250 bytes of bits, 1 request", "COM1", 1, [](int) { return true; }),
            bitRead("250 bytes of bits, 125 requests", "COM2", 125, [](int i) { return i % 16 < 8; }),
            bitRead("250 bytes of bits, 1000 requests", "COM3", 1000, [](int i) { return i % 2 == 0; }),
            bitRead("250 bytes of bits, 0 requests", "COM4", 0, [](int) { return false; })};
}
