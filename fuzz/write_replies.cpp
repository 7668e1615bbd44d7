// Writes of every kind over a channel that the input controls: requests, closes, error texts and the result
// must be those that the bytes on the channel call for.

#include "drivers/modbus_rtu_slave_over_tcp/modbus_rtu_slave_over_tcp.h"
#include "fuzz/support/check.h"
#include "fuzz/support/project_file.h"
#include "fuzz/support/write_plan.h"

using namespace fuzz;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size)
{
    static const bool hasProject = (writeProject({}), true);
    FUZZ_CHECK(hasProject);
    static DriverModbusRtuSlaveOverTcp driver;

    Input input(bytes, size);
    const Command command = takeCommand(input);
    const QByteArray data = input.bytes(input.byte());
    FaultyChannel channel(input);
    takeLink(input, channel);
    const bool written = driver.write(&channel, command, data);

    if (!command.isSupported()) {
        checkUnsupported(channel, driver, command);
        FUZZ_CHECK(!written);
        return 0;
    }
    const Plan plan = planWrite(command, data, channel.station, channel.lastAttempt());
    const bool succeeds = checkOutcome(channel, plan, driver, command, " (write %d %s to %d-");
    // No bit of a register at all: nothing is written and nothing failed.
    const bool isNothing =
        command.isBitKind() && command.area->isHolding && command.count == 0 && command.bit == 0;
    FUZZ_CHECK(written == (succeeds && !isNothing));
    return 0;
}
