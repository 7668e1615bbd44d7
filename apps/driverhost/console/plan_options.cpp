#include "apps/driverhost/console/plan_options.h"

#include "apps/driverhost/console/exit_code.h"
#include "apps/driverhost/console/messages.h"
#include "desk/learning/learnt_file.h"

QList<QCommandLineOption> planOptions()
{
    return {
        {QStringLiteral("learnt"),
         QStringLiteral(
             "Keep in this file what is learnt of the stations: what requests cost, what is not there, "
             "how much comes at once."),
         QStringLiteral("FILE")},
        {QStringLiteral("ask-again"), QStringLiteral("Ask for what was refused before, as --learnt has it.")},
        {QStringLiteral("no-fill"),
         QStringLiteral("Read nothing between the values, also where that would save a request.")},
        {QStringLiteral("one-by-one"), QStringLiteral("A request for each value.")},
    };
}

PlanOptions planOptionsOf(const CommandLine &line)
{
    PlanOptions options;
    options.learntFile = line.text("learnt");
    options.fillsGaps = !line.isSet("no-fill");
    options.isOneByOne = line.isSet("one-by-one");
    options.asksAgain = line.isSet("ask-again");
    return options;
}

Result<Learnt> learntFor(const PlanOptions &options, const std::vector<Reading> &readings, int linkStation)
{
    Result<Learnt> learnt = options.learntFile.isEmpty() ? Learnt() : readLearntFile(options.learntFile);
    if (!learnt)
        return learnt;
    for (const Reading &reading : readings) {
        StationOptions &station = (*learnt)[stationOf(reading.items, linkStation)].options;
        station.fillsGaps = station.fillsGaps && options.fillsGaps;
        station.isOneByOne = station.isOneByOne || options.isOneByOne;
    }
    for (auto &[station, facts] : *learnt) {
        if (options.asksAgain)
            facts.forgetRefusals();
    }
    return learnt;
}

int keepLearnt(const PlanOptions &options, Learnt &learnt, int code)
{
    if (options.learntFile.isEmpty())
        return code;
    const Result<> kept = writeLearntFile(options.learntFile, learnt);
    if (kept)
        return code;
    reportError(kept.errorText());
    return code == Success ? OtherFailure : code;
}
