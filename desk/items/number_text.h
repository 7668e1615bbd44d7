#pragma once

#include "desk/result.h"

/// A whole number from \a min to \a max; otherwise the error names \a what.
Result<int> parseNumber(const QString &what, const QString &text, int min, int max);

/// "1 link", "2 links": a number of things whose plural ends in "s".
QString counted(qint64 number, const char *thing);
