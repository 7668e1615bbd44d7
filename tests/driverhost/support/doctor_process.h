#pragma once

#include "tests/driverhost/support/host_program.h"

#include <QJsonObject>

/// driverhost as a process that runs beside others.
class HostProcess
{
public:
    explicit HostProcess(const QStringList &arguments);
    /// Waits for its end.
    HostRun run();

private:
    QProcess m_process;
};

/// What "--format json" says of an examination.
struct DoctorReport {
    explicit DoctorReport(const HostRun &run);

    int code;
    QJsonObject object;
    QStringList findings; ///< names, in alphabetical order

    bool worksNow() const { return object.value(QStringLiteral("works_now")).toBool(); }
    /// The words of the suggested command after the program's name.
    QStringList command() const;
};
