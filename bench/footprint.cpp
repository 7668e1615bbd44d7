// Prints what the load of a project costs in memory. A process for each load: its peak is that of the whole
// process.

#include "bench/support/canned_channel.h"
#include "bench/support/heap_watch.h"
#include "bench/support/program.h"
#include "bench/support/projects.h"
#include "drivers/modbus_rtu_slave_over_tcp/modbus_rtu_slave_over_tcp.h"

#include <fstream>
#include <iostream>
#include <stdexcept>

namespace
{

long long peakOfProcess()
{
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;)
        if (word == "VmHWM:") {
            long long kibibytes = 0;
            status >> kibibytes;
            return kibibytes * 1024;
        }
    throw std::runtime_error("no peak of memory in /proc/self/status");
}

void print(const char *name, double value)
{
    std::cout << name << '\t' << value << '\n';
}

void printFootprint(const QString &projects, const QString &name)
{
    const double mebibyte = 1024 * 1024;
    // Qt keeps what it loads with the first project, whichever that is: part of the peak, but not of what one
    // project more leaves behind.
    DriverModbusRtuSlaveOverTcp first;
    CannedChannel firstChannel(QStringLiteral("COM4"));
    useProject(projects + QLatin1String("/bits"));
    const long long peakBefore = peakOfProcess();
    load(first, firstChannel);

    DriverModbusRtuSlaveOverTcp driver;
    CannedChannel channel;
    const QString project = projects + QLatin1Char('/') + name;
    useProject(project);
    restartPeak();
    const long long bytesBefore = heapUse().bytes;
    load(driver, channel);
    const auto peak = static_cast<double>(peakOfProcess() - peakBefore);
    const auto heapPeak = static_cast<double>(heapUse().peak - bytesBefore);
    const auto kept = static_cast<double>(heapUse().bytes - bytesBefore);

    checkLoad(driver, project);
    print("load: growth of peak memory, MiB", peak / mebibyte);
    print("load: peak of the heap, MiB", heapPeak / mebibyte);
    print("load: bytes kept for each used address", kept / usedAddresses(project));
}

} // namespace

int main(int argc, char **argv)
{
    return runProgram(argc, argv, "PROJECTS TAGS-PROJECT",
                      [](const QStringList &arguments) { printFootprint(arguments[0], arguments[1]); });
}
