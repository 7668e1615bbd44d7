#pragma once

#include "desk/result.h"
#include "desk/wire/protocol.h"

/// "DI", "DO", "IR", "HR".
QString areaName(Area area);

/// Addresses of one area: "HR10", "HR10..20", of one station: "2-HR10..20". Numbers in texts count from 1.
struct AreaRange {
    /// 0: every station.
    int station = 0;
    Area area = Area::HoldingRegisters;
    /// Zero-based, both included.
    int first = 0;
    int last = 0;
};

/// Reads a range; the error says what was expected.
Result<AreaRange> parseAreaRange(const QString &text);
/// "1-HR1..5"; "1-HR5" where it is one address.
QString rangeText(const AreaRange &range);
