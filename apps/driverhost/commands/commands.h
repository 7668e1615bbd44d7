#pragma once

#include "apps/driverhost/commands/job.h"

#include <QStringList>

/// The subcommands. Each takes the arguments after its name; what it does here is done twice: see Job.
Job prepareInfo(const QStringList &arguments);
Job prepareRead(const QStringList &arguments);
Job prepareWrite(const QStringList &arguments);
Job prepareWatch(const QStringList &arguments);
Job prepareTags(const QStringList &arguments);
Job prepareScan(const QStringList &arguments);
Job prepareDoctor(const QStringList &arguments);
Job preparePoints(const QStringList &arguments);
Job prepareTarget(const QStringList &arguments);
Job prepareSnapshot(const QStringList &arguments);
Job prepareCompare(const QStringList &arguments);
Job prepareRestore(const QStringList &arguments);
Job prepareProject(const QStringList &arguments);
Job prepareSlave(const QStringList &arguments);
Job prepareDemo(const QStringList &arguments);
