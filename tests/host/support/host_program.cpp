#include "host/support/host_program.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QThread>

namespace
{

const int LongestRun = 60000;
const int SignalExit = 128;

} // namespace

QString hostProgram()
{
    return QStringLiteral(HOST_PROGRAM);
}

QString pluginFile()
{
    return QStringLiteral(PLUGIN_FILE);
}

QString sourceFile(const QString &path)
{
    return QStringLiteral(SOURCE_FOLDER "/") + path;
}

HostRun runHost(const QStringList &arguments, const QProcessEnvironment &environment)
{
    QProcess process;
    process.setProcessEnvironment(environment);
    process.setStandardInputFile(QProcess::nullDevice());
    process.start(hostProgram(), arguments);
    HostRun run;
    if (process.waitForFinished(LongestRun))
        run.code = process.exitStatus() == QProcess::CrashExit ? SignalExit + process.exitCode()
                                                               : process.exitCode();
    run.out = QString::fromLocal8Bit(process.readAllStandardOutput());
    run.err = QString::fromLocal8Bit(process.readAllStandardError());
    return run;
}

bool waitUntil(const std::function<bool()> &condition, int milliseconds)
{
    const unsigned long pause = 5;
    QElapsedTimer clock;
    clock.start();
    while (!condition()) {
        if (clock.hasExpired(milliseconds))
            return false;
        QCoreApplication::processEvents();
        QThread::msleep(pause);
    }
    return true;
}
