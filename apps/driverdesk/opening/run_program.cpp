#include "apps/driverdesk/opening/run_program.h"

#include "apps/driverhost/console/exit_code.h"
#include "desk/startup/beside_database.h"
#include "desk/startup/plugin_file.h"

#include <cstdio>

namespace
{

void complain(const QString &text)
{
    std::fprintf(stderr, "driverdesk: %s\n", text.toLocal8Bit().constData());
}

int codeOf(const ChildEnd &end, const QString &plugin)
{
    if (end.signal == 0)
        return end.code;
    if (!isCrash(end.signal))
        return dieOf(end.signal);
    complain(
        QStringLiteral("the window crashed (signal %1); is there a display, and is the plug-in %2 whole?")
            .arg(end.signal)
            .arg(plugin));
    return OtherFailure;
}

} // namespace

// The window lays its own database there, and says itself what is wrong with a plug-in or a project.
int runBeside()
{
    const QString plugin = findPlugin({}).valueOr({});
    const RunBesideDatabase run = runBesideDatabase(plugin, LinkSettings(), {}, complain);
    if (run.outcome == RunBesideDatabase::Ran)
        return codeOf(run.end, plugin);
    complain(run.error);
    return OtherFailure;
}
