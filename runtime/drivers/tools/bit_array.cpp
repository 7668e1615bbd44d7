#include "drivers/tools/bit_array.h"

#include "drivers/qt/qt_lines.h"

namespace
{

template <typename Integer>
Integer bitAt(unsigned short index)
{
    return index < 8 * sizeof(Integer) ? static_cast<Integer>(Integer(1) << index) : Integer(0);
}

template <typename Integer>
Integer withBit(Integer value, unsigned short index)
{
    return static_cast<Integer>(value | bitAt<Integer>(index));
}

template <typename Integer>
Integer withoutBit(Integer value, unsigned short index)
{
    return static_cast<Integer>(value & ~bitAt<Integer>(index));
}

template <typename Integer>
bool hasBit(Integer value, unsigned short index)
{
    return (value & bitAt<Integer>(index)) != 0;
}

unsigned char *bytesOf(QByteArray &bits)
{
    return reinterpret_cast<unsigned char *>(bits.data());
}

const unsigned char *bytesOf(const QByteArray &bits)
{
    return reinterpret_cast<const unsigned char *>(bits.constData());
}

void growTo(QByteArray &bits, int size)
{
    if (bits.size() < size)
        bits.append(QByteArray(size - bits.size(), '\0'));
}

// Moves the bits of the first `size` bytes towards bit 0 by 0 to 7; zeros come in at the top.
void shiftWithinBytes(unsigned char *bytes, int size, int n)
{
    for (int i = 0; i < size; ++i) {
        const unsigned int above = i + 1 < size ? bytes[i + 1] : 0u;
        bytes[i] = static_cast<unsigned char>((bytes[i] | above << 8) >> n);
    }
}

// Eight bits of `bits` from bit `first` on; those beyond the end are 0.
unsigned int eightBitsFrom(const QByteArray &bits, int first)
{
    const int byte = first / 8;
    const unsigned int low = byte < bits.size() ? bytesOf(bits)[byte] : 0u;
    const unsigned int high = byte + 1 < bits.size() ? bytesOf(bits)[byte + 1] : 0u;
    return ((low | high << 8) >> (first % 8)) & 0xFFu;
}

} // namespace

unsigned char setBit(unsigned char value, unsigned short index)
{
    return withBit(value, index);
}

unsigned short setBit(unsigned short value, unsigned short index)
{
    return withBit(value, index);
}

unsigned int setBit(unsigned int value, unsigned short index)
{
    return withBit(value, index);
}

unsigned char clearBit(unsigned char value, unsigned short index)
{
    return withoutBit(value, index);
}

unsigned short clearBit(unsigned short value, unsigned short index)
{
    return withoutBit(value, index);
}

unsigned int clearBit(unsigned int value, unsigned short index)
{
    return withoutBit(value, index);
}

bool getBit(unsigned char value, unsigned short index)
{
    return hasBit(value, index);
}

bool getBit(unsigned short value, unsigned short index)
{
    return hasBit(value, index);
}

bool getBit(unsigned int value, unsigned short index)
{
    return hasBit(value, index);
}

bool getBit(const QByteArray &bits, int index)
{
    return index >= 0 && index / 8 < bits.size() && getBit(bytesOf(bits), index);
}

bool getBit(const unsigned char *bits, int index)
{
    return ((bits[index / 8] >> (index % 8)) & 1) != 0;
}

void setBit(QByteArray &bits, int index, bool on)
{
    if (index < 0)
        return;
    growTo(bits, index / 8 + 1);
    setBit(bytesOf(bits), index, on);
}

void setBit(unsigned char *bits, int index, bool on)
{
    const unsigned char byte = bits[index / 8];
    const auto bit = static_cast<unsigned short>(index % 8);
    bits[index / 8] = on ? setBit(byte, bit) : clearBit(byte, bit);
}

void CopyBits(QByteArray &target, const QByteArray &source, int targetStart, int count)
{
    if (count < 1 || targetStart < 0)
        return;
    growTo(target, static_cast<int>((qint64(targetStart) + count - 1) / 8 + 1));
    unsigned char *byte = bytesOf(target) + targetStart / 8;
    int shift = targetStart % 8;
    for (int copied = 0; copied < count; shift = 0, ++byte) {
        const int width = qMin(8 - shift, count - copied);
        const unsigned int mask = ((1u << width) - 1u) << shift;
        *byte = static_cast<unsigned char>((*byte & ~mask) | (eightBitsFrom(source, copied) << shift & mask));
        copied += width;
    }
}

void FitBitArray(QByteArray &bits, int numBits)
{
    const int wanted = qMax(numBits, 0);
    const int size = wanted / 8 + (wanted % 8 != 0 ? 1 : 0);
    growTo(bits, size);
    bits.resize(size);
}

void clearUnnecessaryBits(QByteArray &bits, int numBits)
{
    const int kept = numBits % 8;
    if (kept > 0 && numBits / 8 < bits.size())
        bytesOf(bits)[numBits / 8] &= static_cast<unsigned char>((1 << kept) - 1);
}

QByteArray ExpandBitsToBytes(const QByteArray &bits, unsigned short start, int count)
{
    QByteArray bytes(qMax(count, 0), Qt::Uninitialized);
    char *out = bytes.data();
    for (int i = 0; i < bytes.size(); ++i)
        out[i] = getBit(bits, start + i) ? 1 : 0;
    return bytes;
}

void RightShiftNBits(QByteArray &bits, int n)
{
    if (n < 1 || n / 8 >= bits.size())
        return;
    unsigned char *bytes = bytesOf(bits);
    const int shiftedOut = n / 8;
    const int left = sizeOf(bits) - shiftedOut;
    RotateArray(bytes, shiftedOut, left);
    shiftWithinBytes(bytes, left, n % 8);
}
