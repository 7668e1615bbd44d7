// The driver on a channel in memory: what a transaction costs without the wire.

#include "bench/support/bit_reads.h"
#include "bench/support/canned_channel.h"
#include "bench/support/program.h"
#include "bench/support/projects.h"
#include "bench/support/transactions.h"
#include "drivers/modbus_rtu_slave_over_tcp/modbus_rtu_slave_over_tcp.h"

#include <benchmark/benchmark.h>

#include <stdexcept>

namespace
{

void add(const QString &port, const Transaction &transaction, int requests)
{
    benchmark::RegisterBenchmark(transaction.name, [=](benchmark::State &state) {
        DriverModbusRtuSlaveOverTcp driver;
        CannedChannel channel(port);
        check(driver, channel, transaction);
        if (channel.requestCount() != requests)
            throw std::runtime_error(std::string(transaction.name) + ": another number of requests");
        for (auto _ : state)
            run(driver, channel, transaction);
    });
}

} // namespace

int main(int argc, char **argv)
{
    benchmark::Initialize(&argc, argv);
    return runProgram(argc, argv, "PROJECTS", [](const QStringList &arguments) {
        useProject(arguments[0] + QLatin1String("/bits"));
        for (const Transaction &transaction : measuredTransactions())
            add(QStringLiteral("COM1"), transaction, 1);
        for (const BitRead &bitRead : measuredBitReads())
            add(bitRead.port, bitRead.transaction, bitRead.requests);
        benchmark::RunSpecifiedBenchmarks();
    });
}
