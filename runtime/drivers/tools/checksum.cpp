#include "drivers/tools/checksum.h"

#include <QtGlobal>

namespace
{

// Tables of the CRCs, made by the compiler: what the eight bits of a byte leave behind. That is what its two
// halves leave, added without carry, so 2 * 16 entries stand for 256; on a panel the room counts.

template <typename Word>
struct CrcTable {
    Word ofLowHalf[16];
    Word ofHighHalf[16];

    unsigned int of(unsigned int byte) const
    {
        return static_cast<unsigned int>(ofLowHalf[byte & 0xFu]) ^ ofHighHalf[(byte >> 4) & 0xFu];
    }
};

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

typedef IndicesBelow<16>::type EveryHalf;

constexpr quint32 dividedFromLowBit(quint32 rest, quint32 polynomial, int bits)
{
    return bits == 0
               ? rest
               : dividedFromLowBit((rest >> 1) ^ ((rest & 1u) != 0 ? polynomial : 0u), polynomial, bits - 1);
}

constexpr quint32 dividedFromBit15(quint32 rest, quint32 polynomial, int bits)
{
    return bits == 0 ? rest & 0xFFFFu
                     : dividedFromBit15((rest << 1) ^ ((rest & 0x8000u) != 0 ? polynomial : 0u), polynomial,
                                        bits - 1);
}

template <typename Word, unsigned int... halves>
constexpr CrcTable<Word> reflectedTable(quint32 polynomial, Indices<halves...> /*unused*/)
{
    return CrcTable<Word>{{static_cast<Word>(dividedFromLowBit(halves, polynomial, 8))...},
                          {static_cast<Word>(dividedFromLowBit(halves << 4, polynomial, 8))...}};
}

template <unsigned int... halves>
constexpr CrcTable<quint16> unreflectedTable(quint32 polynomial, Indices<halves...> /*unused*/)
{
    return CrcTable<quint16>{{static_cast<quint16>(dividedFromBit15(halves << 8, polynomial, 8))...},
                             {static_cast<quint16>(dividedFromBit15(halves << 12, polynomial, 8))...}};
}

constexpr CrcTable<quint16> crc16Table = reflectedTable<quint16>(0xA001, EveryHalf());
constexpr CrcTable<quint16> kermitTable = reflectedTable<quint16>(0x8408, EveryHalf());
constexpr CrcTable<quint16> dnpTable = reflectedTable<quint16>(0xA6BC, EveryHalf());
constexpr CrcTable<quint16> ccittTable = unreflectedTable(0x1021, EveryHalf());
constexpr CrcTable<quint32> crc32Table = reflectedTable<quint32>(0xEDB88320, EveryHalf());

template <typename Word>
Word reflectedStep(const CrcTable<Word> &table, Word crc, char c)
{
    return static_cast<Word>((crc >> 8) ^ table.of(crc ^ static_cast<unsigned char>(c)));
}

} // namespace

unsigned char UInt8CheckSum(const unsigned char *data, int length)
{
    return static_cast<unsigned char>(UShortCheckSum(data, length) & 0xFF);
}

unsigned short UShortCheckSum(const unsigned char *data, int length)
{
    unsigned int sum = 0;
    for (int i = 0; i < length; ++i)
        sum += data[i];
    return static_cast<unsigned short>(sum & 0xFFFFu);
}

unsigned char XorUInt8CheckSum(const unsigned char *data, int length)
{
    unsigned char sum = 0;
    for (int i = 0; i < length; ++i)
        sum = static_cast<unsigned char>(sum ^ data[i]);
    return sum;
}

unsigned short CRC16Calculate(const unsigned char *data, int length)
{
    unsigned short crc = 0;
    for (int i = 0; i < length; ++i)
        crc = update_crc_16(crc, static_cast<char>(data[i]));
    return crc;
}

unsigned short update_crc_16(unsigned short crc, char c)
{
    return reflectedStep(crc16Table, crc, c);
}

unsigned short update_crc_kermit(unsigned short crc, char c)
{
    return reflectedStep(kermitTable, crc, c);
}

unsigned short update_crc_dnp(unsigned short crc, char c)
{
    return reflectedStep(dnpTable, crc, c);
}

unsigned short update_crc_ccitt(unsigned short crc, char c)
{
    const unsigned int byte = (crc >> 8) ^ static_cast<unsigned char>(c);
    return static_cast<unsigned short>((crc << 8) ^ ccittTable.of(byte));
}

unsigned long update_crc_32(unsigned long crc, char c)
{
    return reflectedStep(crc32Table, static_cast<quint32>(crc), c);
}

unsigned short update_crc_sick(unsigned short crc, char c, char prev)
{
    const unsigned int pair =
        static_cast<unsigned int>(static_cast<unsigned char>(prev)) << 8 | static_cast<unsigned char>(c);
    const unsigned int polynomial = (crc & 0x8000u) != 0 ? 0x8005u : 0u;
    return static_cast<unsigned short>(((static_cast<unsigned int>(crc) << 1) ^ polynomial ^ pair) & 0xFFFFu);
}
