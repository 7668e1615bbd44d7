#include "fuzz/support/slave_channel.h"

#include "tests/doubles/frames.h"

#include <cstring>

namespace fuzz
{

namespace
{

const int FirstStage = 5;

enum Fault : std::uint8_t {
    None,
    FlippedBit,
    CutShort,
    ForeignBytes,
    ForeignBytesWithCrc,
    ExceptionReply,
    OddSendCount,
    OddReadCount,
    FaultCount
};

// Bytes of a good reply after the first stage.
int restSize(const QByteArray &request)
{
    return isWrite(request) ? 3 : readDataSize(request);
}

} // namespace

QByteArray Exchange::reply() const
{
    return stages.value(0).leftJustified(FirstStage, '\0') +
           stages.value(1).leftJustified(restSize(request), '\0');
}

int SlaveChannel::readData(char *buffer, int maxLength)
{
    const QByteArray taken = waiting.left(maxLength);
    waiting.remove(0, taken.size());
    std::memcpy(buffer, taken.constData(), static_cast<size_t>(taken.size()));
    Exchange &exchange = exchanges.last();
    exchange.stages.append(taken);
    exchange.counts.append(countOf(taken.size()));
    return exchange.counts.last();
}

int SlaveChannel::writeData(const char *bytes, int length)
{
    Exchange exchange;
    exchange.request = QByteArray(bytes, length);
    exchange.sent = sentOf(length);
    exchanges.append(exchange);
    if (exchange.sent == length)
        waiting += answer(exchange.request);
    return exchange.sent;
}

bool SlaveChannel::open()
{
    connected = opens();
    openFailed = !connected;
    return connected;
}

void SlaveChannel::close()
{
    ++closes;
    connected = false;
    waiting.clear();
}

bool SlaveChannel::isConnected() const
{
    ++attempts;
    attemptStart = exchanges.size();
    return connected;
}

QByteArray SlaveChannel::answer(const QByteArray &request)
{
    return goodReply(request, data ? data(request) : QByteArray());
}

Verdict SlaveChannel::judge(const Exchange &exchange) const
{
    if (exchange.sent != exchange.request.size())
        return {errorString(), true};
    const int first = exchange.counts.value(0);
    if (first <= 0)
        return {QStringLiteral("PLC no response"), true};
    if (first != FirstStage)
        return {QStringLiteral("received bytes < 5"), true};

    const QByteArray reply = exchange.reply();
    const int function = byteAt(exchange.request, 1);
    if (byteAt(reply, 0) != station)
        return {QString::asprintf("invalid slave id:%d", byteAt(reply, 0)), false};
    if (byteAt(reply, 1) == (function | 0x80))
        return {hasGoodCrc(reply.left(FirstStage))
                    ? QString::asprintf("exception code:0x%02X", byteAt(reply, 2))
                    : QStringLiteral("CRC error"),
                false};
    if (byteAt(reply, 1) != function)
        return {QStringLiteral("invalid response"), false};
    if (exchange.counts.value(1) != restSize(exchange.request))
        return {QStringLiteral("packet loss"), true};
    return {hasGoodCrc(reply) ? QString() : QStringLiteral("CRC error"), false};
}

QByteArray FaultyChannel::answer(const QByteArray &request)
{
    QByteArray reply =
        goodReply(request, isWrite(request) ? QByteArray() : input.bytes(readDataSize(request)));
    switch (fault) {
    case FlippedBit: {
        const int bit = input.word() % (8 * reply.size());
        reply[bit / 8] = static_cast<char>(reply.at(bit / 8) ^ 1 << bit % 8);
        return reply;
    }
    case CutShort: return reply.left(input.byte() % reply.size());
    case ForeignBytes: return input.bytes(input.byte());
    case ForeignBytesWithCrc: return framed(input.bytes(input.byte()));
    case ExceptionReply: return exceptionReply(byteAt(request, 0), byteAt(request, 1), input.byte());
    default: return reply;
    }
}

int FaultyChannel::sentOf(int length)
{
    fault = input.byte() % FaultCount;
    return fault == OddSendCount ? length + input.signedByte() : length;
}

int FaultyChannel::countOf(int taken)
{
    return fault == OddReadCount ? taken + input.signedByte() : taken;
}

bool FaultyChannel::opens()
{
    return input.isEmpty() || input.byte() % 8 != 7;
}

} // namespace fuzz
