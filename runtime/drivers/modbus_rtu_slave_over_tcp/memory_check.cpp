#include "drivers/modbus_rtu_slave_over_tcp/memory_check.h"

#include <cstdlib>
#include <limits>

namespace
{

// More than what Qt keeps beside the bytes of an array.
const quint64 ArrayHeader = 64;

} // namespace

bool canAllocate(qint64 size)
{
    const auto wanted =
        qMin<quint64>(static_cast<quint64>(size) + ArrayHeader, std::numeric_limits<size_t>::max());
    // Volatile, since a compiler may leave out memory that nobody uses.
    void *volatile memory = std::malloc(static_cast<size_t>(wanted));
    std::free(memory);
    return memory != nullptr;
}
