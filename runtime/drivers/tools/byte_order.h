#pragma once

#include <QByteArray>

/// \file
/// Integers to bytes and back, and byte order of whole arrays. "Little-endian" is the least significant byte
/// first, the order of the host; registers travel big-endian.

/// 2 bytes, little-endian: 0x1234 gives 34 12.
QByteArray wordToByteArray(unsigned short value);
/// 2 bytes, little-endian, two's complement: -2 gives FE FF.
QByteArray shortToByteArray(short value);
/// 4 bytes, little-endian, two's complement: 0x11223344 gives 44 33 22 11.
QByteArray intToByteArray(int value);

/// The first 4 bytes (or as many as there are) as a little-endian number: 01 02 03 gives 0x030201. 0 for an
/// empty array.
int QByteArrayToInt(const QByteArray &bytes);
/// The first 2 bytes (or the only one) as a little-endian number; 0 for an empty array.
unsigned short QByteArrayToWord(const QByteArray &bytes);
/// As QByteArrayToWord(), read as signed.
short QByteArrayToShort(const QByteArray &bytes);

/// Appends the high byte, then the low byte.
void appendBigEndianUShort(QByteArray &bytes, unsigned short value);

/// Always true: a fixed answer, not a probe of the processor.
bool isBigEndian();

/// The 2 * \a count bytes at \a source with the two bytes of every 16-bit item swapped: 01 02 03 04 gives
/// 02 01 04 03. Empty when \a count < 1.
QByteArray fromBigEndianUShortArray(const unsigned char *source, int count);
/// The 4 * \a count bytes at \a source with every 4-byte item reversed: 01 02 03 04 gives
/// 04 03 02 01. Empty when \a count < 1.
QByteArray fromBigEndianULongArray(const unsigned char *source, int count);
/// A copy, padded with a zero byte to whole 16-bit items, each swapped: 01 02 03 gives 02 01 00 03.
QByteArray toBigEndianUShortArray(const QByteArray &bytes);
/// A copy, padded with zero bytes to whole 32-bit items, each reversed: 01 02 03 04 05 gives 04 03 02 01 00
/// 00 00 05.
QByteArray toBigEndianULongArray(const QByteArray &bytes);
/// Swaps every 16-bit item in place; a trailing single byte stays as it is.
void toLittleEndianUShortArray(QByteArray &bytes);
/// Reverses every 32-bit item in place; a trailing partial item stays as it is.
void toLittleEndianULongArray(QByteArray &bytes);

/// A copy padded with zero bytes to a multiple of 2 bytes.
QByteArray To16bitsData(const QByteArray &bytes);
/// A copy padded with zero bytes to a multiple of 4 bytes.
QByteArray To32bitsData(const QByteArray &bytes);
/// A copy whose last item, when it has 1 to 3 bytes, is padded with zero bytes to 4: 9 bytes give 12, 5 bytes
/// stay 5. Deliberately not a padding to 8.
QByteArray To64bitsData(const QByteArray &bytes);
