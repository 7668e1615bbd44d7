#pragma once

#include <QProcess>
#include <QStringList>

#include <functional>
#include <ostream>

/// Texts as gtest shows them.
inline void PrintTo(const QString &text, std::ostream *stream)
{
    *stream << '"' << text.toStdString() << '"';
}
inline void PrintTo(const QByteArray &bytes, std::ostream *stream)
{
    *stream << bytes.toHex(' ').toStdString();
}

QString hostProgram();
QString pluginFile();
/// A file of the source tree.
QString sourceFile(const QString &path);

/// How a run of driverhost ended, and what it wrote.
struct HostRun {
    int code = -1; ///< 128 + signal when it died of one, as a shell tells it
    QString out;
    QString err;
};

/// Runs driverhost to its end.
HostRun runHost(const QStringList &arguments,
                const QProcessEnvironment &environment = QProcessEnvironment::systemEnvironment());

/// Waits until \a condition holds, at most \a milliseconds. Whether it did.
bool waitUntil(const std::function<bool()> &condition, int milliseconds = 20000);
