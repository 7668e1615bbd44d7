#pragma once

#include "tests/peers/test_files.h"
#include "tests/peers/text_printing.h"
#include "tests/peers/waiting.h"

#include <QProcess>
#include <QStringList>

/// The program that this build has made.
QString hostProgram();

/// How a run of driverhost ended, and what it wrote.
struct HostRun {
    int code = -1; ///< 128 + signal when it died of one, as a shell reports it
    QString out;
    QString err;
};

/// Runs driverhost to its end.
HostRun runHost(const QStringList &arguments,
                const QProcessEnvironment &environment = QProcessEnvironment::systemEnvironment());
