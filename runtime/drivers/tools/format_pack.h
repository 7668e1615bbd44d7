#pragma once

#include <QByteArray>

#include <cstdarg>

/// \file
/// Values to bytes and back under the control of a format: one letter for each item, without separators. A
/// station, a big-endian register number and two registers of an array are "Cn2n".
///
/// Single items take an int, or for unpacking a pointer to the variable:
///
///     c C            1 byte
///     s S v          2 bytes, little-endian
///     n              2 bytes, big-endian
///     i I l L V      4 bytes, little-endian
///     N              4 bytes, big-endian
///     x              a zero byte; skipped when unpacking. No argument
///     X              a byte that is left as it is; skipped when unpacking. No argument
///
/// With a decimal count in front the item is an array and takes a pointer to its first element, for packing
/// as for unpacking: c C v V copy it, n and N copy it with the bytes of every element reversed, x and X mean
/// that many bytes. Other letters have no counted form. A count of 0 is an error for all but x and X, and so
/// is one that leads past the maximum of an int.
///
/// The host is little-endian: values and arrays in memory are, too.

/// Packs into \a out, which must have room for all items. Returns the number of bytes up to the end of the
/// last item; -1 for an error in a counted item and 0 for an unknown letter. What was packed before an error
/// stays.
///
///     unsigned char frame[6];
///     DataPack(frame, "nN", 0x1234, 0x01020304);   // 12 34 01 02 03 04, returns 6
int DataPack(unsigned char *out, const char *format, ...);
/// As DataPack().
int VDataPack(unsigned char *out, const char *format, va_list args);

/// Packs into a new array, in which X leaves a zero byte. Empty for any error; counted x and X are errors
/// here.
QByteArray ByteArrayPack(const char *format, ...);
/// As ByteArrayPack().
QByteArray VByteArrayPack(const char *format, va_list args);

/// Unpacks from \a in, which must hold all items, into unsigned char, unsigned short and unsigned int
/// variables and arrays. Returns the number of bytes up to the end of the last item, or -1 for any error.
/// What was unpacked before an error stays.
///
///     unsigned short word;
///     unsigned int doubleWord;
///     DataUnpack(frame, "nxV", &word, &doubleWord);   // takes 7 bytes
int DataUnpack(const unsigned char *in, const char *format, ...);
/// As DataUnpack().
int VDataUnpack(const unsigned char *in, const char *format, va_list args);
