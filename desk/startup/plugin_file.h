#pragma once

#include "desk/result.h"

/// The absolute path of the plug-in: \a given when it is not empty, otherwise the first that exists beside
/// this program, in the build tree, or where it is installed. The error says where it was looked for.
Result<QString> findPlugin(const QString &given);

/// What to say of a process that ended by \a signal with the plug-in \a path in it.
QString crashText(const QString &path, int signal);
