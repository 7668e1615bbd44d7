#pragma once

#include <QByteArray>

/// Modbus RTU frames seen from the slave, written anew so that a mistake in the driver's own is not repeated.
namespace fuzz
{

unsigned char byteAt(const QByteArray &frame, int i);
unsigned short wordAt(const QByteArray &frame, int i);
void appendWord(QByteArray &frame, unsigned int value);

/// The CRC, bit by bit.
QByteArray withCrc(const QByteArray &frame);
bool hasGoodCrc(const QByteArray &frame);

/// The data bytes that a good reply to this read has.
int readDataSize(const QByteArray &request);
/// Bytes of a good reply behind the first five.
int restSize(const QByteArray &request);
/// The reply that confirms a write, or answers a read with \a data, cut or filled with zeros to its size.
QByteArray goodReply(const QByteArray &request, const QByteArray &data);

bool isWrite(const QByteArray &request);

} // namespace fuzz
