#pragma once

#include "command_line.h"
#include "tcp_channel.h"

/// How to reach a slave through the driver: the options that all such subcommands have.
struct LinkSettings {
    ChannelSettings channel;
    QString plugin;  ///< file; empty for the usual places
    QString project; ///< file; empty for one that is made from the options
    bool trace = false;
};

QList<QCommandLineOption> linkOptions();
/// Single ones of them, for subcommands that take no other.
QCommandLineOption pluginOption();
QCommandLineOption traceOption();

/// Reads the above from \a line; mistakes are noted there. Words that are targets are taken out of \a words.
LinkSettings linkSettings(CommandLine &line, QStringList &words);
