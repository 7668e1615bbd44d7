#pragma once

#include <QtGlobal>

#include <vector>

/// \file
/// Which bits of a station a project uses.

/// Addresses of bits.
typedef std::vector<ushort> UShortVector;

/// The coil ("DO") and discrete-input ("DI") addresses of one station that a project uses: pushed in any
/// order, sorted once, then only searched. Addresses are zero-based, as on the wire.
class ModbusBitSet
{
public:
    /// Appends \a address as it comes, unordered and unchecked.
    /// @{
    void DOSetPush(ushort address) { doSet.push_back(address); }
    void DISetPush(ushort address) { diSet.push_back(address); }
    /// @}
    /// Sorts the set, so that it can be searched.
    /// @{
    void DOSetSort() { setSort(doSet); }
    void DISetSort() { setSort(diSet); }
    /// @}

    /// The index of \a address in the sorted set, -1 when it is not there. With \a from the search begins at
    /// that index: in 1 3 5 the index of 5 is 2, and from 3 on it is -1.
    /// @{
    int DOSetContains(ushort address) const { return setContains(doSet, 0, address); }
    int DISetContains(ushort address) const { return setContains(diSet, 0, address); }
    int DOSetContains(int from, ushort address) const { return setContains(doSet, from, address); }
    int DISetContains(int from, ushort address) const { return setContains(diSet, from, address); }
    /// @}

    /// The sets themselves, ascending and without duplicates once sorted.
    /// @{
    const UShortVector &DOSet() const { return doSet; }
    const UShortVector &DISet() const { return diSet; }
    /// @}

    /// The index of \a value in the sorted \a set, at \a l or after it; -1 when it is not there. A negative
    /// \a l stops the process; one past the end finds nothing.
    static int setContains(const UShortVector &set, int l, ushort value);
    /// Sorts ascending, removes duplicates and gives back the memory that is no longer needed.
    static void setSort(UShortVector &set);

private:
    UShortVector doSet;
    UShortVector diSet;
};
