#pragma once

#include <QString>

/// The plug-in that this build has made.
QString pluginFile();
/// A file of the source tree.
QString sourceFile(const QString &path);
