#pragma once

#include "slave/slave_options.h"

#include <QStringList>

class QCommandLineParser;

/// `driverhost slave`: a slave to try things against, until Ctrl-C. \a arguments are those behind the
/// subcommand's name. Returns the exit code.
int runSlave(const QStringList &arguments);

/// The options of the subcommand, for its help and its manual page.
void addSlaveOptions(QCommandLineParser &parser);
/// What they ask for; false with the reason in \a error.
bool readSlaveOptions(const QCommandLineParser &parser, SlaveOptions &options, QString &error);
/// What the slave did, in a few lines.
QString describeCounts(const SlaveCounts &counts);
