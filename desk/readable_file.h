#pragma once

#include "desk/result.h"

#include <QFile>
#include <QFileInfo>

/// Opens a file for reading; the error names it and says why it cannot be read.
inline Result<> openForReading(QFile &file)
{
    const QFileInfo info(file.fileName());
    if (info.isDir())
        return Error{file.fileName() + QStringLiteral(" is a directory; expected a file")};
    if (!info.exists())
        return Error{file.fileName() + QStringLiteral(": there is no such file")};
    if (!file.open(QIODevice::ReadOnly))
        return Error{QStringLiteral("%1: %2").arg(file.fileName(), file.errorString())};
    return {};
}

/// The whole of a file.
inline Result<QByteArray> contentsOf(const QString &path)
{
    QFile file(path);
    const Result<> opened = openForReading(file);
    if (!opened)
        return opened.error();
    return file.readAll();
}
