#include "drivers/tools/byte_order.h"

namespace
{

QByteArray littleEndian(unsigned int value, int size)
{
    QByteArray bytes(size, Qt::Uninitialized);
    char *out = bytes.data();
    for (int i = 0; i < size; ++i)
        out[i] = static_cast<char>((value >> (8 * i)) & 0xFFu);
    return bytes;
}

unsigned int fromLittleEndian(const QByteArray &bytes, int maxSize)
{
    unsigned int value = 0;
    for (int i = qMin(bytes.size(), maxSize) - 1; i >= 0; --i)
        value = (value << 8) | static_cast<unsigned char>(bytes.at(i));
    return value;
}

QByteArray paddedToMultipleOf(int itemSize, const QByteArray &bytes)
{
    const int partial = bytes.size() % itemSize;
    return partial == 0 ? bytes : bytes + QByteArray(itemSize - partial, '\0');
}

// Copies whole items, each with its bytes in reverse order. Source and target may be the same memory.
void swapWords(const char *source, char *target, int count)
{
    for (int i = 0; i < count; ++i, source += 2, target += 2) {
        const char first = source[0];
        target[0] = source[1];
        target[1] = first;
    }
}

void swapDoubleWords(const char *source, char *target, int count)
{
    for (int i = 0; i < count; ++i, source += 4, target += 4) {
        const char first = source[0];
        const char second = source[1];
        target[0] = source[3];
        target[1] = source[2];
        target[2] = second;
        target[3] = first;
    }
}

} // namespace

QByteArray wordToByteArray(unsigned short value)
{
    return littleEndian(value, 2);
}

QByteArray shortToByteArray(short value)
{
    return littleEndian(static_cast<unsigned short>(value), 2);
}

QByteArray intToByteArray(int value)
{
    return littleEndian(static_cast<unsigned int>(value), 4);
}

int QByteArrayToInt(const QByteArray &bytes)
{
    return static_cast<int>(fromLittleEndian(bytes, 4));
}

unsigned short QByteArrayToWord(const QByteArray &bytes)
{
    return static_cast<unsigned short>(fromLittleEndian(bytes, 2));
}

short QByteArrayToShort(const QByteArray &bytes)
{
    return static_cast<short>(QByteArrayToWord(bytes));
}

void appendBigEndianUShort(QByteArray &bytes, unsigned short value)
{
    bytes.append(static_cast<char>(value >> 8));
    bytes.append(static_cast<char>(value & 0xFF));
}

bool isBigEndian()
{
    return true;
}

QByteArray fromBigEndianUShortArray(const unsigned char *source, int count)
{
    const int items = qMax(count, 0);
    QByteArray swapped(2 * items, Qt::Uninitialized);
    swapWords(reinterpret_cast<const char *>(source), swapped.data(), items);
    return swapped;
}

QByteArray fromBigEndianULongArray(const unsigned char *source, int count)
{
    const int items = qMax(count, 0);
    QByteArray swapped(4 * items, Qt::Uninitialized);
    swapDoubleWords(reinterpret_cast<const char *>(source), swapped.data(), items);
    return swapped;
}

QByteArray toBigEndianUShortArray(const QByteArray &bytes)
{
    QByteArray swapped = To16bitsData(bytes);
    toLittleEndianUShortArray(swapped);
    return swapped;
}

QByteArray toBigEndianULongArray(const QByteArray &bytes)
{
    QByteArray swapped = To32bitsData(bytes);
    toLittleEndianULongArray(swapped);
    return swapped;
}

void toLittleEndianUShortArray(QByteArray &bytes)
{
    char *data = bytes.data();
    swapWords(data, data, bytes.size() / 2);
}

void toLittleEndianULongArray(QByteArray &bytes)
{
    char *data = bytes.data();
    swapDoubleWords(data, data, bytes.size() / 4);
}

QByteArray To16bitsData(const QByteArray &bytes)
{
    return paddedToMultipleOf(2, bytes);
}

QByteArray To32bitsData(const QByteArray &bytes)
{
    return paddedToMultipleOf(4, bytes);
}

QByteArray To64bitsData(const QByteArray &bytes)
{
    return bytes.size() % 8 < 4 ? To32bitsData(bytes) : bytes;
}
