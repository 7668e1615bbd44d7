#pragma once

#include <QByteArray>
#include <QString>

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
