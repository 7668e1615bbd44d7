#include "tests/driverhost/support/doctor_process.h"

#include <QJsonArray>
#include <QJsonDocument>

namespace
{

const int LongestRun = 90000;

} // namespace

HostProcess::HostProcess(const QStringList &arguments)
{
    m_process.setStandardInputFile(QProcess::nullDevice());
    m_process.start(hostProgram(), arguments);
}

HostRun HostProcess::run()
{
    HostRun run;
    if (m_process.waitForFinished(LongestRun) && m_process.exitStatus() == QProcess::NormalExit)
        run.code = m_process.exitCode();
    run.out = QString::fromLocal8Bit(m_process.readAllStandardOutput());
    run.err = QString::fromLocal8Bit(m_process.readAllStandardError());
    return run;
}

DoctorReport::DoctorReport(const HostRun &run)
    : code(run.code), object(QJsonDocument::fromJson(run.out.toUtf8()).object())
{
    for (const QJsonValue &finding : object.value(QStringLiteral("findings")).toArray())
        findings += finding.toObject().value(QStringLiteral("name")).toString();
    findings.removeDuplicates();
    findings.sort();
}

QStringList DoctorReport::command() const
{
    return object.value(QStringLiteral("command")).toString().split(QLatin1Char(' ')).mid(1);
}
