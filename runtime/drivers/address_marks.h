#pragma once

#include <QtGlobal>

#include <vector>

/// Which of the 65536 addresses of an area are marked, in 8 KB.
class AddressMarks
{
public:
    /// None is.
    AddressMarks() : words() {}

    /// Marks \a address; once more changes nothing.
    void mark(ushort address) { words[address / BitsInWord] |= 1u << address % BitsInWord; }
    /// The marked ones, ascending, in memory of just their size.
    std::vector<ushort> addresses() const;

private:
    static const unsigned int AddressCount = 65536;
    static const unsigned int BitsInWord = 32;

    quint32 words[AddressCount / BitsInWord];
};
