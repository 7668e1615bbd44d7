#include "drivers/modbus_rtu_slave_over_tcp/project/bit_runs.h"

#include <algorithm>

namespace
{

typedef UShortVector::const_iterator Address;

// The address at which a walk upwards from `offset` first arrives, past the end of the area if it must.
Address firstFrom(const UShortVector &used, unsigned short offset)
{
    const Address found = std::lower_bound(used.begin(), used.end(), offset);
    return found == used.end() ? used.begin() : found;
}

// The end of the run that begins at `first`.
Address endOfRun(Address first, Address end)
{
    auto next = first + 1;
    while (next != end && *next == *(next - 1) + 1)
        ++next;
    return next;
}

int distance(unsigned short from, unsigned short to)
{
    return static_cast<unsigned short>(to - from);
}

} // namespace

std::vector<BitRun> bitRuns(const UShortVector &used, unsigned short offset, int count)
{
    std::vector<BitRun> runs;
    auto first = firstFrom(used, offset);
    while (first != used.end() && distance(offset, *first) < count) {
        const Address next = endOfRun(first, used.end());
        const int position = distance(offset, *first);
        const BitRun run = {*first, qMin(static_cast<int>(next - first), count - position), position};
        runs.push_back(run);
        first = next;
    }
    return runs;
}
