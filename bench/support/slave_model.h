#pragma once

#include <QByteArray>

/// A slave whose registers and bits have values that follow from their addresses, so that every client's
/// results can be checked.

unsigned short registerValue(int address);
bool bitValue(int address);

/// Addresses from \a start on as the host gets them: registers low byte first, bits packed from bit 0 on.
QByteArray hostRegisters(int start, int count);
QByteArray hostBits(int start, int count);

/// Registers high byte first, as they travel.
QByteArray wireRegisters(int start, int count);

/// The answer to a request of functions 1 to 4 and 15 and 16, both without station and check sum.
QByteArray replyPdu(const QByteArray &request);
/// A frame of the serial line: station, PDU, CRC.
QByteArray rtuFrame(char station, const QByteArray &pdu);
