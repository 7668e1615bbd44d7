#pragma once

#include <QString>

/// The four areas of a Modbus device.
enum class SlaveArea { DiscreteInputs, Coils, InputRegisters, HoldingRegisters };

/// "DI", "DO", "IR", "HR".
QString areaName(SlaveArea area);

/// Addresses of one area: "HR10", "HR10..20", of one station: "2-HR10..20". Numbers in texts are one-based.
struct AreaRange {
    /// 0: every station.
    int station = 0;
    SlaveArea area = SlaveArea::HoldingRegisters;
    /// Zero-based, both included.
    int first = 0;
    int last = 0;
};

/// False, and \a range untouched, when \a text is none.
bool parseAreaRange(const QString &text, AreaRange &range);
