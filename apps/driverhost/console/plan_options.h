#pragma once

#include "apps/driverhost/console/command_line.h"
#include "desk/learning/station_facts.h"
#include "desk/readings/readings.h"

/// How requests are planned: the options of all subcommands that read many values.
struct PlanOptions {
    QString learntFile; ///< where what is learnt is kept; empty for nowhere
    bool fillsGaps = true;
    bool isOneByOne = false;
    bool asksAgain = false; ///< for what was refused before
};

QList<QCommandLineOption> planOptions();
PlanOptions planOptionsOf(const CommandLine &line);

/// What was learnt before of the stations of the readings, with the options for them.
Result<Learnt> learntFor(const PlanOptions &options, const std::vector<Reading> &readings, int linkStation);
/// Keeps what was learnt; the exit code of a run that would have ended with \a code.
int keepLearnt(const PlanOptions &options, Learnt &learnt, int code);
