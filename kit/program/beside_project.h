#pragma once

#include <QStringList>

namespace kit
{

/// Runs this program again with \a words, from a folder of its own with a copy of \a database where drivers
/// look for it. Returns its exit code; negative with what is wrong in \a error.
int runBesideProject(const QString &database, const QStringList &words, QString &error);

} // namespace kit
