// Reads of every kind over a channel that the input controls: requests, closes, error texts and data must be
// those that the bytes on the channel call for, and no byte of a refused reply may come through.

#include "drivers/modbus_rtu_slave_over_tcp/modbus_rtu_slave_over_tcp.h"
#include "fuzz/support/check.h"
#include "fuzz/support/project_file.h"
#include "fuzz/support/read_plan.h"
#include "tests/doubles/frames.h"

namespace
{

using namespace fuzz;

const int LongRun = 2018;

void useBit(QStringList &tags, int station, const char *area, QMap<int, QSet<int>> &used, int number)
{
    tags += QStringLiteral("%1-%2%3").arg(station).arg(QLatin1String(area)).arg(number);
    used[station].insert(number - 1);
}

UsedBits makeProject()
{
    UsedBits project;
    QStringList tags;
    for (const int number : {1, 2, 3, 6, 17, 65534})
        useBit(tags, 1, "DI", project.inputs, number);
    for (const int number : {1, 9, 10, 11, 12, 13, 14, 15, 16, 300, 65536})
        useBit(tags, 1, "DO", project.coils, number);
    useBit(tags, 2, "DI", project.inputs, 4);
    for (int number = 1; number <= LongRun; ++number)
        useBit(tags, 3, "DO", project.coils, number);
    writeProject(tags);
    return project;
}

bool bitOf(const QByteArray &bits, int i)
{
    return (byteAt(bits, i / 8) >> i % 8 & 1) != 0;
}

void copyBits(QByteArray &target, int to, const QByteArray &source, int from, int count)
{
    for (int i = 0; i < count; ++i)
        if (bitOf(source, from + i))
            target[(to + i) / 8] = static_cast<char>(target.at((to + i) / 8) | 1 << (to + i) % 8);
}

QByteArray withItemsReversed(const QByteArray &data, int itemSize)
{
    QByteArray reversed;
    for (int i = 0; i < data.size(); ++i)
        reversed.append(data.at(i / itemSize * itemSize + itemSize - 1 - i % itemSize));
    return reversed;
}

QByteArray registersOf(const Exchange &exchange)
{
    return exchange.data().left(readDataSize(exchange.request));
}

QByteArray expectedData(const Command &command, const ReadPlan &plan, const QList<Exchange> &exchanges)
{
    if (!command.isBitKind() && !command.isByteKind())
        return withItemsReversed(registersOf(exchanges.first()),
                                 command.dataType == DoubleWordItem && command.highWordFirst ? 4 : 2);
    const bool isBytesOfRegisters = command.isByteKind() && plan.positions.isEmpty() && !exchanges.isEmpty();
    if (isBytesOfRegisters)
        return withItemsReversed(registersOf(exchanges.first()), 2).left(command.count);

    QByteArray bits(command.isByteKind() ? qMax(command.count, 0) : (command.count + 7) / 8, '\0');
    if (command.isBitKind() && command.area->isBits)
        copyBits(bits, 0, exchanges.first().data(), 0, command.count);
    else if (command.isBitKind())
        copyBits(bits, 0, withItemsReversed(registersOf(exchanges.first()), 2), command.bit, command.count);
    else
        for (int i = 0; i < exchanges.size(); ++i)
            copyBits(bits, plan.positions.at(i), exchanges.at(i).data(), 0,
                     wordAt(exchanges.at(i).request, 4));
    return bits;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static const UsedBits project = makeProject();
    static DriverModbusRtuSlaveOverTcp driver;

    Input input(data, size);
    const Command command = takeCommand(input);
    FaultyChannel channel(input);
    takeLink(input, channel);
    const QByteArray result = driver.read(&channel, command);

    if (!command.isSupported()) {
        checkUnsupported(channel, driver, command);
        FUZZ_CHECK(result.isEmpty());
        return 0;
    }
    const ReadPlan plan = planRead(command, channel.station, project);
    const bool succeeds = checkOutcome(channel, plan, driver, command, " (read %d %s(s) from %d-");
    FUZZ_CHECK(result == (succeeds ? expectedData(command, plan, channel.lastAttempt()) : QByteArray()));
    return 0;
}
