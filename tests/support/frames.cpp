#include "tests/support/frames.h"

#include <ostream>

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

QByteArray crcOf(const QByteArray &bytes)
{
    unsigned int crc = 0xFFFF;
    for (int i = 0; i < bytes.size(); ++i) {
        crc ^= static_cast<unsigned char>(bytes.at(i));
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc & 1u) != 0 ? (crc >> 1) ^ 0xA001u : crc >> 1;
    }
    const int value = static_cast<int>(crc);
    return QByteArray(1, byteOf(value)) + byteOf(value >> 8);
}

QByteArray framed(const QByteArray &bytes)
{
    return bytes + crcOf(bytes);
}

QByteArray bigEndian(int value)
{
    return QByteArray(1, byteOf(value >> 8)) + byteOf(value);
}

QByteArray fieldsFrame(int station, int function, int first, int second)
{
    return framed(QByteArray(1, byteOf(station)) + byteOf(function) + bigEndian(first) + bigEndian(second));
}

QByteArray writeMultipleFrame(int station, int function, int start, int quantity, const QByteArray &data)
{
    return framed(QByteArray(1, byteOf(station)) + byteOf(function) + bigEndian(start) + bigEndian(quantity) +
                  byteOf(data.size()) + data);
}

QByteArray readReply(int station, int function, const QByteArray &data)
{
    return framed(QByteArray(1, byteOf(station)) + byteOf(function) + byteOf(data.size()) + data);
}

QByteArray exceptionReply(int station, int function, int code)
{
    return framed(QByteArray(1, byteOf(station)) + byteOf(function | 0x80) + byteOf(code));
}

QByteArray echoOf(const QByteArray &request)
{
    return framed(request.left(6));
}

void PrintTo(const QByteArray &bytes, std::ostream *out)
{
    *out << bytes.size() << " bytes: " << toHex(bytes);
}

void PrintTo(const QString &text, std::ostream *out)
{
    *out << '"' << text.toUtf8().constData() << '"';
}
