#pragma once

#include <QByteArray>

/// \file
/// Frames of the packet protocol, numbers with their high byte first:
///
///     length (2)      of all that follows
///     sequence (2)    of the request; the answer repeats it
///     station (1)
///     operation (1)   of the request; the answer has bit 7 set
///     content         read: address (4), count (2); write: address (4), bytes. Answers: bytes; none
///     check (2)       CRC-CCITT of all that comes before it, from 0xFFFF
///
/// A device that refuses answers with the operation 0xFF and a code (1).

enum PacketOperation : unsigned char { ReadMemory = 1, WriteMemory = 2, AnswerFlag = 0x80, Refusal = 0xFF };

/// Bytes of a packet before its sequence, and of one without content.
const int PacketLengthSize = 2;
const int EmptyPacketSize = 8;
/// Bytes of content in a refusal.
const int RefusalContentSize = 1;

/// Maximum number of bytes that are read or written at once.
const int MaxPacketTransfer = 1024;

struct Packet {
    unsigned short sequence;
    unsigned char station;
    unsigned char operation;
    QByteArray content;
};

QByteArray packetBytes(const Packet &packet);

QByteArray readContent(unsigned int address, unsigned short count);
QByteArray writeContent(unsigned int address, const QByteArray &bytes);

/// The size of a packet whose first bytes these are; 0 when they are too few to say.
int packetSize(const QByteArray &begin);

/// Whether \a bytes are one whole packet; then it is in \a packet.
bool parsePacket(const QByteArray &bytes, Packet &packet);
