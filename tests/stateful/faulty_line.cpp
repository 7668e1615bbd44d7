#include "tests/stateful/faulty_line.h"

namespace
{

const char *const names[] = {"none",       "send fails",      "request lost",
                             "reply lost", "reply cut early", "reply cut late",
                             "wrong CRC",  "another station", "another function"};

QByteArray withByte(QByteArray reply, int place, char byte)
{
    if (reply.size() > place)
        reply[place] = byte;
    return reply;
}

QByteArray withFault(const QByteArray &reply, Fault fault)
{
    const int last = static_cast<int>(reply.size()) - 1;
    if (last < 0)
        return reply;
    switch (fault) {
    case Fault::ReplyIsLost: return QByteArray();
    case Fault::ReplyIsCutEarly: return reply.left(3);
    case Fault::ReplyIsCutLate: return reply.left(last);
    case Fault::ReplyHasWrongCrc: return withByte(reply, last, static_cast<char>(~reply.at(last)));
    case Fault::ReplyOfAnotherStation: return withByte(reply, 0, static_cast<char>(reply.at(0) ^ 1));
    case Fault::ReplyOfAnotherFunction: return withByte(reply, 1, 0x2B);
    default: return reply;
    }
}

} // namespace

const std::vector<Fault> &allFaults()
{
    static const std::vector<Fault> all = {Fault::None,
                                           Fault::SendFails,
                                           Fault::RequestIsLost,
                                           Fault::ReplyIsLost,
                                           Fault::ReplyIsCutEarly,
                                           Fault::ReplyIsCutLate,
                                           Fault::ReplyHasWrongCrc,
                                           Fault::ReplyOfAnotherStation,
                                           Fault::ReplyOfAnotherFunction};
    return all;
}

const char *nameOf(Fault fault)
{
    return names[static_cast<int>(fault)];
}

FaultyLine::FaultyLine(int areaSize) : answering(1, areaSize), now(Fault::None), refusals(0), sent(0)
{
    setResponder([this](const QByteArray &request) { return replyTo(request); });
}

void FaultyLine::addFaults(const std::vector<Fault> &faults)
{
    coming.insert(coming.end(), faults.begin(), faults.end());
}

int FaultyLine::writeData(const char *data, int length)
{
    ++sent;
    now = takeFault();
    const int accepted = ScriptedChannel::writeData(data, length);
    return now == Fault::SendFails ? accepted - 1 : accepted;
}

bool FaultyLine::open()
{
    if (refusals == 0)
        return ScriptedChannel::open();
    --refusals;
    return false;
}

Fault FaultyLine::takeFault()
{
    if (coming.empty())
        return Fault::None;
    const Fault fault = coming.front();
    coming.pop_front();
    return fault;
}

QByteArray FaultyLine::replyTo(const QByteArray &request)
{
    if (now == Fault::SendFails || now == Fault::RequestIsLost)
        return QByteArray();
    answering.station = station % 256;
    return withFault(answering.answer(request), now);
}
