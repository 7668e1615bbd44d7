#include "drivers/modbus_bit_set.h"

#include <gtest/gtest.h>

#include <initializer_list>

TEST(BitSet, EmptySetContainsNothing)
{
    const ModbusBitSet set;
    EXPECT_EQ(set.DOSetContains(0), -1);
    EXPECT_EQ(set.DISetContains(0), -1);
    EXPECT_EQ(set.DOSetContains(3, 5), -1);
    EXPECT_EQ(set.DISetContains(3, 5), -1);
}

TEST(BitSet, SortsAndDropsDuplicates)
{
    ModbusBitSet set;
    for (const ushort address : std::initializer_list<ushort>{5, 3, 5, 1})
        set.DOSetPush(address);
    set.DOSetSort();
    EXPECT_EQ(set.DOSet(), (UShortVector{1, 3, 5}));
    EXPECT_EQ(set.DOSetContains(5), 2);
    EXPECT_EQ(set.DOSetContains(3, 5), -1);
    EXPECT_EQ(set.DOSetContains(2, 1), -1);
    EXPECT_TRUE(set.DISet().empty());
}

TEST(BitSet, BothSetsAreSearchedFromTheFirstEntryByDefault)
{
    ModbusBitSet set;
    set.DISetPush(7);
    set.DISetSort();
    EXPECT_EQ(set.DISetContains(7), 0);
    set.DOSetPush(8);
    set.DOSetSort();
    EXPECT_EQ(set.DOSetContains(8), 0);
}

TEST(BitSet, SortGivesMemoryBack)
{
    UShortVector set(100000, 7);
    ModbusBitSet::setSort(set);
    EXPECT_EQ(set, UShortVector{7});
    EXPECT_EQ(set.capacity(), 1u);
}

TEST(BitSet, FindsEveryEntryFromEveryStart)
{
    UShortVector set;
    for (int address = 0; address < 65535; address += 257)
        set.push_back(static_cast<ushort>(address));
    const int size = static_cast<int>(set.size());
    for (int from = 0; from <= size; ++from)
        for (int i = 0; i < size; ++i) {
            EXPECT_EQ(ModbusBitSet::setContains(set, from, set[static_cast<size_t>(i)]), i < from ? -1 : i);
            EXPECT_EQ(
                ModbusBitSet::setContains(set, from, static_cast<ushort>(set[static_cast<size_t>(i)] + 1)),
                -1);
        }
}

TEST(BitSetDeathTest, NegativeStartStopsTheProcess)
{
    EXPECT_DEATH(ModbusBitSet::setContains(UShortVector{1}, -1, 1), "\"l >= 0\"");
}
