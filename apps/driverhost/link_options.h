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
/// The plug-in's option alone, for subcommands that talk to nobody.
QCommandLineOption pluginOption();

/// Reads the above from \a line; mistakes are noted there. Words that are targets are taken out of \a words.
LinkSettings linkSettings(CommandLine &line, QStringList &words);
