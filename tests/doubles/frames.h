#pragma once

#include <QByteArray>

#include <string>

/// \file
/// Modbus RTU frames as they have to be on the wire, made and read without any of the driver's code.

/// Bytes from hexadecimal text; blanks are for the eye: "01 03 00 00".
QByteArray fromHex(const char *text);
/// Hexadecimal text of bytes, a blank between two: "01 03".
std::string toHex(const QByteArray &bytes);

/// Byte \a i as 0 to 255, and the two bytes from \a i on as 0 to 65535, high byte first. They must be there.
/// @{
int byteAt(const QByteArray &bytes, int i);
int wordAt(const QByteArray &bytes, int i);
/// @}
/// The low 16 bits as two bytes, high byte first.
QByteArray bigEndian(int value);

/// The CRC of a frame, bit by bit ("MODBUS over Serial Line V1.02", 6.2.2), low byte first.
QByteArray crcOf(const QByteArray &bytes);
/// Whether the last two bytes are the CRC of those before; false for fewer than two.
bool hasGoodCrc(const QByteArray &frame);
/// The bytes followed by their CRC.
QByteArray framed(const QByteArray &bytes);
inline QByteArray framed(const char *hexText)
{
    return framed(fromHex(hexText));
}

/// \a function of \a station with two 16-bit fields: the request of functions 1 to 6, and every confirmation
/// of a write. Of each number the low byte counts, of a field the low two.
QByteArray fieldsFrame(int station, int function, int first, int second);
/// A request of function 15 or 16.
QByteArray writeMultipleFrame(int station, int function, int start, int quantity, const QByteArray &data);
/// The reply to a read.
QByteArray readReply(int station, int function, const QByteArray &data);
QByteArray exceptionReply(int station, int function, int code);
/// What a slave answers to any write: the first six bytes of the request and their CRC.
QByteArray echoOf(const QByteArray &request);

/// Whether a request writes, as those of functions 5, 6, 15 and 16 do and those of 1 to 4 do not.
bool isWrite(const QByteArray &request);
/// The data bytes in a good reply to this request of function 1 to 4.
int readDataSize(const QByteArray &request);
/// What a slave answers that serves everything: the echo of a write; a read with the first bytes of \a data,
/// and zeros for those that it lacks.
QByteArray goodReply(const QByteArray &request, const QByteArray &data);
