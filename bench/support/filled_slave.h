#pragma once

#include "tests/doubles/model_slave.h"

/// Station 1, whose registers and bits have values that follow from their addresses, so that every client's
/// results can be checked.
ModelSlave filledSlave();

bool bitValue(int address);

/// Addresses from \a start on as the host gets them: registers low byte first, bits packed from bit 0 on.
QByteArray hostRegisters(int start, int count);
QByteArray hostBits(int start, int count);

/// Registers high byte first, as they travel.
QByteArray wireRegisters(int start, int count);
