#pragma once

#include <gtest/gtest.h>

#include <QByteArray>
#include <QString>

#include <iosfwd>

/// How GoogleTest shows Qt's bytes and texts in a message.
/// @{
void PrintTo(const QByteArray &bytes, std::ostream *out);
void PrintTo(const QString &text, std::ostream *out);
/// @}
