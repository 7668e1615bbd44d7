#pragma once

#include "desk/result.h"

#include <QByteArray>
#include <QDate>
#include <QStringList>

/// When a log begins a new file; the old one gets the time in its name, "log-20261121-101500.csv".
struct LogRotation {
    qint64 maxBytes = 0; ///< 0: no limit
    bool isDaily = false;
};

/// Reads "day", or a size such as "500k", "10M" or "1G".
Result<LogRotation> parseLogRotation(const QString &text);

/// A file that grows line by line. Whatever happens it holds whole lines: what could not be written whole, on
/// a full disk, is taken back.
class LogFile
{
public:
    /// \a title is the first line of every file; empty when there is none.
    LogFile(const QString &path, const QString &title, const LogRotation &rotation);
    ~LogFile();
    LogFile(const LogFile &) = delete;
    LogFile &operator=(const LogFile &) = delete;

    /// Opens the file, to go on after what is there when that has the same title. Anything else that is there
    /// is moved aside like a file that is full.
    Result<> open(const QDateTime &now);
    /// Writes the lines through to the file. On failure none of them is there.
    Result<> append(const QStringList &lines, const QDateTime &now);

    /// What other files were made of it, oldest first.
    const QStringList &rotated() const { return m_rotated; }

private:
    bool isOurs() const;
    bool isDue(qint64 more, const QDateTime &now) const;
    Result<> rotate(const QDateTime &now);
    Result<> begin(const QDateTime &now);
    Result<> write(const QByteArray &bytes);
    void cutTornLine();
    void lookAgain();
    Error failure() const;

    QString m_path;
    QByteArray m_title;
    LogRotation m_rotation;
    int m_file = -1;
    qint64 m_size = 0;
    QDate m_day;
    QStringList m_rotated;
};
