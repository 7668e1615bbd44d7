#pragma once

#include <QByteArray>

/// \file
/// Frames of the line protocol, all of them printable: a colon, the station in two hexadecimal digits, a
/// letter for the kind, digits that depend on the kind, the exclusive-or of all bytes so far in two digits, a
/// carriage return.
///
///     :01R006302..    read 2 registers from 0x0063 on        :01R12345678..    their values
///     :01W0063011234..    write 1234 to 1 register           :01W..            done
///                                                            :01E07..          refused with code 7

const char LineRead = 'R';
const char LineWrite = 'W';
const char LineRefusal = 'E';

/// Size of the parts of every frame: before the digits, and after them.
const int LineHeadSize = 4;
const int LineTailSize = 3;

/// Digits of a register's value and of a refusal's code.
const int LineValueDigits = 4;
const int LineCodeDigits = 2;

/// Maximum number of registers in one frame.
const int MaxLineTransfer = 64;

QByteArray lineReadRequest(unsigned char station, unsigned short first, unsigned char count);
/// \a values are registers with their low byte first.
QByteArray lineWriteRequest(unsigned char station, unsigned short first, const QByteArray &values);

/// What a device answered. Unless it is intact, the other fields are zero.
struct LineReply {
    bool isIntact;
    unsigned char station;
    char kind;
    QByteArray digits;
};

LineReply parsedLineReply(const QByteArray &bytes);

/// Registers with their low byte first, from four digits each.
QByteArray lineValues(const QByteArray &digits);
