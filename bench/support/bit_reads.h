#pragma once

#include "bench/support/transactions.h"

/// A read of 250 bytes from a bit area, on the link of the bits project where just these bits are used.
struct BitRead {
    QString port;
    Transaction transaction;
    int requests;
};

std::vector<BitRead> measuredBitReads();
