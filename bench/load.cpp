// The load of project databases beside the bare SELECT and beside a query of Qt that touches every text.

#include "bench/support/bare_select.h"
#include "bench/support/canned_channel.h"
#include "bench/support/program.h"
#include "bench/support/projects.h"
#include "drivers/modbus_rtu_slave_over_tcp/modbus_rtu_slave_over_tcp.h"

#include <benchmark/benchmark.h>

#include <stdexcept>

namespace
{

void loadProject()
{
    DriverModbusRtuSlaveOverTcp driver;
    CannedChannel channel;
    load(driver, channel);
}

void checkAll(const QString &project)
{
    if (selectEveryText(project) == 0 || selectEveryText(project) != queryEveryText(project))
        throw std::runtime_error("SELECT and query differ");
    useProject(project);
    DriverModbusRtuSlaveOverTcp driver;
    CannedChannel channel;
    load(driver, channel);
    checkLoad(driver, project);
}

template <typename Work>
void add(const std::string &name, const QString &project, Work work)
{
    benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State &state) {
        useProject(project);
        for (auto _ : state)
            work();
    })->Unit(benchmark::kMillisecond);
}

void addLoads(const QString &project, const std::string &tags)
{
    checkAll(project);
    add("SELECT/" + tags, project, [=] { benchmark::DoNotOptimize(selectEveryText(project)); });
    add("QSqlQuery/" + tags, project, [=] { benchmark::DoNotOptimize(queryEveryText(project)); });
    add("driver/" + tags, project, loadProject);
}

} // namespace

int main(int argc, char **argv)
{
    benchmark::Initialize(&argc, argv);
    return runProgram(argc, argv, "PROJECTS", [](const QStringList &arguments) {
        for (const QString &tags :
             {QStringLiteral("10000"), QStringLiteral("100000"), QStringLiteral("1000000")})
            addLoads(arguments[0] + QLatin1String("/tags-") + tags, tags.toStdString());
        benchmark::RunSpecifiedBenchmarks();
    });
}
