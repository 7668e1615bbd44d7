#pragma once

#include "fuzz/support/command.h"

namespace fuzz
{

/// \a exchanges is what was exchanged: bits in registers are changed in what the first of them read.
Plan planWrite(const Command &command, const QByteArray &data, int station, const QList<Exchange> &exchanges);

} // namespace fuzz
