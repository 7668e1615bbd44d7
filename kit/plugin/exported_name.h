#pragma once

#include "kit/plugin/elf_file.h"

namespace kit
{

/// One of the entry points of a plug-in.
bool isEntryPoint(const QByteArray &name);
/// A name that is not the driver's: of compiler and linker, or an inline function of the C++ library or of
/// Qt, which are the same in every file.
bool isOfTheSystem(const ElfFile::Symbol &symbol);

} // namespace kit
