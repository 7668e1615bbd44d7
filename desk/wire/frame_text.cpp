#include "desk/wire/frame_text.h"

#include "desk/wire/rtu_frame.h"
#include "drivers/qt/qt_lines.h"

#include <QStringList>

namespace
{

QString functionName(int function)
{
    switch (function) {
    case modbus::ReadCoils: return QStringLiteral("read coils");
    case modbus::ReadDiscreteInputs: return QStringLiteral("read discrete inputs");
    case modbus::ReadHoldingRegisters: return QStringLiteral("read holding registers");
    case modbus::ReadInputRegisters: return QStringLiteral("read input registers");
    case modbus::WriteSingleCoil: return QStringLiteral("write single coil");
    case modbus::WriteSingleRegister: return QStringLiteral("write single register");
    case modbus::WriteMultipleCoils: return QStringLiteral("write multiple coils");
    case modbus::WriteMultipleRegisters: return QStringLiteral("write multiple registers");
    case modbus::Diagnostics: return QStringLiteral("diagnostics");
    default: return QStringLiteral("function %1").arg(function);
    }
}

QLatin1String areaOf(int function)
{
    switch (function) {
    case modbus::ReadCoils:
    case modbus::WriteSingleCoil:
    case modbus::WriteMultipleCoils: return QLatin1String("DO");
    case modbus::ReadDiscreteInputs: return QLatin1String("DI");
    case modbus::ReadInputRegisters: return QLatin1String("IR");
    default: return QLatin1String("HR");
    }
}

bool carriesBits(int function)
{
    return modbus::isReadOfBits(function) || function == modbus::WriteMultipleCoils;
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
        if (i > 0 && i % modbus::ByteBits == 0)
            text += QLatin1Char(' ');
        text += (byteAt(data, i / modbus::ByteBits) >> i % modbus::ByteBits & 1) != 0 ? QLatin1Char('1')
                                                                                      : QLatin1Char('0');
    }
    return text;
}

QString values(int function, const QByteArray &data, int quantity)
{
    if (data.isEmpty())
        return QStringLiteral("no values");
    if (carriesBits(function))
        return QStringLiteral("values ") + bits(data, qMin(quantity, int(data.size()) * modbus::ByteBits));
    return QStringLiteral("values ") + registers(data);
}

QString singleValue(int function, int value)
{
    if (function == modbus::WriteSingleRegister)
        return QStringLiteral("value %1").arg(value);
    switch (value) {
    case 0xFF00: return QStringLiteral("on");
    case 0: return QStringLiteral("off");
    default: return QStringLiteral("neither on nor off (%1)").arg(value);
    }
}

// Requests and replies have the same form.
QStringList describeDiagnostics(const QByteArray &frame)
{
    const int subFunction = wordAt(frame, 2);
    if (subFunction != modbus::ReturnQueryData)
        return {QStringLiteral("sub-function %1").arg(subFunction)};
    return {QStringLiteral("return query data %1").arg(wordAt(frame, 4))};
}

QStringList describeRequest(const QByteArray &frame)
{
    const int function = functionOf(frame);
    const int offset = wordAt(frame, 2);
    if (function == modbus::Diagnostics)
        return describeDiagnostics(frame);
    if (modbus::isWriteSingle(function))
        return {addresses(function, offset, 1), singleValue(function, wordAt(frame, 4))};
    if (!modbus::isRead(function) && !modbus::isWriteMultiple(function))
        return {};
    const int quantity = wordAt(frame, 4);
    QStringList parts{addresses(function, offset, quantity)};
    if (modbus::isWriteMultiple(function))
        parts.append(values(function, frame.mid(7, byteAt(frame, 6)), quantity));
    return parts;
}

QStringList describeReadReply(const QByteArray &frame, const QByteArray &request)
{
    const int function = functionOf(frame);
    const int byteCount = byteAt(frame, 2);
    const QByteArray data = frame.mid(3, byteCount);
    if (request.isEmpty())
        return {QStringLiteral("byte count %1").arg(byteCount),
                values(function, data, byteCount * modbus::ByteBits)};
    const int quantity = wordAt(request, 4);
    QStringList parts{addresses(function, wordAt(request, 2), quantity), values(function, data, quantity)};
    const int expected = replySizeFor(request) - 3 - modbus::CrcSize;
    if (byteCount != expected)
        parts.append(QStringLiteral("byte count %1 instead of %2").arg(byteCount).arg(expected));
    return parts;
}

