#include "drivers/modbus_bit_set.h"

#include "drivers/tools/tool_assert.h"

namespace
{

const unsigned int AddressCount = 65536;
const unsigned int AddressesPerWord = 32;

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

// By a mark for each address there can be: projects name the same ones over and over, which sorting would
// move about for nothing.
void ModbusBitSet::setSort(UShortVector &set)
{
    quint32 marks[AddressCount / AddressesPerWord] = {};
    for (UShortVector::const_iterator address = set.begin(); address != set.end(); ++address)
        marks[*address / AddressesPerWord] |= 1u << (*address % AddressesPerWord);

    auto end = set.begin();
    for (unsigned int first = 0; first < AddressCount; first += AddressesPerWord) {
        unsigned int address = first;
        for (quint32 left = marks[first / AddressesPerWord]; left != 0; left >>= 1, ++address) {
            if ((left & 1) != 0)
                *end++ = static_cast<ushort>(address);
        }
    }
    // A copy has just its size; shrink_to_fit() may do nothing in a build without exceptions.
    UShortVector(set.begin(), end).swap(set);
}
