#include "apps/driverhost/commands/job.h"

#include "apps/driverhost/console/messages.h"
#include "desk/startup/beside_database.h"
#include "desk/startup/plugin_file.h"

namespace
{

// For the one who sees the trace and wonders.
void traceTarget(const LinkSettings &link)
{
    const QString target = targetText(link.target());
    QString origin =
        link.targetOrigin.isEmpty() ? QStringLiteral("by default and options") : link.targetOrigin;
    if (origin == target)
        origin = QStringLiteral("as given");
    if (link.trace)
        link.trace(
            traceEvent(QDateTime::currentDateTime(), QStringLiteral("target %1: %2").arg(target, origin)));
}

int fail(const QString &text)
{
    reportError(text);
    return OtherFailure;
}

int runTask(const Job &job)
{
    traceTarget(job.link);
    LinkSettings link = job.link;
    Recorder recorder(link.recordFile, link.channel.device, link.channel.retries);
    const Result<> opened = recorder.open();
    if (!opened)
        return fail(opened.errorText());
    if (recorder.isRecording())
        link.record = [&recorder](const kit::Recording &recording) { recorder.add(recording); };
    Session session(inheritedPlugin(), link);
    if (!session.isReady())
        return fail(session.errorString());
    const int code = job.task(session);
    const Result<> written = recorder.write();
    return written || code != Success ? code : fail(written.errorText());
}

int startAgain(const Job &job)
{
    const Result<QString> plugin = findPlugin(job.link.plugin);
    if (!plugin)
        return fail(plugin.errorText());
    const RunBesideDatabase run = runBesideDatabase(*plugin, job.link, job.tags, reportError);
    switch (run.outcome) {
    case RunBesideDatabase::Ran: return codeOf(run.end, *plugin);
    case RunBesideDatabase::NoDatabase: reportError(run.error); return DatabaseError;
    case RunBesideDatabase::NoDirectory:
    case RunBesideDatabase::NotStarted: break;
    }
    return fail(run.error);
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
