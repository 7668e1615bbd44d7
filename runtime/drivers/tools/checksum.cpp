#include "drivers/tools/checksum.h"

#include "drivers/tools/crc_table.h"

using namespace crc_table;

namespace
{

// Made by the compiler.
constexpr CrcTable<quint16> crc16Table = reflectedTable<quint16>(0xA001, EveryByte());
constexpr CrcTable<quint16> kermitTable = reflectedTable<quint16>(0x8408, EveryByte());
constexpr CrcTable<quint16> dnpTable = reflectedTable<quint16>(0xA6BC, EveryByte());
constexpr CrcTable<quint16> ccittTable = unreflectedTable(0x1021, EveryByte());
constexpr CrcTable<quint32> crc32Table = reflectedTable<quint32>(0xEDB88320, EveryByte());

template <typename Word>
Word reflectedStep(const CrcTable<Word> &table, Word crc, char c)
{
    return static_cast<Word>((crc >> 8) ^ table.entries[(crc ^ static_cast<unsigned char>(c)) & 0xFFu]);
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
    const unsigned int index = ((crc >> 8) ^ static_cast<unsigned char>(c)) & 0xFFu;
    return static_cast<unsigned short>((crc << 8) ^ ccittTable.entries[index]);
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
