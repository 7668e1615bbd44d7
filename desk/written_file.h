#pragma once

#include "desk/result.h"

#include <QSaveFile>

/// Writes \a file anew, whole or not at all; its errorString() says why not. What has not left the buffer by
/// then, commit() loses without a word where the disk is full.
inline bool saveWhole(QSaveFile &file, const QByteArray &contents)
{
    return file.open(QIODevice::WriteOnly) && file.write(contents) == contents.size() && file.flush() &&
           file.commit();
}

/// The same; the error names the file and says why it cannot be written.
inline Result<> writeWholeFile(const QString &path, const QByteArray &contents)
{
    QSaveFile file(path);
    if (saveWhole(file, contents))
        return {};
    return Error{QStringLiteral("%1: %2").arg(path, file.errorString())};
}
