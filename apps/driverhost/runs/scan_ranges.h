#pragma once

#include "desk/items/items.h"
#include "desk/link/session.h"
#include "desk/output/fields.h"

/// Which addresses are asked for.
struct RangeScanOptions {
    int first = 1;
    int last = 1;
    Items probe; ///< the area's first item
    OutputFormat format = OutputFormat::Text;
};

/// Finds the addresses that a slave has, and prints them. The exit code.
int scanRanges(Session &session, const RangeScanOptions &options);
