#pragma once

#include <QByteArray>
#include <QString>

/// \file
/// Texts of controller addresses: a symbol followed by a number, such as HR100 or DI7. A QString is read as
/// Latin-1.

/// The leading letters and underscores: "FN5DO12" gives "FN", "7HR" nothing.
/// @{
QByteArray ExtractPrefixSymbol(const QByteArray &text);
QByteArray ExtractPrefixSymbol(const QString &text);
/// @}

/// The number after the symbol, in \a radix 8, 10 or 16; -1 for any other radix. It begins at the first
/// character that is a digit of the radix (so DA10 in radix 16 is 0xDA10) and must reach to the end of the
/// text: 0 when it does not, when there is none, and when no int holds it.
/// @{
int ExtractPLCDeviceAddress(const QByteArray &text, int radix);
int ExtractPLCDeviceAddress(const QString &text, int radix);
/// @}

/// The value of up to \a length hexadecimal characters, a leading "0x" or "0X" counted among them: "0x1F"
/// with length 4 is 31. Ends at a NUL; modulo 2^32; 0 when any other character is no hexadecimal digit. Never
/// reads past \a length.
unsigned int HexToUInt(const char *text, int length);
