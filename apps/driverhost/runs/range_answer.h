#pragma once

#include "desk/link/session.h"
#include "desk/plan/range_scan.h"

/// Asks a slave for a range; \a data is what it gives where it is there. What the answer means: exception 3
/// may be "too many at once"; where the function is refused, or the station is absent or busy, other
/// addresses make no difference.
RangeAnswer askForRange(Session &session, const Items &items, QByteArray &data);
