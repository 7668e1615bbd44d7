#include "support/frames.h"

namespace fuzz
{

unsigned char byteAt(const QByteArray &frame, int i)
{
    return static_cast<unsigned char>(frame.at(i));
}

unsigned short wordAt(const QByteArray &frame, int i)
{
    return static_cast<unsigned short>(byteAt(frame, i) << 8 | byteAt(frame, i + 1));
}

void appendWord(QByteArray &frame, unsigned int value)
{
    frame.append(static_cast<char>(value >> 8 & 0xFF));
    frame.append(static_cast<char>(value & 0xFF));
}

QByteArray withCrc(const QByteArray &frame)
{
    unsigned int crc = 0xFFFF;
    for (int i = 0; i < frame.size(); ++i) {
        crc ^= byteAt(frame, i);
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc & 1) != 0 ? crc >> 1 ^ 0xA001 : crc >> 1;
    }
    QByteArray whole = frame;
    appendWord(whole, (crc & 0xFF) << 8 | crc >> 8);
    return whole;
}

bool hasGoodCrc(const QByteArray &frame)
{
    return frame.size() >= 2 && withCrc(frame.left(frame.size() - 2)) == frame;
}

bool isWrite(const QByteArray &request)
{
    return byteAt(request, 1) > 4;
}

int readDataSize(const QByteArray &request)
{
    const int quantity = wordAt(request, 4);
    return byteAt(request, 1) <= 2 ? (quantity + 7) / 8 : 2 * quantity;
}

int restSize(const QByteArray &request)
{
    return isWrite(request) ? 3 : readDataSize(request);
}

QByteArray goodReply(const QByteArray &request, const QByteArray &data)
{
    if (isWrite(request))
        return withCrc(request.left(6));
    const int size = readDataSize(request);
    QByteArray reply = request.left(2);
    reply.append(static_cast<char>(size & 0xFF));
    reply.append(data.left(size));
    return withCrc(reply.leftJustified(3 + size, '\0'));
}

} // namespace fuzz
