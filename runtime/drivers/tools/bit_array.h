#pragma once

#include <QByteArray>

#include <algorithm>

/// \file
/// Single bits. Bit 0 is the least significant; in byte arrays bit i is bit i % 8 of byte i / 8, the packing
/// of coils and discrete inputs ("MODBUS Application Protocol V1.1b3", 6.1).

/// \a value with bit \a index set; an index at or beyond the width changes nothing.
/// @{
unsigned char setBit(unsigned char value, unsigned short index);
unsigned short setBit(unsigned short value, unsigned short index);
unsigned int setBit(unsigned int value, unsigned short index);
/// @}
/// \a value with bit \a index cleared; an index at or beyond the width changes nothing.
/// @{
unsigned char clearBit(unsigned char value, unsigned short index);
unsigned short clearBit(unsigned short value, unsigned short index);
unsigned int clearBit(unsigned int value, unsigned short index);
/// @}
/// Bit \a index of \a value; false for an index at or beyond the width.
/// @{
bool getBit(unsigned char value, unsigned short index);
bool getBit(unsigned short value, unsigned short index);
bool getBit(unsigned int value, unsigned short index);
/// @}

/// Bit \a index of \a bits; false when the array has no such bit.
bool getBit(const QByteArray &bits, int index);
/// Bit \a index of the memory at \a bits, which must hold it.
bool getBit(const unsigned char *bits, int index);
/// Sets or clears bit \a index; the array first grows with zero bytes until it has it. A negative index does
/// nothing.
void setBit(QByteArray &bits, int index, bool on);
/// Sets or clears bit \a index of the memory at \a bits, which must hold it.
void setBit(unsigned char *bits, int index, bool on);

/// Copies the first \a count bits of \a source to those of \a target from \a targetStart on, which grows as
/// setBit() grows it: bits 0 and 1 of 03 to bit 3 of 00 give 18. Nothing when \a count < 1 or \a targetStart
/// is negative; bits that \a source lacks are copied as 0.
void CopyBits(QByteArray &target, const QByteArray &source, int targetStart, int count);
/// Resizes \a bits to the bytes that \a numBits bits take: 2 for 16, 3 for 17; none when \a numBits is
/// negative. New bytes are 0.
void FitBitArray(QByteArray &bits, int numBits);
/// Clears the bits from bit \a numBits on in the byte that holds it: FF FF with 12 gives FF 0F. Nothing when
/// \a numBits is a multiple of 8 or there is no such byte.
void clearUnnecessaryBits(QByteArray &bits, int numBits);
/// One byte, 0 or 1, for each of the \a count bits from bit \a start on: 05 from 0, 4 bits, gives 01 00 01
/// 00. Bits beyond the end are 0. Empty when \a count < 1.
QByteArray ExpandBitsToBytes(const QByteArray &bits, unsigned short start, int count);
/// Shifts the bits towards bit 0 by \a n. The size stays; the n / 8 bytes that were shifted out stand,
/// unchanged, at the end, since every caller cuts the array afterwards: 11 22 33 by 12 gives 32 03 11.
/// Nothing when \a n is negative or not below the number of bits.
void RightShiftNBits(QByteArray &bits, int n);

/// Rotates the k + m items at \a items left by \a k: items[k .. k + m - 1], then items[0 .. k - 1]. Nothing
/// when either is less than 1.
template <typename T>
void RotateArray(T *items, int k, int m)
{
    if (k < 1 || m < 1)
        return;
    std::reverse(items, items + k);
    std::reverse(items + k, items + k + m);
    std::reverse(items, items + k + m);
}
