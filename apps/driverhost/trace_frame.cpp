#include "trace_frame.h"

namespace
{

quint16 crcOf(const char *bytes, int size)
{
    quint16 crc = 0xFFFF;
    for (const char *end = bytes + size; bytes != end; ++bytes) {
        crc = static_cast<quint16>(crc ^ static_cast<quint8>(*bytes));
        for (int bit = 0; bit < 8; ++bit)
            crc = static_cast<quint16>((crc & 1) != 0 ? (crc >> 1) ^ 0xA001 : crc >> 1);
    }
    return crc;
}

// Functions 15 and 16: quantity and byte count have to agree.
int writeMultipleSize(const QByteArray &bytes)
{
    if (bytes.size() < 7)
        return SizeNeedsMoreBytes;
    const int quantity = wordAt(bytes, 4);
    const int data = byteAt(bytes, 1) == 15 ? (quantity + 7) / 8 : quantity * 2;
    return data == byteAt(bytes, 6) ? 7 + data + CrcSize : SizeUnknown;
}

} // namespace

QByteArray withCrc(const QByteArray &frame)
{
    const quint16 crc = crcOf(frame.constData(), frame.size());
    return frame + static_cast<char>(crc & 0xFF) + static_cast<char>(crc >> 8);
}

bool hasGoodCrc(const QByteArray &frame)
{
    const int size = frame.size() - CrcSize;
    if (frame.size() < SmallestFrame)
        return false;
    const quint16 crc = crcOf(frame.constData(), size);
    return byteAt(frame, size) == (crc & 0xFF) && byteAt(frame, size + 1) == crc >> 8;
}

quint16 wordAt(const QByteArray &frame, int index)
{
    return static_cast<quint16>(byteAt(frame, index) << 8 | byteAt(frame, index + 1));
}

quint8 byteAt(const QByteArray &frame, int index)
{
    return index < frame.size() ? static_cast<quint8>(frame.at(index)) : 0;
}

int requestSize(const QByteArray &bytes)
{
    if (bytes.size() < 2)
        return SizeNeedsMoreBytes;
    const int function = byteAt(bytes, 1);
    if (function >= 1 && function <= 6)
        return 8;
    return function == 15 || function == 16 ? writeMultipleSize(bytes) : SizeUnknown;
}

int replySize(const QByteArray &bytes)
{
    if (bytes.size() < 3)
        return SizeNeedsMoreBytes;
    const int function = byteAt(bytes, 1);
    if ((function & 0x80) != 0)
        return 5;
    if (function >= 1 && function <= 4)
        return 3 + byteAt(bytes, 2) + CrcSize;
    return function == 5 || function == 6 || function == 15 || function == 16 ? 8 : SizeUnknown;
}

int replySizeFor(const QByteArray &request)
{
    const int quantity = wordAt(request, 4);
    switch (byteAt(request, 1)) {
    case 1:
    case 2: return 3 + (quantity + 7) / 8 + CrcSize;
    case 3:
    case 4: return 3 + quantity * 2 + CrcSize;
    case 5:
    case 6:
    case 15:
    case 16: return 8;
    default: return SizeUnknown;
    }
}
