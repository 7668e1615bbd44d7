#pragma once

#include "command_line.h"
#include "slave/slave_options.h"

/// `driverhost slave`: a slave to try things against, until Ctrl-C. \a arguments are those behind the
/// subcommand's name. Returns the exit code.
int runSlave(const QStringList &arguments);

/// The options of the subcommand.
QList<QCommandLineOption> slaveCommandOptions();
/// What a command line asks for that has been parsed; mistakes are noted there.
SlaveOptions slaveOptions(CommandLine &line);
/// What the slave did, in a few lines.
QString describeCounts(const SlaveCounts &counts);
