#pragma once

#include "apps/driverdesk/worker/write_order.h"
#include "desk/link/session.h"

/// Carries the order out. What is sent is read back and compared, except from station 0, which does not
/// reply.
WriteOutcome carryOut(Session &session, const WriteOrder &order);
