#pragma once

/// \file
/// What differs between the Qt lines that the drivers build on, 4.8, 5.15 and 6, dealt with here so that the
/// code that uses it need not ask which one it is. Lies below everything else.

#include <QtGlobal>

#include <limits>

/// The size of a Qt container. Qt 6 counts in 64 bits; no more than an int holds is ever looked at.
template <typename Container>
int sizeOf(const Container &container)
{
    return static_cast<int>(qMin<qint64>(container.size(), std::numeric_limits<int>::max()));
}

/// The number within what an int holds.
inline int boundedInt(qint64 value)
{
    return static_cast<int>(
        qBound(qint64(std::numeric_limits<int>::min()), value, qint64(std::numeric_limits<int>::max())));
}
