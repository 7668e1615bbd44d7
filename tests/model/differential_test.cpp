#include "tests/doubles/model_slave.h"
#include "tests/model/driver_model.h"
#include "tests/support/driver_test.h"

#include <cstdlib>
#include <random>

// Random commands to a driver with a model slave, and to a model of the driver: after each command both must
// have returned the same, and both slaves must hold the same.
//
// DIFFERENTIAL_SEED and DIFFERENTIAL_COMMANDS in the environment choose another run.

namespace
{

const int AreaSize = 65000; // beyond it the slave answers with exceptions

int numberFrom(const char *variable, int byDefault)
{
    const char *const value = std::getenv(variable);
    return value != nullptr ? std::atoi(value) : byDefault;
}

struct Command {
    bool isWrite;
    int dataType;
    DriverModel::Address address;
    int count;
    QByteArray data;
    int station;
    int retries;
};

std::string textOf(const Command &command)
{
    return std::string(command.isWrite ? "write" : "read") + " kind " + std::to_string(command.dataType) +
           ", " + std::to_string(command.count) + " at \"" + command.address.text + "\", station " +
           std::to_string(command.station) + ", data " + toHex(command.data);
}

bool isBits(int dataType)
{
    return dataType == BitItem || dataType == SecondBitItem;
}

class Generator
{
public:
    explicit Generator(unsigned int seed) : random(seed) {}

    int below(int limit) { return static_cast<int>(random() % static_cast<unsigned int>(limit)); }
    bool oneIn(int times) { return below(times) == 0; }

    template <typename T, size_t Size>
    T oneOf(const T (&values)[Size])
    {
        return values[below(static_cast<int>(Size))];
    }

    QByteArray bytes(int size)
    {
        QByteArray data(size, '\0');
        for (int i = 0; i < size; ++i)
            data[i] = static_cast<char>(below(256));
        return data;
    }

    Command command()
    {
        static const int kinds[] = {BitItem, ByteItem, WordItem, DoubleWordItem, BlockItem, SecondBitItem};
        static const int stations[] = {1, 1, 1, 1, 1, 1, 2, 2, 3, 257};
        Command next;
        next.isWrite = oneIn(2);
        next.dataType = oneIn(50) ? unsupportedKind() : oneOf(kinds);
        next.address = address();
        const bool isOneByOne = next.isWrite && next.address.area[0] % 32 == 'F' % 32;
        next.count = isOneByOne && !oneIn(20) ? below(6) : count(next.dataType);
        next.data = next.isWrite ? data(next) : QByteArray();
        next.station = oneOf(stations);
        next.retries = oneIn(4) ? 1 : 0;
        return next;
    }

private:
    int unsupportedKind()
    {
        return oneIn(2) ? static_cast<int>(EightByteItem) : SecondBitItem + 1 + below(3);
    }

    DriverModel::Address address()
    {
        static const char *const areas[] = {"HR",   "HR",      "HR",  "FN6HR", "FN6HR", "IR",    "IR",
                                            "DI",   "DI",      "DO",  "DO",    "FN5DO", "SW",    "HRSW",
                                            "IRSW", "FN6HRSW", "DOX", "HRX",   "FN5DI", "FN7HR", "D"};
        DriverModel::Address result;
        result.area = inMixedCase(oneOf(areas));
        const int number = oneIn(50)  ? 65536 + below(200)
                           : oneIn(3) ? below(300)
                           : oneIn(3) ? 65536 - below(300)
                                      : below(65536);
        const bool hasNumber = !oneIn(100);
        const bool hasBit = oneIn(3);
        result.offset = hasNumber ? (number + 65535) % 65536 : 65535;
        result.bit = !hasBit ? 0 : oneIn(10) ? below(256) : below(16);
        result.text = result.area + (hasNumber ? std::to_string(number) : "") +
                      (hasBit ? "." + std::to_string(result.bit) : "") +
                      (hasNumber && oneIn(20) ? " sw" : "");
        return result;
    }

    std::string inMixedCase(std::string text)
    {
        for (char &c : text)
            if (c >= 'A' && oneIn(3))
                c = static_cast<char>(c + ('a' - 'A'));
        return text;
    }

