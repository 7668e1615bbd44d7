#pragma once

#include <QtGlobal>

/// \file
/// How the compiler makes the tables of the CRCs.

namespace crc_table
{

/// Entry i is what the eight bits of byte i leave in the CRC.
template <typename Word>
struct CrcTable {
    Word entries[256]; ///< by byte
};

/// \cond Lists of numbers as types, which C++14 has in its library.
template <unsigned int... indices>
struct Indices {
};

template <unsigned int count, unsigned int... indices>
struct IndicesBelow : IndicesBelow<count - 1, count - 1, indices...> {
};

template <unsigned int... indices>
struct IndicesBelow<0, indices...> {
    typedef Indices<indices...> type;
};
/// \endcond

typedef IndicesBelow<256>::type EveryByte; ///< 0 to 255

/// What is left of \a rest after \a bits steps of a CRC whose lowest bit comes first.
constexpr quint32 dividedFromLowBit(quint32 rest, quint32 polynomial, int bits)
{
    return bits == 0
               ? rest
               : dividedFromLowBit((rest >> 1) ^ ((rest & 1u) != 0 ? polynomial : 0u), polynomial, bits - 1);
}

/// The same of a CRC of 16 bits whose highest bit comes first.
constexpr quint32 dividedFromBit15(quint32 rest, quint32 polynomial, int bits)
{
    return bits == 0 ? rest & 0xFFFFu
                     : dividedFromBit15((rest << 1) ^ ((rest & 0x8000u) != 0 ? polynomial : 0u), polynomial,
                                        bits - 1);
}

/// The table of a CRC whose lowest bit comes first.
template <typename Word, unsigned int... bytes>
constexpr CrcTable<Word> reflectedTable(quint32 polynomial, Indices<bytes...> /*bytes*/)
{
    return CrcTable<Word>{{static_cast<Word>(dividedFromLowBit(bytes, polynomial, 8))...}};
}

/// The table of a CRC of 16 bits whose highest bit comes first.
template <unsigned int... bytes>
constexpr CrcTable<quint16> unreflectedTable(quint32 polynomial, Indices<bytes...> /*bytes*/)
{
    return CrcTable<quint16>{{static_cast<quint16>(dividedFromBit15(bytes << 8, polynomial, 8))...}};
}

} // namespace crc_table
