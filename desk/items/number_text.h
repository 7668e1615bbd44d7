#pragma once

#include "desk/result.h"

/// A whole number from \a min to \a max; otherwise the error names \a what.
Result<int> parseNumber(const QString &what, const QString &text, int min, int max);