    // Mostly small, often about one of the limits, which stand here in items of the kind.
    int count(int dataType)
    {
        static const int bitLimits[] = {1968, 1976, 2000, 2008, 2016};
        static const int byteLimits[] = {246, 250, 251, 252};
        static const int wordLimits[] = {123, 125};
        static const int doubleWordLimits[] = {61, 62};
        static const int odd[] = {-1, -2, -16, -2147483647 - 1, 65536, 65537};
        if (oneIn(100))
            return oneOf(odd);
        if (!oneIn(4))
            return below(40);
        const int limit = dataType == WordItem         ? oneOf(wordLimits)
                          : dataType == DoubleWordItem ? oneOf(doubleWordLimits)
                          : isBits(dataType)           ? oneOf(bitLimits)
                                                       : oneOf(byteLimits);
        return limit - 2 + below(5);
    }

    // What the command needs, or a little less or more.
    QByteArray data(const Command &command)
    {
        const int items = qBound(0, command.count, 2100);
        const int size = command.dataType == WordItem         ? 2 * items
                         : command.dataType == DoubleWordItem ? 4 * items
                         : isBits(command.dataType)           ? (items + 7) / 8
                                                              : items;
        return bytes(oneIn(5) ? qMax(0, size - 3 + below(6)) : size);
    }

    std::mt19937 random;
};

// The bits of a project with runs and gaps, near both ends of the area above all.
std::set<int> someBits(Generator &generator)
{
    std::set<int> bits;
    for (int run = 0; run < 300; ++run) {
        const int length = generator.oneIn(40) ? 2100 : generator.below(12);
        const int start = generator.oneIn(3)   ? generator.below(400)
                          : generator.oneIn(2) ? 65535 - generator.below(700)
                                               : generator.below(65536);
        for (int i = 0; i < length; ++i)
            bits.insert((start + i) % 65536);
    }
    return bits;
}

QStringList tagsOf(const DriverModel &model)
{
    QStringList tags;
    for (const auto &station : model.usedBits) {
        const QString prefix = QString::number(station.first) + QLatin1Char('-');
        for (const int address : station.second.discreteInputs)
            tags << prefix + QLatin1String("DI") + QString::number(address + 1);
        for (const int address : station.second.coils)
            tags << prefix + QLatin1String("DO") + QString::number(address + 1);
    }
    return tags;
}

} // namespace

TEST(Differential, DriverDoesWhatItsModelDoes)
{
    const auto seed = static_cast<unsigned int>(numberFrom("DIFFERENTIAL_SEED", 1));
    const int commands = numberFrom("DIFFERENTIAL_COMMANDS", 200000);
    Generator generator(seed);

    DriverModel model(AreaSize);
    for (const int station : {1, 2}) {
        model.usedBits[station].discreteInputs = someBits(generator);
        model.usedBits[station].coils = someBits(generator);
    }
    ModelSlave slave(1, AreaSize);
    for (size_t i = 0; i < slave.coils.size(); ++i) {
        slave.coils[i] = static_cast<std::uint8_t>(generator.below(2));
        slave.discreteInputs[i] = static_cast<std::uint8_t>(generator.below(2));
        slave.holdingRegisters[i] = static_cast<std::uint16_t>(generator.below(65536));
        slave.inputRegisters[i] = static_cast<std::uint16_t>(generator.below(65536));
    }
    model.coils = slave.coils;
    model.discreteInputs = slave.discreteInputs;
    model.holdingRegisters = slave.holdingRegisters;
    model.inputRegisters = slave.inputRegisters;

    LoadedDriver link(tagsOf(model));
    link.channel.setResponder([&slave](const QByteArray &request) { return slave.answer(request); });

    for (int i = 0; i < commands; ++i) {
        const Command command = generator.command();
        SCOPED_TRACE("DIFFERENTIAL_SEED=" + std::to_string(seed) + ", command " + std::to_string(i) + ": " +
                     textOf(command));
        link.channel.forgetCalls();
        link.channel.station = command.station;
        link.channel.retries = command.retries;
        slave.station = command.station % 256;
        model.station = command.station;

        const char *const address = command.address.text.c_str();
        DriverModel::Outcome expected;
        if (command.isWrite) {
            expected = model.write(command.dataType, command.address, command.count, command.data);
            ASSERT_EQ(link.write(command.dataType, address, command.count, command.data), expected.isWritten);
        } else {
            expected = model.read(command.dataType, command.address, command.count);
            ASSERT_EQ(link.read(command.dataType, address, command.count), expected.data);
        }
        ASSERT_EQ(link.error(), expected.error.empty() ? NoError : expected.error);
        ASSERT_TRUE(slave.coils == model.coils) << "other coils";
        ASSERT_TRUE(slave.holdingRegisters == model.holdingRegisters) << "other holding registers";
    }
}
