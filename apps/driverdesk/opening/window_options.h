#pragma once

#include "apps/driverdesk/worker/ground.h"

/// What the arguments of the window say. They come from the command line, from the dialog that opens
/// something, or from a workspace, and are read the same way.
struct WindowOptions {
    QStringList opening; ///< those of the arguments that say what is read, with files named from the root
    Ground ground;       ///< without readings when nothing is to be read
    QString workspace;   ///< a file; empty when none is to be opened
    bool isDemo = false;
    int seed = 1; ///< of the demo's faults and random values
    bool isDark = false;
};

/// What the window says about its command line.
QString windowHelp();

/// The error says what is wrong and what was expected.
Result<WindowOptions> windowOptionsOf(const QStringList &arguments);
