#pragma once

#include "desk/items/items.h"
#include "desk/link/session.h"
#include "desk/output/fields.h"

/// How stations are asked.
struct StationScanOptions {
    int first = 1;
    int last = modbus::MaxStation;
    Items probe;          ///< what is read from each
    int afterSilence = 0; ///< milliseconds from a request that nobody answered to the next
    int passes = 2;       ///< 1: nobody is asked a second time
    OutputFormat format = OutputFormat::Text;
};

/// Finds the stations that answer, and prints them. The exit code.
int scanStations(Session &session, const StationScanOptions &options);
