#pragma once

#include <QString>
#include <QStringList>

namespace kit
{

/// What the program was asked for.
struct Options {
    QString plugin;
    QString transcript; ///< file; empty for none
    QString junit;      ///< file; empty for none
    QString project;    ///< database to run beside; empty for none
    QStringList only;   ///< ids of checks, with * and ?; empty for all
    int commands;
    int timeout;
    bool isHelp;
    bool isList;
    bool isHere; ///< every check in this process

    Options();
};

/// Reads the words behind the program's name. On a usage error \a error says what is wrong, and is empty
/// otherwise.
Options parsedOptions(const QStringList &words, QString &error);
/// What --help prints. \a needsTranscript: the program has no subject of its own.
QString helpText(const QString &program, bool needsTranscript);

} // namespace kit
