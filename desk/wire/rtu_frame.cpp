#include "desk/wire/rtu_frame.h"

#include "drivers/qt/qt_lines.h"

namespace modbus
{

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
    const int headSize = 7;
    if (bytes.size() < headSize)
        return SizeNeedsMoreBytes;
    const int quantity = wordAt(bytes, 4);
    const int data = functionOf(bytes) == modbus::WriteMultipleCoils ? modbus::bytesOfBits(quantity)
                                                                     : quantity * modbus::RegisterBytes;
    return data == byteAt(bytes, 6) ? headSize + data + modbus::CrcSize : SizeUnknown;
}

// Whether requests and good replies of the function are station, function, two fields and CRC.
bool hasShortFrames(int function)
{
    return modbus::isWriteSingle(function) || function == modbus::Diagnostics;
}

int readReplySize(int dataSize)
{
    return 3 + dataSize + modbus::CrcSize;
}

} // namespace

QByteArray withCrc(const QByteArray &frame)
{
    const quint16 crc = crcOf(frame.constData(), sizeOf(frame));
    return frame + static_cast<char>(crc & 0xFF) + static_cast<char>(crc >> 8);
}

bool hasGoodCrc(const QByteArray &frame)
{
    const int size = sizeOf(frame) - modbus::CrcSize;
    if (frame.size() < modbus::MinFrameSize)
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

int functionOf(const QByteArray &frame)
{
    return byteAt(frame, 1);
}

int requestSize(const QByteArray &bytes)
{
    if (bytes.size() < 2)
        return SizeNeedsMoreBytes;
    const int function = functionOf(bytes);
    if (modbus::isRead(function) || hasShortFrames(function))
        return modbus::ShortFrameSize;
    return modbus::isWriteMultiple(function) ? writeMultipleSize(bytes) : SizeUnknown;
}

int replySize(const QByteArray &bytes)
{
    if (bytes.size() < 3)
        return SizeNeedsMoreBytes;
    const int function = functionOf(bytes);
    if ((function & modbus::ExceptionFlag) != 0)
        return modbus::ExceptionReplySize;
    if (modbus::isRead(function))
        return readReplySize(byteAt(bytes, 2));
    const bool isShort = hasShortFrames(function) || modbus::isWriteMultiple(function);
    return isShort ? modbus::ShortFrameSize : SizeUnknown;
}

int replySizeFor(const QByteArray &request)
{
    const int function = functionOf(request);
    const int quantity = wordAt(request, 4);
    if (modbus::isRead(function))
        return readReplySize(modbus::isReadOfBits(function) ? modbus::bytesOfBits(quantity)
                                                            : quantity * modbus::RegisterBytes);
    const bool isShort = hasShortFrames(function) || modbus::isWriteMultiple(function);
    return isShort ? modbus::ShortFrameSize : SizeUnknown;
}

bool isEcho(const QByteArray &reply, const QByteArray &request)
{
    return reply.size() >= modbus::ExceptionReplySize && request.size() >= modbus::MinFrameSize &&
           !hasShortFrames(functionOf(request)) && (request.startsWith(reply) || reply.startsWith(request));
}

QByteArray exceptionReply(const QByteArray &request, int code)
{
    QByteArray frame(3, '\0');
    frame[0] = request.at(0);
    frame[1] = static_cast<char>(functionOf(request) | modbus::ExceptionFlag);
    frame[2] = static_cast<char>(code);
    return withCrc(frame);
}

} // namespace modbus
