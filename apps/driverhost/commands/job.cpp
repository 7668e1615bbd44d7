#include "apps/driverhost/commands/job.h"

#include "apps/driverhost/console/messages.h"
#include "desk/startup/beside_database.h"
#include "desk/startup/plugin_file.h"

namespace
{

// For the one who sees the trace and wonders.
void traceTarget(const LinkSettings &link)
{
    const QString origin =
        link.targetOrigin.isEmpty() ? QStringLiteral("by default and options") : link.targetOrigin;
    if (link.trace)
        link.trace(traceEvent(QDateTime::currentDateTime(),
                              QStringLiteral("target %1: %2").arg(targetText(link.target()), origin)));
}

int runTask(const Job &job)
{
    traceTarget(job.link);
    Session session(inheritedPlugin(), job.link);
    if (session.isReady())
        return job.task(session);
    reportError(session.errorString());
    return OtherFailure;
}

int startAgain(const Job &job)
{
    const Result<QString> plugin = findPlugin(job.link.plugin);
    if (!plugin) {
        reportError(plugin.errorText());
        return OtherFailure;
    }
    const RunBesideDatabase run = runBesideDatabase(*plugin, job.link, job.tags, reportError);
    switch (run.outcome) {
    case RunBesideDatabase::Ran: return codeOf(run.end, *plugin);
    case RunBesideDatabase::NoDatabase: reportError(run.error); return DatabaseError;
    case RunBesideDatabase::NoDirectory:
    case RunBesideDatabase::NotStarted: break;
    }
    reportError(run.error);
    return OtherFailure;
}

} // namespace

int codeOf(const ChildEnd &end, const QString &plugin)
{
    if (end.signal == 0)
        return end.code;
    if (!isCrash(end.signal))
        return dieOf(end.signal);
    reportError(crashText(plugin, end.signal));
    return OtherFailure;
}

int finish(const Job &job)
{
    if (!job.task)
        return job.code;
    return runsBesideDatabase() ? runTask(job) : startAgain(job);
}
