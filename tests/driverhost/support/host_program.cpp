#include "tests/driverhost/support/host_program.h"

namespace
{

const int MaxRunMs = 60000;
const int SignalExit = 128;

} // namespace

QString hostProgram()
{
    return QStringLiteral(HOST_PROGRAM);
}

HostRun runHost(const QStringList &arguments, const QProcessEnvironment &environment)
{
    QProcess process;
    process.setProcessEnvironment(environment);
    process.setStandardInputFile(QProcess::nullDevice());
    process.start(hostProgram(), arguments);
    HostRun run;
    if (process.waitForFinished(MaxRunMs))
        run.code = process.exitStatus() == QProcess::CrashExit ? SignalExit + process.exitCode()
                                                               : process.exitCode();
    run.out = QString::fromLocal8Bit(process.readAllStandardOutput());
    run.err = QString::fromLocal8Bit(process.readAllStandardError());
    return run;
}
