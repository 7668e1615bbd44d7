#include "drivers/address_marks.h"

std::vector<ushort> AddressMarks::addresses() const
{
    std::vector<ushort> found;
    for (unsigned int first = 0; first < AddressCount; first += BitsInWord) {
        unsigned int address = first;
        for (quint32 left = words[first / BitsInWord]; left != 0; left >>= 1, ++address) {
            if ((left & 1) != 0)
                found.push_back(static_cast<ushort>(address));
        }
    }
    // A copy has just its size; shrink_to_fit() may do nothing in a build without exceptions.
    return std::vector<ushort>(found.begin(), found.end());
}
