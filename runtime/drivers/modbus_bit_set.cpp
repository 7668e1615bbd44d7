#include "drivers/modbus_bit_set.h"

#include "drivers/address_marks.h"
#include "drivers/tools/tool_assert.h"

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

// By a mark for each address there can be: projects name the same ones over and over, which sorting would
// move about for nothing.
void ModbusBitSet::setSort(UShortVector &set)
{
    AddressMarks marks;
    for (UShortVector::const_iterator address = set.begin(); address != set.end(); ++address)
        marks.mark(*address);
    marks.addresses().swap(set);
}
