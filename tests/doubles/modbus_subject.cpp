#include "tests/doubles/modbus_subject.h"

#include "tests/doubles/command.h"
#include "tests/doubles/frames.h"
#include "tests/doubles/modbus_commands.h"

#include <stdexcept>

namespace
{

kit::Difference difference(const char *check, const char *reason,
                           const std::function<bool(const kit::Finding &)> &covers = nullptr)
{
    return kit::Difference{QLatin1String(check), QLatin1String(reason), covers};
}

kit::Sample sampleOf(const ModbusCommand &command)
{
    const QString address = QLatin1String(command.address);
    return command.isWrite ? kit::writeOf(command.dataType, address, command.count, fromHex(command.data))
                           : kit::readOf(command.dataType, address, command.count);
}

bool isByteOfBitArea(const kit::Finding &finding)
{
    const CommunicatorCommand &command = finding.sample.command;
    return (isByteCommand(command) || isBlockCommand(command)) &&
           command.address.startsWith(QLatin1Char('D'));
}

// Station and function, which are all that a reply repeats of its request.
bool looksLikeTheAnswer(const kit::Finding &finding)
{
    return finding.reply.left(2) == finding.request.left(2);
}

} // namespace

ModbusSubject::ModbusSubject() : slave(filledSlave()) {}

kit::Samples ModbusSubject::samples() const
{
    kit::Samples samples;
    for (const ModbusCommand &command : modbusCommands())
        samples.push_back(sampleOf(command));
    return samples;
}

QByteArray ModbusSubject::reply(const QByteArray &request)
{
    slave.station = byteAt(request, 0);
    return slave.answer(request);
}

QByteArray ModbusSubject::refusal(const QByteArray &request)
{
    return exceptionReply(byteAt(request, 0), byteAt(request, 1), 2);
}

std::vector<CommunicatorCommand> ModbusSubject::refused() const
{
    return {makeCommand(EightByteItem, QLatin1String("HR1"), 1),
            makeCommand(WordItem, QLatin1String("HR1"), 126),
            makeCommand(WordItem, QLatin1String("HR65536"), 2),
            makeCommand(DoubleWordItem, QLatin1String("FN6HR1"), 63),
            makeCommand(BitItem, QLatin1String("DO1"), 2009),
            makeCommand(BitItem, QLatin1String("FN5DO65536"), 2)};
}

kit::Differences ModbusSubject::differences() const
{
    return {
        difference("refusals.addresses", "any text is read as far as it fits, and hosts rely on that"),
        difference("refusals.counts",
                   "byte items of bit areas ask for used bits only, so no count is too large",
                   isByteOfBitArea),
        difference("staleness.other-request", "RTU replies say no more than station, function and length",
                   looksLikeTheAnswer),
        difference("staleness.echo", "an echo can have the station, the function and the length of the reply",
                   looksLikeTheAnswer),
    };
}

QString ModbusSubject::prepare()
{
    try {
        project.reset(new ProjectDatabase(modbusCommandTags(), 1));
    } catch (const std::runtime_error &error) {
        return QString::fromLocal8Bit(error.what());
    }
    return QString();
}
