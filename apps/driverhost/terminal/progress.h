#pragma once

#include <QElapsedTimer>
#include <QString>

/// How far long work has come, as a bar on the terminal's status line; removed with the object.
class Progress
{
public:
    Progress(const QString &title, qint64 total);
    ~Progress();
    Progress(const Progress &) = delete;
    Progress &operator=(const Progress &) = delete;

    void show(qint64 done, const QString &note = {});
    /// The same with another note.
    void showNote(const QString &note);

private:
    QString m_title;
    qint64 m_total;
    qint64 m_done = 0;
    bool m_isShown = false;
    QElapsedTimer m_lastShown;
};
