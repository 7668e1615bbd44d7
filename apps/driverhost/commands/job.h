#pragma once

#include "apps/driverhost/console/exit_code.h"
#include "desk/link/session.h"
#include "desk/startup/child_process.h"

#include <functional>

/// What a subcommand makes of its arguments. Either everything is done, and there is nothing but the exit
/// code; or a task remains that needs the driver, which has to run beside its project database.
///
/// The program is started twice for that (see beside_database.h): the first time the arguments say what
/// database to make, the second time what to do. So whatever a subcommand does before it returns its job is
/// done twice, and must neither send nor change anything; its task runs once, in the second process.
struct Job {
    Job(int exitCode) : code(exitCode) {}
    Job(LinkSettings linkSettings, QStringList neededTags, std::function<int(Session &)> driverTask)
        : link(std::move(linkSettings)), tags(std::move(neededTags)), task(std::move(driverTask))
    {
    }

    int code = Success;
    LinkSettings link;
    QStringList tags; ///< that a project made of the link needs
    std::function<int(Session &)> task;
};

/// The exit code after a child that had the plug-in loaded; one that crashed is reported.
int codeOf(const ChildEnd &end, const QString &plugin);

/// Does what remains of a job. The program's exit code.
int finish(const Job &job);
