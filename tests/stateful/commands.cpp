#include "tests/stateful/commands.h"

#include "drivers/tools/command_data.h"
#include "tests/doubles/frames.h"

#include <rapidcheck.h>

#include <ostream>

namespace
{

using rc::gen::arbitrary;
using rc::gen::element;
using rc::gen::elementOf;
using rc::gen::inRange;
using rc::gen::weightedOneOf;

rc::Gen<int> anyKind()
{
    return weightedOneOf<int>(
        {{20, element<int>(WordItem, BitItem, ByteItem, DoubleWordItem, BlockItem, SecondBitItem)},
         {1, element<int>(EightByteItem, -1, SecondBitItem + 1)}});
}

rc::Gen<int> anyCount()
{
    return weightedOneOf<int>(
        {{20, inRange(0, 40)}, {2, inRange(118, 128)}, {1, inRange(1960, 2020)}, {1, inRange(-3, 0)}});
}

rc::Gen<int> anyNumber()
{
    return weightedOneOf<int>(
        {{10, inRange(1, 60)}, {3, inRange(AreaSize - 20, AreaSize + 5)}, {1, inRange(65500, 65537)}});
}

DriverModel::Address anyAddress()
{
    DriverModel::Address address;
    address.area =
        *element<std::string>("HR", "DO", "DI", "IR", "FN6HR", "FN5DO", "HRSW", "hr", "fn5do", "SW", "X");
    const int number = *anyNumber();
    address.offset = number - 1;
    address.bit = *weightedOneOf<int>({{3, rc::gen::just(0)}, {1, inRange(0, 16)}});
    address.text = address.area + std::to_string(number);
    if (address.bit != 0)
        address.text += "." + std::to_string(address.bit);
    return address;
}

QByteArray anyData(int count)
{
    const auto bytes = *rc::gen::container<std::vector<char>>(static_cast<size_t>(qBound(0, 2 * count, 300)),
                                                              arbitrary<char>());
    return QByteArray(bytes.data(), static_cast<int>(bytes.size()));
}

class TransferStep : public Step
{
public:
    TransferStep()
    {
        transfer.isWrite = *arbitrary<bool>();
        transfer.dataType = *anyKind();
        transfer.address = anyAddress();
        transfer.count = *anyCount();
        transfer.data = transfer.isWrite ? anyData(transfer.count) : QByteArray();
    }

    void apply(WorldModel &model) const override { model.transfer(transfer); }

    void run(const WorldModel &before, World &world) const override
    {
        WorldModel after = before;
        const DriverModel::Outcome expected = after.transfer(transfer);
        const DriverModel::Outcome seen = world.transfer(transfer);
        RC_ASSERT(seen.error == expected.error);
        RC_ASSERT(toHex(seen.data) == toHex(expected.data));
        RC_ASSERT(seen.isWritten == expected.isWritten);
        RC_ASSERT(world.line.sentCount() == after.sentCount);
        RC_ASSERT(world.line.connected == after.isConnected);
        RC_ASSERT(world.line.slave().coils == after.coils);
        RC_ASSERT(world.line.slave().holdingRegisters == after.holdingRegisters);
    }

    void show(std::ostream &out) const override
    {
        out << (transfer.isWrite ? "write " : "read ") << transfer.count << " of kind " << transfer.dataType
            << " at " << transfer.address.text;
        if (transfer.isWrite)
            out << ": " << toHex(transfer.data);
    }

private:
    Transfer transfer;
};

class AddFaults : public Step
{
public:
    AddFaults() : faults(*rc::gen::nonEmpty(rc::gen::container<std::vector<Fault>>(elementOf(allFaults()))))
    {
    }

    void apply(WorldModel &model) const override { model.addFaults(faults); }
    void run(const WorldModel & /*before*/, World &world) const override { world.line.addFaults(faults); }

    void show(std::ostream &out) const override
    {
        out << "faults to come:";
        for (const Fault fault : faults)
            out << " " << nameOf(fault) << ",";
    }

private:
    std::vector<Fault> faults;
};

class RefuseToOpen : public Step
{
public:
    RefuseToOpen() : times(*inRange(1, 4)) {}

    void apply(WorldModel &model) const override { model.refuseToOpen(times); }
    void run(const WorldModel & /*before*/, World &world) const override { world.line.refuseToOpen(times); }
    void show(std::ostream &out) const override { out << "the line refuses to open, times " << times; }

private:
    int times;
};

class CloseLine : public Step
{
public:
    void apply(WorldModel &model) const override { model.closeLine(); }
    void run(const WorldModel & /*before*/, World &world) const override { world.line.close(); }
    void show(std::ostream &out) const override { out << "the host closes the line"; }
};

class PutProject : public Step
{
public:
    PutProject() : file(*elementOf(allProjectFiles())) {}

    void apply(WorldModel &model) const override { model.file = file; }
    void run(const WorldModel & /*before*/, World & /*world*/) const override { putProjectFile(file); }
    void show(std::ostream &out) const override { out << "the project is " << nameOf(file); }

private:
    ProjectFile file;
};

// Nothing gets past the project without one.
class PutCompleteProject : public Step
{
public:
    void apply(WorldModel &model) const override { model.file = ProjectFile::Complete; }

    void run(const WorldModel & /*before*/, World & /*world*/) const override
    {
        putProjectFile(ProjectFile::Complete);
    }

    void show(std::ostream &out) const override { out << "the project is complete"; }
};

class StartDriver : public Step
{
public:
    void apply(WorldModel &model) const override { model.startDriver(); }
    void run(const WorldModel & /*before*/, World &world) const override { world.startDriver(); }
    void show(std::ostream &out) const override { out << "another driver"; }
};

class ChangeSettings : public Step
{
public:
    ChangeSettings() : station(*element(1, 2, 3, 255, 257)), retries(*inRange(0, 4)) {}

    void apply(WorldModel &model) const override
    {
        model.station = station;
        model.retries = retries;
    }

    void run(const WorldModel & /*before*/, World &world) const override
    {
        world.line.station = station;
        world.line.retries = retries;
    }

    void show(std::ostream &out) const override { out << "station " << station << ", retries " << retries; }

private:
    int station;
    int retries;
};

} // namespace

rc::Gen<std::shared_ptr<const Step>> anyStep(const WorldModel &before)
{
    const auto transfers = rc::state::gen::execOneOfWithArgs<TransferStep>();
    const auto changes = rc::state::gen::execOneOfWithArgs<AddFaults, RefuseToOpen, CloseLine, PutProject,
                                                           PutCompleteProject, StartDriver, ChangeSettings>();
    (void)before;
    return weightedOneOf<std::shared_ptr<const Step>>({{3, transfers()}, {2, changes()}});
}
