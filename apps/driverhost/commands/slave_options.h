#pragma once

#include "apps/driverhost/console/command_line.h"
#include "desk/slave/slave_options.h"

/// The options of `driverhost slave`.
QList<QCommandLineOption> slaveCommandOptions();
/// What a command line asks for that has been parsed; what is wrong is noted there.
SlaveOptions slaveOptions(CommandLine &line);
/// What the slave did, in a few lines.
QString describeCounts(const SlaveCounts &counts);
