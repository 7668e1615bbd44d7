#pragma once

#include "apps/driverhost/console/command_line.h"
#include "apps/driverhost/console/target_choice.h"
#include "desk/link/link_settings.h"

/// How to reach slaves: the options that all subcommands with a driver have.
QList<QCommandLineOption> linkOptions();
/// Single ones of them, for subcommands that take no other.
QCommandLineOption pluginOption();
QCommandLineOption traceOption();
/// Where the trace goes that the option asks for; empty when it does not.
TraceSink traceOf(const CommandLine &line);

/// Reads the above from \a line; what is wrong is noted there. Words that are targets are taken out of \a
/// words. Where none is, \a otherwise is meant, or the environment's.
LinkSettings linkSettings(CommandLine &line, QStringList &words,
                          const std::optional<TargetChoice> &otherwise = std::nullopt);
