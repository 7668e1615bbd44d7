#include "drivers/modbus_bit_set.h"

#include "drivers/tools/tool_assert.h"

#include <bitset>

namespace
{

const size_t AddressCount = 65536;

} // namespace

int ModbusBitSet::setContains(const UShortVector &set, int l, ushort value)
{
    TOOL_ASSERT(l >= 0, "l >= 0");
    int r = static_cast<int>(set.size()) - 1;
    while (l <= r) {
        const int m = l + (r - l) / 2;
        const ushort found = set[static_cast<size_t>(m)];
        if (found > value)
            r = m - 1;
        else if (found < value)
            l = m + 1;
        else
            return m;
    }
    return -1;
}

// By a bit for each address there can be: projects name the same ones over and over, which sorting would move
// about for nothing. _Find_first() and _Find_next() are libstdc++'s, as on every panel.
void ModbusBitSet::setSort(UShortVector &set)
{
    std::bitset<AddressCount> used;
    for (UShortVector::const_iterator address = set.begin(); address != set.end(); ++address)
        used[*address] = true;
    auto end = set.begin();
    for (size_t address = used._Find_first(); address < used.size(); address = used._Find_next(address))
        *end++ = static_cast<ushort>(address);
    // A copy has just its size; shrink_to_fit() may do nothing in a build without exceptions.
    UShortVector(set.begin(), end).swap(set);
}
