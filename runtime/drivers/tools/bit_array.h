#pragma once

#include <QByteArray>

#include <algorithm>

/// Single bits. Bit 0 is the least significant; in byte arrays bit i is bit i % 8 of byte i / 8, the packing
/// of coils and discrete inputs ("MODBUS Application Protocol V1.1b3", 6.1).

/// \a value with bit \a index set or cleared. An index at or beyond the width changes nothing and reads as
/// false.
unsigned char setBit(unsigned char value, unsigned short index);
unsigned short setBit(unsigned short value, unsigned short index);
unsigned int setBit(unsigned int value, unsigned short index);
unsigned char clearBit(unsigned char value, unsigned short index);
unsigned short clearBit(unsigned short value, unsigned short index);
unsigned int clearBit(unsigned int value, unsigned short index);
bool getBit(unsigned char value, unsigned short index);
bool getBit(unsigned short value, unsigned short index);
bool getBit(unsigned int value, unsigned short index);

/// Bit \a index of \a bits; false when the array has no such bit.
bool getBit(const QByteArray &bits, int index);
/// Bit \a index of the memory at \a bits, which must hold it.
bool getBit(const unsigned char *bits, int index);
/// Sets or clears bit \a index; the array first grows with zero bytes until it has it. A negative index does
/// nothing.
void setBit(QByteArray &bits, int index, bool on);
/// Sets or clears bit \a index of the memory at \a bits, which must hold it.
void setBit(unsigned char *bits, int index, bool on);

/// Copies bits 0 .. count - 1 of \a source to bits targetStart .. of \a target, which grows as setBit() grows
/// it. Nothing when \a count < 1 or \a targetStart is negative; bits that \a source lacks are copied as 0.
void CopyBits(QByteArray &target, const QByteArray &source, int targetStart, int count);
/// Resizes \a bits to the bytes that \a numBits bits take; to none when \a numBits is negative.
void FitBitArray(QByteArray &bits, int numBits);
/// Clears the bits from bit \a numBits on in the byte that holds it; nothing when \a numBits is a multiple of
/// 8 or there is no such byte.
void clearUnnecessaryBits(QByteArray &bits, int numBits);
/// One byte, 0 or 1, for each of the \a count bits from bit \a start on. Empty when \a count < 1.
QByteArray ExpandBitsToBytes(const QByteArray &bits, unsigned short start, int count);
/// Shifts the bits towards bit 0 by \a n. The size stays; the n / 8 bytes that were shifted out stand,
/// unchanged, at the end, since every caller cuts the array afterwards: 11 22 33 by 12 gives 32 03 11.
/// Nothing when \a n is negative or not below the number of bits.
void RightShiftNBits(QByteArray &bits, int n);

/// Rotates the k + m items at \a items left by \a k: items[k .. k + m - 1], then items[0 .. k - 1].
template <typename T>
void RotateArray(T *items, int k, int m)
{
    std::reverse(items, items + k);
    std::reverse(items + k, items + k + m);
    std::reverse(items, items + k + m);
}
