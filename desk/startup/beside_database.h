#pragma once

#include "desk/link/link_settings.h"
#include "desk/startup/child_process.h"
#include "desk/startup/run_directory.h"

#include <QStringList>

#include <functional>

/// The driver finds its project database by one rule: beside the running program. So a program that is to
/// read a given database starts itself again from a temporary directory that has a copy of it and that
/// database.

/// Whether this process is the one that runs beside its database.
bool runsBesideDatabase();
/// The plug-in that the process which started this one has found.
QString inheritedPlugin();

/// How a run beside a database went, or why it was none.
struct RunBesideDatabase {
    enum Outcome { Ran, NoDirectory, NoDatabase, NotStarted };

    Outcome outcome = Ran;
    /// Why it was none.
    QString error;
    ChildEnd end;
};

/// Runs this program with its own arguments beside the project that the settings and tags make, hands signals
/// on, and removes everything afterwards. \a notify gets, before the run, what the person should know
/// though it is no error.
RunBesideDatabase runBesideDatabase(const QString &plugin, const LinkSettings &settings,
                                    const QStringList &tags,
                                    const std::function<void(const QString &)> &notify);
