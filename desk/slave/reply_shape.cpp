#include "desk/slave/reply_shape.h"

#include "desk/wire/rtu_frame.h"
#include "drivers/qt/qt_lines.h"

namespace
{

const int DefaultDelay = 2000;
const int MaxJunk = 8;
const int OtherStation = 99;

int valueOr(const Fault &fault, int alternative)
{
    return fault.value >= 0 ? fault.value : alternative;
}

QByteArray withByte(QByteArray frame, int index, int value)
{
    frame.chop(modbus::CrcSize);
    frame[index] = static_cast<char>(value);
    return withCrc(frame);
}

QByteArray foreignStation(const Fault &fault, const QByteArray &reply)
{
    return withByte(reply, 0, valueOr(fault, byteAt(reply, 0) % modbus::MaxStation + 1));
}

// The same reply of another station, with other values.
QByteArray othersReply(const Fault &fault, QByteArray reply)
{
    const int headSize = 3;
    for (int i = headSize; i < reply.size() - modbus::CrcSize; ++i)
        reply[i] = static_cast<char>(~reply.at(i));
    return withByte(reply, 0, valueOr(fault, OtherStation));
}

QByteArray foreignFunction(const Fault &fault, const QByteArray &reply)
{
    return withByte(
        reply, 1,
        valueOr(fault, (functionOf(reply) & modbus::MaxFunction) % modbus::WriteSingleRegister + 1));
}

QByteArray brokenCrc(QByteArray reply, FaultPlan &plan)
{
    const int bit = plan.pick(0, 15);
    const int index = sizeOf(reply) - 1 - bit / 8;
    reply[index] = static_cast<char>(byteAt(reply, index) ^ (1 << bit % 8));
    return reply;
}

QByteArray junk(const Fault &fault, FaultPlan &plan)
{
    QByteArray bytes(valueOr(fault, plan.pick(1, MaxJunk)), '\0');
    for (char &byte : bytes)
        byte = static_cast<char>(plan.pick(0, 255));
    return bytes;
}

QByteArray truncated(const Fault &fault, const QByteArray &reply, FaultPlan &plan)
{
    return reply.left(valueOr(fault, plan.pick(1, sizeOf(reply) - 1)));
}

QList<QByteArray> singleBytes(const QByteArray &reply)
{
    QList<QByteArray> bytes;
    for (const char byte : reply)
        bytes.append(QByteArray(1, byte));
    return bytes;
}

ReplyShape::Ending endingOf(Fault::Kind kind)
{
    switch (kind) {
    case Fault::Reset: return ReplyShape::ResetConnection;
    case Fault::Close: return ReplyShape::CloseConnection;
    case Fault::HalfOpen: return ReplyShape::GoDead;
    default: return ReplyShape::KeepOpen;
    }
}

QByteArray bytesOf(const Fault &fault, const QByteArray &request, const QByteArray &reply,
                   const QByteArray &previous, FaultPlan &plan)
{
    switch (fault.kind) {
    case Fault::Truncate: return truncated(fault, reply, plan);
    case Fault::WrongStation: return foreignStation(fault, reply);
    case Fault::WrongFunction: return foreignFunction(fault, reply);
    case Fault::WrongCrc: return brokenCrc(reply, plan);
    case Fault::Exception: return fault.value < 0 ? reply : exceptionReply(request, fault.value);
    case Fault::JunkBefore: return junk(fault, plan) + reply;
    case Fault::JunkAfter: return reply + junk(fault, plan);
    case Fault::Double: return reply + reply;
    case Fault::Stale: return previous + reply;
    case Fault::Echo: return request + reply;
    case Fault::OtherMaster: return othersReply(fault, reply) + reply;
    case Fault::Silence:
    case Fault::Reset:
    case Fault::Close:
    case Fault::HalfOpen: return QByteArray();
    default: return reply;
    }
}

} // namespace

QByteArray ReplyShape::bytes() const
{
    return segments.join();
}

ReplyShape shapeReply(const Fault &fault, const QByteArray &request, const QByteArray &reply,
                      const QByteArray &previous, FaultPlan &plan)
{
    ReplyShape shape;
    const QByteArray bytes = bytesOf(fault, request, reply, previous, plan);
    if (fault.kind == Fault::Split)
        shape.segments = singleBytes(bytes);
    else if (!bytes.isEmpty())
        shape.segments = {bytes};
    shape.delayMs = fault.kind == Fault::Delay ? valueOr(fault, DefaultDelay) : 0;
    shape.lateMs = fault.kind == Fault::Late ? valueOr(fault, DefaultDelay) : 0;
    shape.segmentGapMs = fault.kind == Fault::Split ? valueOr(fault, 0) : 0;
    shape.isHeldBack = fault.kind == Fault::Merge;
    shape.ending = endingOf(fault.kind);
    return shape;
}
