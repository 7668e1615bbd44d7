#pragma once

#include <QElapsedTimer>
#include <QString>

/// How far long work has come, as a bar on standard error when that is a terminal; removed with the object.
class Progress
{
public:
    Progress(const QString &title, qint64 total);
    ~Progress();
    Progress(const Progress &) = delete;
    Progress &operator=(const Progress &) = delete;

    void show(qint64 done, const QString &note = {});

private:
    QString m_title;
    qint64 m_total;
    bool m_isScreen;
    bool m_isShown = false;
    QElapsedTimer m_lastShown;
};
