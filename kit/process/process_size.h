#pragma once

#include <QtGlobal>

namespace kit
{

/// The most memory that this process has had so far, in kilobytes: of its address space, or in use where an
/// emulator hides that.
qint64 largestProcessSize();

/// The bytes that are allocated at present.
qint64 allocatedBytes();

/// Files that are open, and threads.
/// @{
int openFiles();
int threads();
/// @}

} // namespace kit
