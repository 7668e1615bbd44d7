#include "drivers/tools/byte_order.h"

#include "drivers/qt/qt_lines.h"

#include <QtEndian>

#include <cstring>

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
    for (int i = qMin(sizeOf(bytes), maxSize) - 1; i >= 0; --i)
        value = (value << 8) | static_cast<unsigned char>(bytes.at(i));
    return value;
}

QByteArray paddedToMultipleOf(int itemSize, const QByteArray &bytes)
{
    const int partial = sizeOf(bytes) % itemSize;
    return partial == 0 ? bytes : bytes + QByteArray(itemSize - partial, '\0');
}

const unsigned char *bytesOf(const QByteArray &bytes)
{
    return reinterpret_cast<const unsigned char *>(bytes.constData());
}

// Copies whole items, each with its bytes in reverse order. Source and target may be the same memory.
template <typename Item>
void reverseItems(const unsigned char *source, char *target, int count)
{
    for (int i = 0; i < count; ++i, source += sizeof(Item), target += sizeof(Item)) {
        Item item;
        std::memcpy(&item, source, sizeof item);
        item = qbswap<Item>(item);
        std::memcpy(target, &item, sizeof item);
    }
}

// Inline, since every transfer of registers comes through here, and most of them are of a few.
template <typename Item>
inline QByteArray reversedItems(const unsigned char *source, int count)
{
    const int items = qMax(count, 0);
    QByteArray reversed(static_cast<int>(sizeof(Item)) * items, Qt::Uninitialized);
    reverseItems<Item>(source, reversed.data(), items);
    return reversed;
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
    return reversedItems<quint16>(source, count);
}

QByteArray fromBigEndianULongArray(const unsigned char *source, int count)
{
    return reversedItems<quint32>(source, count);
}

// Nearly all data consists of whole items, which need no padded copy.

QByteArray toBigEndianUShortArray(const QByteArray &bytes)
{
    return bytes.size() % 2 == 0 ? fromBigEndianUShortArray(bytesOf(bytes), sizeOf(bytes) / 2)
                                 : toBigEndianUShortArray(To16bitsData(bytes));
}

QByteArray toBigEndianULongArray(const QByteArray &bytes)
{
    return bytes.size() % 4 == 0 ? fromBigEndianULongArray(bytesOf(bytes), sizeOf(bytes) / 4)
                                 : toBigEndianULongArray(To32bitsData(bytes));
}

void toLittleEndianUShortArray(QByteArray &bytes)
{
    char *data = bytes.data();
    reverseItems<quint16>(bytesOf(bytes), data, sizeOf(bytes) / 2);
}

void toLittleEndianULongArray(QByteArray &bytes)
{
    char *data = bytes.data();
    reverseItems<quint32>(bytesOf(bytes), data, sizeOf(bytes) / 4);
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
