#pragma once

#include <QStringList>

/// The subcommands. Each takes the arguments behind its name and returns the exit code.
int runInfo(const QStringList &arguments);
int runRead(const QStringList &arguments);
int runWrite(const QStringList &arguments);
int runWatch(const QStringList &arguments);
int runTags(const QStringList &arguments);
int runScan(const QStringList &arguments);
int runProject(const QStringList &arguments);
int runDemo(const QStringList &arguments);
