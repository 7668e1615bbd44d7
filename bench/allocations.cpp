// Prints how often a transaction takes memory from the heap, and that a channel without a delay is not waited
// for.

#include "bench/support/bit_reads.h"
#include "bench/support/canned_channel.h"
#include "bench/support/heap_watch.h"
#include "bench/support/program.h"
#include "bench/support/projects.h"
#include "bench/support/transactions.h"
#include "drivers/modbus_rtu_slave_over_tcp/modbus_rtu_slave_over_tcp.h"
#include "drivers/tools/timing.h"

#include <iostream>
#include <stdexcept>

namespace
{

void print(const std::string &name, long long value)
{
    std::cout << name << '\t' << value << '\n';
}

// The allocations of each of many runs, which must all be alike.
long long allocationsOf(DriverInterface &driver, AbstractDeviceInterface &channel,
                        const Transaction &transaction)
{
    check(driver, channel, transaction);
    long long each = -1;
    for (int i = 0; i < 100; ++i) {
        const long long before = heapUse().allocations;
        run(driver, channel, transaction);
        const long long taken = heapUse().allocations - before;
        if (each != -1 && taken != each)
            throw std::runtime_error(std::string(transaction.name) + ": not always the same allocations");
        each = taken;
    }
    return each;
}

void printTransactions()
{
    DriverModbusRtuSlaveOverTcp driver;
    CannedChannel channel(QStringLiteral("COM1"));
    for (const Transaction &transaction : measuredTransactions())
        print(std::string("allocations: ") + transaction.name, allocationsOf(driver, channel, transaction));
}

void printFurtherRuns()
{
    int requests = 0;
    long long allocations = 0;
    for (const BitRead &bitRead : measuredBitReads()) {
        if (bitRead.requests < 2)
            continue;
        DriverModbusRtuSlaveOverTcp driver;
        CannedChannel channel(bitRead.port);
        const long long taken = allocationsOf(driver, channel, bitRead.transaction);
        if (requests != 0)
            print("allocations: further run of a byte read",
                  (taken - allocations) / (bitRead.requests - requests));
        requests = bitRead.requests;
        allocations = taken;
    }
}

void checkThatSleepsAreSeen()
{
    const long long before = sleepCount();
    HRSleep(1);
    if (sleepCount() != before + 1)
        throw std::runtime_error("calls of nanosleep() are not seen");
}

} // namespace

int main(int argc, char **argv)
{
    return runProgram(argc, argv, "PROJECTS", [](const QStringList &arguments) {
        useProject(arguments[0] + QLatin1String("/bits"));
        printTransactions();
        printFurtherRuns();
        print("nanosleep calls with a delay of 0", sleepCount());
        checkThatSleepsAreSeen();
    });
}
