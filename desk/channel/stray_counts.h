#pragma once

#include <QtGlobal>

/// What came on a line that no exchange asked for.
struct StrayCounts {
    quint64 noiseBytes = 0;    ///< of no frame, in front of replies or between them
    quint64 lateFrames = 0;    ///< whole frames of stations that were asked here
    quint64 otherFrames = 0;   ///< whole frames of stations that never were
    int lastOtherStation = -1; ///< of those; -1 for none
    quint64 requestCopies = 0; ///< requests that came back
    quint64 idleEnds = 0;      ///< connections that the other side ended while nothing was asked
    quint64 deafEnds = 0;      ///< connections that the other side ended before it answered anything
};
