#include "desk/doctor/observing/observations.h"

#include "desk/wire/rtu_frame.h"

#include <algorithm>

int Asked::station() const
{
    return byteAt(request, 0);
}

int Asked::function() const
{
    return functionOf(request);
}

QByteArray Asked::received() const
{
    QByteArray bytes;
    for (const Segment &segment : segments)
        bytes += segment.bytes;
    return bytes;
}

int Asked::exception() const
{
    return result == AskResult::Refused ? byteAt(reply, 2) : 0;
}

bool Asked::isAnswer() const
{
    return result == AskResult::Answered || result == AskResult::Refused || result == AskResult::OtherLength;
}

bool Asked::isStationAbsent() const
{
    return exception() == modbus::GatewayPathUnavailable || exception() == modbus::GatewayTargetFailed;
}

bool Observations::isEchoing() const
{
    return std::any_of(asked.begin(), asked.end(), [](const Asked &one) { return one.isEchoed; });
}

std::vector<const Asked *> Observations::askedFor(Purpose purpose) const
{
    std::vector<const Asked *> found;
    for (const Asked &one : asked) {
        if (one.purpose == purpose)
            found.push_back(&one);
    }
    return found;
}

std::vector<const Asked *> Observations::timed() const
{
    std::vector<const Asked *> found;
    for (const Asked &one : asked) {
        if (one.station() == working && one.isAnswer() && !one.isStationAbsent() &&
            one.purpose != Purpose::Length)
            found.push_back(&one);
    }
    return found;
}

const Asked *Observations::firstRead() const
{
    const auto found = std::find_if(asked.begin(), asked.end(), [&](const Asked &one) {
        return one.result == AskResult::Answered && one.station() == working &&
               modbus::isRead(one.function());
    });
    return found == asked.end() ? nullptr : &*found;
}

const Asked *Observations::readOf(Area area) const
{
    const auto found = std::find_if(asked.begin(), asked.end(), [&](const Asked &one) {
        return one.function() == readFunction(area) && one.station() == working &&
               one.result == AskResult::Answered;
    });
    return found == asked.end() ? nullptr : &*found;
}

const Asked *Observations::refusalOf(Area area) const
{
    const auto found = std::find_if(asked.rbegin(), asked.rend(), [&](const Asked &one) {
        return one.function() == readFunction(area) && one.station() == working &&
               one.result == AskResult::Refused && one.purpose != Purpose::Length;
    });
    return found == asked.rend() ? nullptr : &*found;
}

bool Observations::hasFrames() const
{
    return std::any_of(asked.begin(), asked.end(), [](const Asked &one) {
        return one.isAnswer() || one.result == AskResult::OtherStation || one.isEchoed;
    });
}

// The same bytes come unasked, or in place of replies to different requests.
bool Observations::isPacket(const QByteArray &bytes) const
{
    const QByteArray *request = nullptr;
    for (const Stray &stray : strays) {
        if (stray.bytes != bytes || stray.kind != SkippedPart::Noise)
            continue;
        if (stray.asked < 0)
            return true;
        const QByteArray &itsRequest = asked[static_cast<size_t>(stray.asked)].request;
        if (request != nullptr && *request != itsRequest)
            return true;
        request = &itsRequest;
    }
    return false;
}

bool Observations::isSpoilt(const Asked &one) const
{
    QByteArray received = one.received();
    for (const Stray &stray : strays) {
        if (stray.kind == SkippedPart::OtherFrame || isPacket(stray.bytes))
            received.replace(stray.bytes, QByteArray());
    }
    // Less is a packet of the gateway's own rather than what is left of a reply.
    const int enough = std::max(modbus::MinFrameSize, replySizeFor(one.request) / 2);
    return one.result == AskResult::Damaged || (one.result == AskResult::Noise && received.size() >= enough);
}

bool Observations::isOfReply(const Stray &noise) const
{
    if (noise.asked >= 0)
        return isSpoilt(asked[static_cast<size_t>(noise.asked)]);
    const qint64 longestReply = 20000000;
    const auto last =
        std::find_if(asked.rbegin(), asked.rend(), [&](const Asked &one) { return one.sentAt < noise.at; });
    return last != asked.rend() && last->result == AskResult::Damaged &&
           noise.at - last->sentAt < longestReply;
}

bool Observations::hasTraffic() const
{
    return std::any_of(strays.begin(), strays.end(),
                       [](const Stray &one) { return one.asked < 0 && one.kind == SkippedPart::OtherFrame; });
}

int readFunction(Area area)
{
    switch (area) {
    case Area::Coils: return modbus::ReadCoils;
    case Area::DiscreteInputs: return modbus::ReadDiscreteInputs;
    case Area::InputRegisters: return modbus::ReadInputRegisters;
    case Area::HoldingRegisters: break;
    }
    return modbus::ReadHoldingRegisters;
}

Area areaOfFunction(int function)
{
    switch (function) {
    case modbus::ReadCoils: return Area::Coils;
    case modbus::ReadDiscreteInputs: return Area::DiscreteInputs;
    case modbus::ReadInputRegisters: return Area::InputRegisters;
    default: return Area::HoldingRegisters;
    }
}

QByteArray readRequest(int station, Area area, int offset, int count)
{
    QByteArray request;
    for (const int byte : {station, readFunction(area), offset >> 8, offset & 0xFF, count >> 8, count & 0xFF})
        request += static_cast<char>(byte);
    return withCrc(request);
}
