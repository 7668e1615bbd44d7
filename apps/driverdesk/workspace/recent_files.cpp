#include "apps/driverdesk/workspace/recent_files.h"

#include <QFileInfo>
#include <QSettings>

namespace
{

const char Key[] = "recentWorkspaces";

} // namespace

QStringList RecentFiles::paths() const
{
    return QSettings().value(QLatin1String(Key)).toStringList();
}

void RecentFiles::add(const QString &path)
{
    const QString whole = QFileInfo(path).absoluteFilePath();
    QStringList all = paths();
    all.removeAll(whole);
    all.prepend(whole);
    save(all.mid(0, MaxFiles));
}

void RecentFiles::remove(const QString &path)
{
    QStringList all = paths();
    all.removeAll(path);
    save(all);
}

void RecentFiles::save(const QStringList &paths) const
{
    QSettings().setValue(QLatin1String(Key), paths);
}
