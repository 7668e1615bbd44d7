#pragma once

#include "drivers/modbus_bit_set.h"

#include <vector>

/// Used addresses of a bit area that follow each other without a gap.
struct BitRun {
    unsigned short address; ///< The first of them, zero-based.
    int length;             ///< How many there are.
    int position;           ///< Which bit of what is read the first one is.
};

/// The runs that a walk over \a count addresses from \a offset upwards passes, in its order. \a used is
/// ascending and without duplicates. The walk goes on at 0 after 65535, but never back: used addresses below
/// one that it has passed count as unused. The last run is cut where the walk ends; a \a count below 1 gives
/// none.
std::vector<BitRun> bitRuns(const UShortVector &used, unsigned short offset, int count);
