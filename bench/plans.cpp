// How long a refresh takes on the line, by the desk's plan and by others, on simulated lines: a table for
// people, or with "--figures" what counts.py holds. Under callgrind, with "--count", what planning costs in
// instructions.

#include "desk/live/planned_readings.h"
#include "desk/plan/tag_readings.h"
#include "tests/lines/best_plan.h"

#include <valgrind/callgrind.h>

#include <cstring>
#include <iostream>
#include <random>
#include <string>

// Takes only references, so that nothing but the work itself is within it.
template <typename Work>
__attribute__((noinline)) void counted(Work &work)
{
    work();
}

namespace
{

const int LearningRounds = 3;
const double Millisecond = 1000; // in microseconds

struct NamedLine {
    const char *name;
    SerialTiming timing;
};

const NamedLine Lines[] = {{"9600 baud, 30 ms", {9600, 30000}},
                           {"19200 baud, 10 ms", {19200, 10000}},
                           {"115200 baud, 3 ms", {115200, 3000}},
                           {"fast network", fastNetwork()}};

struct NamedLayout {
    const char *name;
    Layout (*make)(unsigned int seed);
};

const NamedLayout Layouts[] = {
    {"a", denseLayout}, {"b", sparseLayout}, {"c", scatteredLayout}, {"d", mixedLayout}};

Layout layoutOn(const NamedLayout &layout, const NamedLine &line)
{
    Layout made = layout.make(1);
    made.device.timing = line.timing;
    return made;
}

PlanTime learntPlan(const Layout &layout)
{
    Learnt learnt;
    Refresh refresh(layout.points, learnt);
    PlanClient client(layout.device, layout.points);
    for (int round = 1; round <= LearningRounds; ++round) {
        refresh.readRound(client, client.now());
        refresh.explore(client, client.now());
    }
    client.beginRound();
    refresh.readRound(client, client.now());
    return {client.requests(), client.microseconds()};
}

std::string textOf(const PlanTime &time)
{
    return QStringLiteral("%1 ms, %2")
        .arg(QString::number(time.microseconds / Millisecond, 'f', 1), QString::number(time.requests))
        .toStdString();
}

void printTable()
{
    std::cout << "line\tlayout\tone by one\tgap-free\tfilled\tbest\there\tto the best\n";
    for (const NamedLine &line : Lines) {
        for (const NamedLayout &named : Layouts) {
            const Layout layout = layoutOn(named, line);
            const PlanTime best = bestPlan(layout);
            const PlanTime here = learntPlan(layout);
            std::cout << line.name << '\t' << named.name << '\t' << textOf(oneByOnePlan(layout)) << '\t'
                      << textOf(gapFreePlan(layout)) << '\t' << textOf(filledPlan(layout)) << '\t'
                      << textOf(best) << '\t' << textOf(here) << '\t'
                      << QString::number(here.microseconds / best.microseconds, 'f', 3).toStdString() << '\n';
        }
    }
}

void printFigures()
{
    for (const NamedLine &line : Lines) {
        for (const NamedLayout &named : Layouts) {
            const Layout layout = layoutOn(named, line);
            std::cout << "refresh " << named.name << ", " << line.name << ", to the best\t"
                      << learntPlan(layout).microseconds / bestPlan(layout).microseconds << '\n';
        }
    }
}

// Registers of several stations; their numbers are the same on every machine.
std::vector<AreaRange> manyPoints(int count)
{
    std::mt19937 random(1);
    std::vector<AreaRange> points;
    for (int i = 0; i < count; ++i) {
        const int number = static_cast<int>(random() % modbus::AddressSpace);
        points.push_back({1 + i % 8, Area::HoldingRegisters, number, number});
    }
    return points;
}

QStringList tagsOf(const std::vector<AreaRange> &points)
{
    QStringList tags;
    for (const AreaRange &point : points)
        tags += rangeText(point);
    return tags;
}

template <typename Work>
void countAs(const std::string &figure, Work work)
{
    CALLGRIND_ZERO_STATS;
    counted(work);
    CALLGRIND_DUMP_STATS_AT(figure.c_str());
}

void plan(const std::vector<AreaRange> &points)
{
    Learnt learnt;
    Refresh refresh(points, learnt);
    for (AreaPlan &areaPlan : refresh.areas())
        areaPlan.plan(learnt[areaPlan.station()]);
}

std::vector<AreaRange> pointsOf(const QStringList &tags)
{
    return plannedPointsOf(tagReadingsOf(tags, WordItem, ValueForm::Unsigned).readings, 1).points;
}

void countPlanning(int count)
{
    const std::vector<AreaRange> points = manyPoints(count);
    const QStringList tags = tagsOf(points);
    const std::string figure = "instructions: plan " + std::to_string(count);
    countAs(figure + " points", [&] { plan(points); });
    countAs(figure + " tags of texts", [&] { plan(pointsOf(tags)); });
}

} // namespace

int main(int argc, char **argv)
{
    const char *mode = argc > 1 ? argv[1] : "";
    if (std::strcmp(mode, "--figures") == 0) {
        printFigures();
    } else if (std::strcmp(mode, "--count") == 0) {
        countPlanning(10000);
        countPlanning(100000);
    } else {
        printTable();
    }
    return 0;
}
