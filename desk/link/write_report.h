#pragma once

#include "desk/link/exchange.h"

#include <QStringList>

#include <vector>

/// What a write that failed has changed all the same, a line each: single registers and coils that the slave
/// confirmed before, and the one that was sent and never confirmed. Nothing for a write of one request that
/// changed nothing.
QStringList writtenBeforeFailure(const std::vector<Exchange> &exchanges);
