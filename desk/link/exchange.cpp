#include "desk/link/exchange.h"

#include "desk/wire/rtu_frame.h"

namespace
{

// The driver judges a reply by these bytes before it takes the rest.
const int FirstStage = modbus::ExceptionReplySize;

Outcome outcomeOfShort(const Exchange &exchange)
{
    if (exchange.isGivenUp)
        return Outcome::GivenUp;
    if (exchange.isEndedByOther)
        return Outcome::ConnectionEnded;
    return exchange.reply.isEmpty() ? Outcome::Silence : Outcome::Cut;
}

} // namespace

Outcome outcomeOf(const Exchange &exchange)
{
    const QByteArray &reply = exchange.reply;
    if (reply.size() < FirstStage)
        return outcomeOfShort(exchange);
    if (reply.at(0) != exchange.request.at(0))
        return Outcome::OtherStation;
    const int function = functionOf(exchange.request);
    if (functionOf(reply) == (function | modbus::ExceptionFlag))
        return hasGoodCrc(reply.left(FirstStage)) ? Outcome::Exception : Outcome::CrcError;
    if (functionOf(reply) != function)
        return Outcome::OtherFunction;
    if (reply.size() < replySizeFor(exchange.request))
        return outcomeOfShort(exchange);
    return hasGoodCrc(reply) ? Outcome::Good : Outcome::CrcError;
}

int exceptionIn(const Exchange &exchange)
{
    return outcomeOf(exchange) == Outcome::Exception ? byteAt(exchange.reply, 2) : 0;
}
