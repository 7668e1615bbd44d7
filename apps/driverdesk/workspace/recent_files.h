#pragma once

#include <QStringList>

/// The workspaces that were opened or saved last, the newest first, kept among the user's settings.
class RecentFiles
{
public:
    QStringList paths() const;
    void add(const QString &path);
    void remove(const QString &path);

    static constexpr int MaxFiles = 8;

private:
    void save(const QStringList &paths) const;
};
