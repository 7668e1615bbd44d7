#include "support/slave_model.h"

namespace
{

int wordAt(const QByteArray &bytes, int i)
{
    return static_cast<unsigned char>(bytes.at(i)) << 8 | static_cast<unsigned char>(bytes.at(i + 1));
}

// Bit by bit, so that the driver's tables are not checked against themselves.
unsigned int crc16(const QByteArray &bytes)
{
    unsigned int crc = 0xFFFF;
    for (const char byte : bytes) {
        crc ^= static_cast<unsigned char>(byte);
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc & 1) != 0 ? crc >> 1 ^ 0xA001 : crc >> 1;
    }
    return crc;
}

} // namespace

unsigned short registerValue(int address)
{
    return static_cast<unsigned short>(address * 257 + 0x1234);
}

bool bitValue(int address)
{
    return address % 3 == 0 || address % 7 == 2;
}

QByteArray wireRegisters(int start, int count)
{
    QByteArray bytes;
    for (int i = 0; i < count; ++i) {
        bytes.append(static_cast<char>(registerValue(start + i) >> 8));
        bytes.append(static_cast<char>(registerValue(start + i) & 0xFF));
    }
    return bytes;
}

QByteArray hostRegisters(int start, int count)
{
    QByteArray bytes;
    for (int i = 0; i < count; ++i) {
        bytes.append(static_cast<char>(registerValue(start + i) & 0xFF));
        bytes.append(static_cast<char>(registerValue(start + i) >> 8));
    }
    return bytes;
}

QByteArray hostBits(int start, int count)
{
    QByteArray bytes((count + 7) / 8, '\0');
    for (int i = 0; i < count; ++i)
        if (bitValue(start + i))
            bytes[i / 8] = static_cast<char>(bytes.at(i / 8) | 1 << i % 8);
    return bytes;
}

QByteArray replyPdu(const QByteArray &request)
{
    const char function = request.at(0);
    if (function == 15 || function == 16)
        return request.left(5);
    const int start = wordAt(request, 1);
    const int count = wordAt(request, 3);
    const QByteArray data = function < 3 ? hostBits(start, count) : wireRegisters(start, count);
    return function + QByteArray(1, static_cast<char>(data.size())) + data;
}

QByteArray rtuFrame(char station, const QByteArray &pdu)
{
    QByteArray frame = station + pdu;
    const unsigned int crc = crc16(frame);
    frame.append(static_cast<char>(crc & 0xFF));
    frame.append(static_cast<char>(crc >> 8));
    return frame;
}
