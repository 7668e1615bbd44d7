#pragma once

#include "desk/wire/protocol.h"

#include <QByteArray>

/// What an RTU frame (station, function, data, CRC) shows without knowing the slave.

namespace modbus
{

/// The frame with its CRC-16 after it, low byte first.
QByteArray withCrc(const QByteArray &frame);
/// Whether the last two bytes are the CRC of those before them; false for fewer than four bytes.
bool hasGoodCrc(const QByteArray &frame);

/// The 16-bit number at \a index, high byte first; 0 where the frame has ended.
quint16 wordAt(const QByteArray &frame, int index);
/// The byte at \a index; 0 where the frame has ended.
quint8 byteAt(const QByteArray &frame, int index);
/// The second byte of a frame.
int functionOf(const QByteArray &frame);

/// Answers of requestSize() and replySize() that are no size.
const int SizeNeedsMoreBytes = -1;
const int SizeUnknown = 0;

/// How long the request that begins with \a bytes is with its CRC. SizeUnknown for a function that has no
/// fixed form here, and for fields that contradict each other.
int requestSize(const QByteArray &bytes);
/// The same for a reply.
int replySize(const QByteArray &bytes);
/// How long the right reply to \a request is, exceptions aside; SizeUnknown for functions unknown here.
int replySizeFor(const QByteArray &request);

/// Whether what came begins with the request itself, or with so much of it as was taken before it was
/// refused: a line that echoes. Where the right reply is equal, to single writes and diagnostics, that shows
/// nothing.
bool isEcho(const QByteArray &reply, const QByteArray &request);

/// The exception reply to a request, a whole frame.
QByteArray exceptionReply(const QByteArray &request, int code);

} // namespace modbus

using modbus::byteAt;
using modbus::exceptionReply;
using modbus::functionOf;
using modbus::hasGoodCrc;
using modbus::isEcho;
using modbus::replySize;
using modbus::replySizeFor;
using modbus::requestSize;
using modbus::SizeNeedsMoreBytes;
using modbus::SizeUnknown;
using modbus::withCrc;
using modbus::wordAt;
