#include "tests/lines/serial_timing.h"

namespace
{

const double Second = 1e6;
const int CharacterBits = 11;
const int FastestWithCharacterSilence = 19200;
const double FixedSilence = 1750;
const int ReplyOverhead = 5;

} // namespace

double SerialTiming::character() const
{
    return Second * CharacterBits / baud;
}

double SerialTiming::silence() const
{
    return baud > FastestWithCharacterSilence ? FixedSilence : 3.5 * character();
}

double SerialTiming::exchange(int requestBytes, int replyBytes) const
{
    return (requestBytes + replyBytes) * character() + 2 * silence() + turnaround;
}

double SerialTiming::read(Area area, int count) const
{
    const int bytes = isBitArea(area) ? modbus::bytesOfBits(count) : count * modbus::RegisterBytes;
    return exchange(modbus::ShortFrameSize, ReplyOverhead + bytes);
}

double SerialTiming::refusal() const
{
    return exchange(modbus::ShortFrameSize, modbus::ExceptionReplySize);
}

RequestCost SerialTiming::cost(Area area) const
{
    return {refusal(), character() * (isBitArea(area) ? 1 : modbus::RegisterBytes)};
}

SerialTiming fastNetwork()
{
    return {100000000, 200};
}
