#pragma once

#include <QByteArray>
#include <QString>

#include <iosfwd>
#include <string>

/// Modbus frames as the tests expect them, made without any of the driver's code.

/// Bytes from hexadecimal text; blanks are for the eye: "01 03 00 00".
QByteArray fromHex(const char *text);
/// Hexadecimal text of bytes, a blank between two: "01 03".
std::string toHex(const QByteArray &bytes);

/// The CRC of a frame, bit by bit ("MODBUS over Serial Line V1.02", 6.2.2), low byte first.
QByteArray crcOf(const QByteArray &bytes);
/// The bytes with their CRC behind them.
QByteArray framed(const QByteArray &bytes);
inline QByteArray framed(const char *hexText)
{
    return framed(fromHex(hexText));
}

/// Two bytes, high byte first.
QByteArray bigEndian(int value);
/// \a function of \a station with two 16-bit fields: the request of functions 1 to 6, and every confirmation
/// of a write.
QByteArray fieldsFrame(int station, int function, int first, int second);
/// A request of function 15 or 16.
QByteArray writeMultipleFrame(int station, int function, int start, int quantity, const QByteArray &data);
/// The reply to a read.
QByteArray readReply(int station, int function, const QByteArray &data);
QByteArray exceptionReply(int station, int function, int code);
/// What a slave answers to any write: the first six bytes of the request and their CRC.
QByteArray echoOf(const QByteArray &request);

/// How GoogleTest shows these in a message.
void PrintTo(const QByteArray &bytes, std::ostream *out);
void PrintTo(const QString &text, std::ostream *out);
