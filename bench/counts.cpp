// Runs what is counted under callgrind, which writes one file of costs for each figure, named by its text. It
// counts within counted(), but not within the channel: --toggle-collect names both.

#include "bench/support/bit_reads.h"
#include "bench/support/canned_channel.h"
#include "bench/support/program.h"
#include "bench/support/projects.h"
#include "bench/support/transactions.h"
#include "drivers/modbus_rtu_slave_over_tcp/modbus_rtu_slave_over_tcp.h"

#include <valgrind/callgrind.h>

#include <iostream>

// Takes only references, so that nothing but the work itself is within it.
template <typename Work>
__attribute__((noinline)) void counted(Work &work)
{
    work();
}

namespace
{

// Counts one call of `work` once it has done everything that only a first call does.
template <typename Work>
void count(const std::string &name, Work work)
{
    work();
    CALLGRIND_ZERO_STATS;
    counted(work);
    const std::string figure = "instructions: " + name;
    CALLGRIND_DUMP_STATS_AT(figure.c_str());
}

void count(DriverInterface &driver, CannedChannel &channel, const Transaction &transaction)
{
    if (transaction.written.isEmpty())
        count(transaction.name, [&] { driver.read(&channel, transaction.command); });
    else
        count(transaction.name, [&] { driver.write(&channel, transaction.command, transaction.written); });
}

void countTransactions()
{
    DriverModbusRtuSlaveOverTcp driver;
    CannedChannel channel(QStringLiteral("COM1"));
    for (const Transaction &transaction : measuredTransactions()) {
        check(driver, channel, transaction);
        count(driver, channel, transaction);
    }
}

void countBitReads()
{
    for (const BitRead &bitRead : measuredBitReads()) {
        DriverModbusRtuSlaveOverTcp driver;
        CannedChannel channel(bitRead.port);
        check(driver, channel, bitRead.transaction);
        count(driver, channel, bitRead.transaction);
    }
}

void countLoad(const QString &project)
{
    useProject(project);
    CannedChannel channel;
    count("load", [&] {
        DriverModbusRtuSlaveOverTcp driver;
        load(driver, channel);
    });
    count("query", [&] { queryEveryText(project); });
}

} // namespace

int main(int argc, char **argv)
{
    return runProgram(argc, argv, "PROJECTS TAGS-PROJECT", [](const QStringList &arguments) {
        useProject(arguments[0] + QLatin1String("/bits"));
        countTransactions();
        countBitReads();
        countLoad(arguments[0] + QLatin1Char('/') + arguments[1]);
    });
}
