// Days of a panel on a clock of its own. Usage: years SEED DAYS [SECONDS], to print all that is on the line
// from then on.

#include "drivers/tools.h"
#include "tests/peers/driver_link.h"
#include "tests/peers/process_use.h"
#include "tests/peers/test_files.h"
#include "tests/simulation/panel/panel_run.h"

#include <QCoreApplication>

#include <algorithm>
#include <iostream>

namespace
{

const qint64 Second = 1000000;
const qint64 Day = Second * 3600 * 24;
const qint64 MostGrowth = qint64(16) << 20;

void print(quint32 seed, double days, const PanelRun &run, qint64 growth)
{
    const RunReport &report = run.report();
    std::cout << "seed " << seed << ", " << run.description() << ": " << days << " days, " << run.requests()
              << " requests, " << report.values << " values, " << report.failures << " failed, "
              << report.notAsked << " not asked for; " << run.episodes() << " episodes, recovered after "
              << static_cast<double>(report.longestRecovery) / 1e6 << " s at most; memory grew by "
              << growth / 1024 << " KB; digest " << std::hex << report.digest << std::dec << '\n';
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const quint32 seed = arguments.value(1).toUInt();
    const double days = arguments.value(2).toDouble();
    if (!QFile::exists(GetDatabaseName()) && !layProjectBesideProgram())
        return 2;
    PanelRun run(pluginFile(), seed);
    if (arguments.size() > 3)
        run.traceFrom(static_cast<qint64>(arguments.value(3).toDouble() * 1e6));
    const auto end = static_cast<qint64>(days * static_cast<double>(Day));
    // What is needed once is there after an hour.
    run.runUntil(std::min(end, 3600 * Second));
    const qint64 memory = residentBytes();
    const int files = openFiles();
    run.runUntil(end);
    const qint64 growth = residentBytes() - memory;
    print(seed, days, run, growth);
    std::string problem = run.report().problem;
    if (problem.empty() && growth > MostGrowth)
        problem = "memory grows";
    if (problem.empty() && openFiles() != files)
        problem = "files stay open";
    if (!problem.empty())
        std::cout << "seed " << seed << ": " << problem << '\n';
    return problem.empty() ? 0 : 1;
}
