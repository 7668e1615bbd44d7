#pragma once

#include "kit/subject/sample.h"

#include <functional>

namespace kit
{

/// What a check found wrong, as people read it, and as a difference judges it.
struct Finding {
    QString command;    ///< as textOf() says it; empty when it is about no command
    QString frames;     ///< what went over the channel, a line a frame
    QString expected;   ///< what a driver of the family does
    QString happened;   ///< what this one did
    Sample sample;      ///< the command, for differences to look at
    QByteArray request; ///< its last request
    QByteArray reply;   ///< what the driver was given for that
};

/// Where a driver differs from what the kit expects, and why that is right for it. The report prints the
/// reason. A difference that a complete run does not show is itself a failure, so none outlives its reason.
struct Difference {
    QString check;  ///< id of the check
    QString reason; ///< for the report
    /// Which of the check's findings the reason covers; none: all of them.
    std::function<bool(const Finding &)> covers;
};
using Differences = std::vector<Difference>;

} // namespace kit
