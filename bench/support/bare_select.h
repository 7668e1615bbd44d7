#pragma once

#include <QString>

/// The limit of every load: the same rows through SQLite's own interface. Returns the characters of all
/// texts.
qint64 selectEveryText(const QString &project);
