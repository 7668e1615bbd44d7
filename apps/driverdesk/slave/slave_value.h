#pragma once

#include "apps/driverdesk/slave/movement.h"
#include "desk/items/area_range.h"

/// A register or a bit of the slave that is shown, with what it does.
struct SlaveValue {
    int station = 1;
    Area area = Area::HoldingRegisters;
    quint16 offset = 0; ///< zero-based
    quint16 value = 0;  ///< the last that is known
    Movement movement;
};
