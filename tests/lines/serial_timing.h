#pragma once

#include "desk/items/area_range.h"
#include "desk/learning/request_cost.h"

/// How long a serial line and the device at its end take, as "MODBUS over Serial Line V1.02" has it: 11 bits
/// a character (2.5.1), and a silence of 3.5 characters around each frame, 1.75 ms of it above 19200 baud
/// (2.5.1.1).
struct SerialTiming {
    int baud = 9600;
    double turnaround = 30000; ///< of the device, in microseconds

    double character() const;
    double silence() const;
    /// From the beginning of a request to the end of the silence after its reply, in microseconds.
    double exchange(int requestBytes, int replyBytes) const;
    double read(Area area, int count) const;
    double refusal() const;
    /// The same as read(), taken apart.
    RequestCost cost(Area area) const;
};

/// A device on a network that takes so long for a request, whatever is asked, and as good as nothing more for
/// a register.
SerialTiming fastNetwork();
