#pragma once

#include "apps/driverdesk/slave/slave_value.h"
#include "desk/result.h"

#include <QByteArray>
#include <QStringList>

#include <vector>

/// What a window has open, and how it looks.
struct Workspace {
    /// A curve, by its point's label.
    struct Curve {
        QString label;
        bool isRight = false;
        bool isShown = true;
    };
    /// The embedded slave.
    struct Slave {
        bool isRunning = false;
        quint16 port = 0;
        QStringList faults; ///< that are on
        int oneOf = 1;
        std::vector<SlaveValue> values;
    };

    QStringList opening; ///< arguments, as the command line has them
    std::vector<Curve> curves;
    int trendSpan = 0; ///< milliseconds; 0: as it is
    QByteArray geometry;
    QByteArray layout;
    QByteArray columns;
    Slave slave;
};

/// The workspace as it is kept in a file, and back. The error says the line and what is wrong there.
QByteArray bytesOf(const Workspace &workspace);
Result<Workspace> parseWorkspace(const QByteArray &bytes);

/// The same with files, whose names stand in the errors.
Result<> saveWorkspace(const QString &path, const Workspace &workspace);
Result<Workspace> readWorkspace(const QString &path);