QStringList describeEcho(const QByteArray &frame, const QByteArray &request)
{
    const int function = functionOf(frame);
    const int offset = wordAt(frame, 2);
    const int value = wordAt(frame, 4);
    QStringList parts;
    if (modbus::isWriteSingle(function))
        parts << addresses(function, offset, 1) << singleValue(function, value);
    else
        parts << addresses(function, offset, value);
    if (!request.isEmpty() && frame.size() >= 6 && frame.mid(2, 4) != request.mid(2, 4))
        parts << QStringLiteral("not what was requested");
    return parts;
}

QStringList describeReply(const QByteArray &frame, const QByteArray &request)
{
    const int function = functionOf(frame);
    if ((function & modbus::ExceptionFlag) != 0) {
        const int code = byteAt(frame, 2);
        return {QStringLiteral("exception %1 (%2)").arg(code).arg(exceptionName(code))};
    }
    if (function == modbus::Diagnostics)
        return describeDiagnostics(frame);
    const bool isAnswer = functionOf(request) == function;
    if (modbus::isRead(function))
        return describeReadReply(frame, isAnswer ? request : QByteArray());
    if (modbus::isWriteSingle(function) || modbus::isWriteMultiple(function))
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
    if ((functionOf(frame) & ~modbus::ExceptionFlag) != functionOf(request))
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
            return {QStringLiteral("incomplete: ") + bytes(sizeOf(frame))};
        return {QStringLiteral("incomplete: %1 of %2").arg(frame.size()).arg(bytes(size))};
    }
    const int end = size == SizeUnknown ? int(frame.size()) : size;
    QStringList parts{hasGoodCrc(frame.left(end)) ? QStringLiteral("CRC good") : QStringLiteral("CRC bad")};
    if (frame.size() > end)
        parts << QStringLiteral("then ") + bytes(sizeOf(frame) - end);
    return parts;
}

} // namespace

QString exceptionName(int code)
{
    switch (code) {
    case modbus::IllegalFunction: return QStringLiteral("illegal function");
    case modbus::IllegalDataAddress: return QStringLiteral("illegal data address");
    case modbus::IllegalDataValue: return QStringLiteral("illegal data value");
    case modbus::ServerDeviceFailure: return QStringLiteral("server device failure");
    case modbus::Acknowledge: return QStringLiteral("acknowledge");
    case modbus::ServerDeviceBusy: return QStringLiteral("server device busy");
    case modbus::NegativeAcknowledge: return QStringLiteral("negative acknowledge");
    case modbus::MemoryParityError: return QStringLiteral("memory parity error");
    case modbus::GatewayPathUnavailable: return QStringLiteral("gateway path unavailable");
    case modbus::GatewayTargetFailed: return QStringLiteral("gateway target device failed to respond");
    default: return QStringLiteral("unknown");
    }
}

QString exceptionText(int code)
{
    return QStringLiteral("0x") + QString::number(code, 16).toUpper().rightJustified(2, QLatin1Char('0'));
}

QString describeFrame(FrameRole role, const QByteArray &frame, const QByteArray &request)
{
    if (frame.size() < 2)
        return QStringLiteral("incomplete: ") + bytes(sizeOf(frame));
    QStringList parts{QStringLiteral("station %1").arg(byteAt(frame, 0))};
    if (role == FrameRole::Request) {
        parts << functionName(functionOf(frame)) << describeRequest(frame);
        parts << describeEnd(frame, requestSize(frame));
    } else if (isEcho(frame, request)) {
        parts << functionName(functionOf(frame)) << QStringLiteral("the request itself: an echo");
        parts << describeEnd(frame, sizeOf(request));
    } else {
        parts << functionName(functionOf(frame) & ~modbus::ExceptionFlag) << describeReply(frame, request);
        parts << contradictions(frame, request) << describeEnd(frame, replySize(frame));
    }
    return parts.join(QLatin1String(", "));
}
