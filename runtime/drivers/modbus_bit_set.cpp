#include "drivers/modbus_bit_set.h"

#include "drivers/tools/tool_assert.h"

#include <algorithm>

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

void ModbusBitSet::setSort(UShortVector &set)
{
    std::sort(set.begin(), set.end());
    // A copy of the unique part has just its size; shrink_to_fit() may do nothing in a build without
    // exceptions.
    UShortVector(set.begin(), std::unique(set.begin(), set.end())).swap(set);
}
