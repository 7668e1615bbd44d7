#include "tests/stateful/world_model.h"

#include "drivers/tools/command_data.h"
#include "tests/doubles/project_database.h"

namespace
{

bool isDatabase(ProjectFile file)
{
    return file != ProjectFile::Missing && file != ProjectFile::Text;
}

bool isSupported(int dataType)
{
    return dataType >= BitItem && dataType <= SecondBitItem && dataType != EightByteItem;
}

} // namespace

WorldModel::WorldModel()
    : DriverModel(AreaSize),
      file(ProjectFile::Missing),
      retries(0),
      isConnected(true),
      sentCount(0),
      now(Fault::None),
      refusals(0),
      loading(Loading::NotBegun),
      opened(ProjectFile::Missing)
{
}

void WorldModel::startDriver()
{
    loading = Loading::NotBegun;
    opened = ProjectFile::Missing;
    usedBits.clear();
}

DriverModel::Outcome WorldModel::transfer(const Transfer &command)
{
    const std::string reason = load();
    if (!reason.empty())
        return {QByteArray(), false, reason};
    Outcome outcome = {QByteArray(), false, LineText};
    for (int i = 0; i <= retries; ++i) {
        if (!openLine())
            return {QByteArray(), false, LineText};
        outcome = attempt(command);
        if (outcome.error.empty() || !isSupported(command.dataType))
            break;
    }
    return outcome;
}

DriverModel::Outcome WorldModel::attempt(const Transfer &command)
{
    return command.isWrite ? write(command.dataType, command.address, command.count, command.data)
                           : read(command.dataType, command.address, command.count);
}

bool WorldModel::openLine()
{
    if (isConnected)
        return true;
    if (refusals > 0) {
        --refusals;
        return false;
    }
    isConnected = true;
    return true;
}

// The reason why the project is not read, empty when it is.
std::string WorldModel::load()
{
    if (loading == Loading::Done)
        return std::string();
    const bool isFirst = loading == Loading::NotBegun;
    loading = Loading::Tried;
    if (!isDatabase(opened))
        opened = file;
    if (!isDatabase(opened))
        return isFirst ? CanNotOpen : NoStation;
    if (opened == ProjectFile::WithoutStation)
        return NoStation;
    if (opened == ProjectFile::WithoutTags)
        return NoAddresses;
    loading = Loading::Done;
    for (const int with : {1, 2}) {
        usedBits[with].coils.insert(usedAddresses().begin(), usedAddresses().end());
        usedBits[with].discreteInputs = usedBits[with].coils;
    }
    return std::string();
}

bool WorldModel::isSent()
{
    ++sentCount;
    now = Fault::None;
    if (!coming.empty()) {
        now = coming.front();
        coming.pop_front();
    }
    if (now == Fault::SendFails)
        return failAndClose(LineText);
    return now != Fault::RequestIsLost || failAndClose("PLC no response");
}

// The checks of a reply in their order; an exception is as long as the beginning of any other reply.
bool WorldModel::isAnswered(bool isException)
{
    if (now == Fault::ReplyIsLost)
        return failAndClose("PLC no response");
    if (now == Fault::ReplyIsCutEarly || (now == Fault::ReplyIsCutLate && isException))
        return failAndClose("received bytes < 5");
    const int sender = station % 256 ^ (now == Fault::ReplyOfAnotherStation ? 1 : 0);
    if (sender != station)
        return fail("invalid slave id:" + std::to_string(sender));
    if (now == Fault::ReplyOfAnotherFunction)
        return fail("invalid response");
    if (now == Fault::ReplyIsCutLate)
        return failAndClose("packet loss");
    return now != Fault::ReplyHasWrongCrc || fail("CRC error");
}

bool WorldModel::failAndClose(const std::string &text)
{
    isConnected = false;
    return fail(text);
}
