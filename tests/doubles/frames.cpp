#include "tests/doubles/frames.h"

namespace
{

char byteOf(int value)
{
    return static_cast<char>(value & 0xFF);
}

} // namespace

QByteArray fromHex(const char *text)
{
    return QByteArray::fromHex(QByteArray(text));
}

std::string toHex(const QByteArray &bytes)
{
    const QByteArray digits = bytes.toHex();
    std::string text;
    for (int i = 0; i < digits.size(); i += 2)
        text.append(i > 0 ? " " : "").append(digits.constData() + i, 2);
    return text;
}

int byteAt(const QByteArray &bytes, int i)
{
    return static_cast<unsigned char>(bytes.at(i));
}

int wordAt(const QByteArray &bytes, int i)
{
    return byteAt(bytes, i) << 8 | byteAt(bytes, i + 1);
}

QByteArray bigEndian(int value)
{
    return QByteArray(1, byteOf(value >> 8)) + byteOf(value);
}

QByteArray crcOf(const QByteArray &bytes)
{
    unsigned int crc = 0xFFFF;
    for (int i = 0; i < bytes.size(); ++i) {
        crc ^= static_cast<unsigned int>(byteAt(bytes, i));
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc & 1u) != 0 ? (crc >> 1) ^ 0xA001u : crc >> 1;
    }
    const int value = static_cast<int>(crc);
    return QByteArray(1, byteOf(value)) + byteOf(value >> 8);
}

bool hasGoodCrc(const QByteArray &frame)
{
    return frame.size() >= 2 && frame.right(2) == crcOf(frame.left(frame.size() - 2));
}

QByteArray framed(const QByteArray &bytes)
{
    return bytes + crcOf(bytes);
}

QByteArray fieldsFrame(int station, int function, int first, int second)
{
    return framed(QByteArray(1, byteOf(station)) + byteOf(function) + bigEndian(first) + bigEndian(second));
}

QByteArray writeMultipleFrame(int station, int function, int start, int quantity, const QByteArray &data)
{
    return framed(QByteArray(1, byteOf(station)) + byteOf(function) + bigEndian(start) + bigEndian(quantity) +
                  byteOf(static_cast<int>(data.size())) + data);
}

QByteArray readReply(int station, int function, const QByteArray &data)
{
    return framed(QByteArray(1, byteOf(station)) + byteOf(function) + byteOf(static_cast<int>(data.size())) +
                  data);
}

QByteArray exceptionReply(int station, int function, int code)
{
    return framed(QByteArray(1, byteOf(station)) + byteOf(function | 0x80) + byteOf(code));
}

QByteArray echoOf(const QByteArray &request)
{
    return framed(request.left(6));
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

QByteArray goodReply(const QByteArray &request, const QByteArray &data)
{
    if (isWrite(request))
        return echoOf(request);
    const int size = readDataSize(request);
    return readReply(byteAt(request, 0), byteAt(request, 1), data.leftJustified(size, '\0', true));
}
