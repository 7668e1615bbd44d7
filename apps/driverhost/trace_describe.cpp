#include "trace.h"
#include "trace_frame.h"

#include <QStringList>

namespace
{

const int ExceptionBit = 0x80;

QString functionName(int function)
{
    switch (function) {
    case 1: return QStringLiteral("read coils");
    case 2: return QStringLiteral("read discrete inputs");
    case 3: return QStringLiteral("read holding registers");
    case 4: return QStringLiteral("read input registers");
    case 5: return QStringLiteral("write single coil");
    case 6: return QStringLiteral("write single register");
    case 15: return QStringLiteral("write multiple coils");
    case 16: return QStringLiteral("write multiple registers");
    default: return QStringLiteral("function %1").arg(function);
    }
}

QString exceptionName(int code)
{
    switch (code) {
    case 1: return QStringLiteral("illegal function");
    case 2: return QStringLiteral("illegal data address");
    case 3: return QStringLiteral("illegal data value");
    case 4: return QStringLiteral("server device failure");
    case 5: return QStringLiteral("acknowledge");
    case 6: return QStringLiteral("server device busy");
    case 7: return QStringLiteral("negative acknowledge");
    case 8: return QStringLiteral("memory parity error");
    case 10: return QStringLiteral("gateway path unavailable");
    case 11: return QStringLiteral("gateway target device failed to respond");
    default: return QStringLiteral("unknown");
    }
}

QLatin1String areaOf(int function)
{
    switch (function) {
    case 1:
    case 5:
    case 15: return QLatin1String("DO");
    case 2: return QLatin1String("DI");
    case 4: return QLatin1String("IR");
    default: return QLatin1String("HR");
    }
}

bool isBitFunction(int function)
{
    return function == 1 || function == 2 || function == 15;
}

bool isRead(int function)
{
    return function >= 1 && function <= 4;
}

bool isWriteSingle(int function)
{
    return function == 5 || function == 6;
}

bool isWriteMultiple(int function)
{
    return function == 15 || function == 16;
}

// "HR1..10 (offset 0, quantity 10)", one-based first.
QString addresses(int function, int offset, int quantity)
{
    const QString first = areaOf(function) + QString::number(offset + 1);
    const QString range = quantity > 1 ? QStringLiteral("%1..%2").arg(first).arg(offset + quantity) : first;
    return QStringLiteral("%1 (offset %2, quantity %3)").arg(range).arg(offset).arg(quantity);
}

QString registers(const QByteArray &data)
{
    QStringList values;
    for (int i = 0; i + 1 < data.size(); i += 2)
        values.append(QString::number(wordAt(data, i)));
    if (data.size() % 2 != 0)
        values.append(QStringLiteral("and half a register"));
    return values.join(QLatin1Char(' '));
}

// The first bit first, in groups of a byte.
QString bits(const QByteArray &data, int count)
{
    QString text;
    for (int i = 0; i < count; ++i) {
        if (i > 0 && i % 8 == 0)
            text += QLatin1Char(' ');
        text += (byteAt(data, i / 8) >> i % 8 & 1) != 0 ? QLatin1Char('1') : QLatin1Char('0');
    }
    return text;
}

QString values(int function, const QByteArray &data, int quantity)
{
    if (data.isEmpty())
        return QStringLiteral("no values");
    if (isBitFunction(function))
        return QStringLiteral("values ") + bits(data, qMin(quantity, int(data.size()) * 8));
    return QStringLiteral("values ") + registers(data);
}

QString singleValue(int function, int value)
{
    if (function == 6)
        return QStringLiteral("value %1").arg(value);
    switch (value) {
    case 0xFF00: return QStringLiteral("on");
    case 0: return QStringLiteral("off");
    default: return QStringLiteral("neither on nor off (%1)").arg(value);
    }
}

QStringList describeRequest(const QByteArray &frame)
{
    const int function = byteAt(frame, 1);
    const int offset = wordAt(frame, 2);
    if (isWriteSingle(function))
        return {addresses(function, offset, 1), singleValue(function, wordAt(frame, 4))};
    if (!isRead(function) && !isWriteMultiple(function))
        return {};
    const int quantity = wordAt(frame, 4);
    QStringList parts{addresses(function, offset, quantity)};
    if (isWriteMultiple(function))
        parts.append(values(function, frame.mid(7, byteAt(frame, 6)), quantity));
    return parts;
}

QStringList describeReadReply(const QByteArray &frame, const QByteArray &request)
{
    const int function = byteAt(frame, 1);
    const int byteCount = byteAt(frame, 2);
    const QByteArray data = frame.mid(3, byteCount);
    if (request.isEmpty())
        return {QStringLiteral("byte count %1").arg(byteCount), values(function, data, byteCount * 8)};
    const int quantity = wordAt(request, 4);
    QStringList parts{addresses(function, wordAt(request, 2), quantity), values(function, data, quantity)};
    const int expected = replySizeFor(request) - 3 - CrcSize;
    if (byteCount != expected)
        parts.append(QStringLiteral("byte count %1 instead of %2").arg(byteCount).arg(expected));
    return parts;
}

QStringList describeEcho(const QByteArray &frame, const QByteArray &request)
{
    const int function = byteAt(frame, 1);
    const int offset = wordAt(frame, 2);
    const int value = wordAt(frame, 4);
    QStringList parts;
    if (isWriteSingle(function))
        parts << addresses(function, offset, 1) << singleValue(function, value);
    else
        parts << addresses(function, offset, value);
    if (!request.isEmpty() && frame.size() >= 6 && frame.mid(2, 4) != request.mid(2, 4))
        parts << QStringLiteral("not what was requested");
    return parts;
}

QStringList describeReply(const QByteArray &frame, const QByteArray &request)
{
    const int function = byteAt(frame, 1);
    if ((function & ExceptionBit) != 0) {
        const int code = byteAt(frame, 2);
        return {QStringLiteral("exception %1 (%2)").arg(code).arg(exceptionName(code))};
    }
    const bool isAnswer = byteAt(request, 1) == function;
    if (isRead(function))
        return describeReadReply(frame, isAnswer ? request : QByteArray());
    if (isWriteSingle(function) || isWriteMultiple(function))
        return describeEcho(frame, isAnswer ? request : QByteArray());
    return {};
}

// In what a reply's head differs from what was asked.
QStringList contradictions(const QByteArray &frame, const QByteArray &request)
{
    QStringList parts;
    if (request.size() < 2)
        return parts;
    if (frame.at(0) != request.at(0))
        parts << QStringLiteral("not station %1").arg(byteAt(request, 0));
    if ((byteAt(frame, 1) & ~ExceptionBit) != byteAt(request, 1))
        parts << QStringLiteral("not the function requested");
    return parts;
}

QString bytes(int count)
{
    return count == 1 ? QStringLiteral("1 byte") : QStringLiteral("%1 bytes").arg(count);
}

QStringList describeEnd(const QByteArray &frame, int size)
{
    if (size == SizeNeedsMoreBytes || size > frame.size()) {
        if (size == SizeNeedsMoreBytes)
            return {QStringLiteral("incomplete: ") + bytes(frame.size())};
        return {QStringLiteral("incomplete: %1 of %2").arg(frame.size()).arg(bytes(size))};
    }
    const int end = size == SizeUnknown ? int(frame.size()) : size;
    QStringList parts{hasGoodCrc(frame.left(end)) ? QStringLiteral("CRC good") : QStringLiteral("CRC bad")};
    if (frame.size() > end)
        parts << QStringLiteral("then ") + bytes(frame.size() - end);
    return parts;
}

} // namespace

QString describeFrame(FrameRole role, const QByteArray &frame, const QByteArray &request)
{
    if (frame.size() < 2)
        return QStringLiteral("incomplete: ") + bytes(frame.size());
    QStringList parts{QStringLiteral("station %1").arg(byteAt(frame, 0))};
    if (role == FrameRole::Request) {
        parts << functionName(byteAt(frame, 1)) << describeRequest(frame);
        parts << describeEnd(frame, requestSize(frame));
    } else {
        parts << functionName(byteAt(frame, 1) & ~ExceptionBit) << describeReply(frame, request);
        parts << contradictions(frame, request) << describeEnd(frame, replySize(frame));
    }
    return parts.join(QLatin1String(", "));
}
