#pragma once

#include <QtGlobal>

/// \file
/// Asks for memory before Qt does: Qt throws where there is none, and no exception may reach the host.

/// As many bytes as the bits of a whole area take. So few are there as far as anything is.
const qint64 AlwaysAvailable = 8192;

/// Whether \a size bytes can be had in one piece.
bool canAllocate(qint64 size);

/// Whether \a size bytes can be had in one piece, without asking for a few.
inline bool hasMemoryFor(qint64 size)
{
    return size <= AlwaysAvailable || canAllocate(size);
}
