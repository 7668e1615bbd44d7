#pragma once

#include "desk/items/area_range.h"
#include "desk/learning/refusals.h"

#include <vector>

/// What came of asking a station for a range.
struct RangeReply {
    enum Outcome {
        Given,       ///< all of it came
        Missing,     ///< refused: not all of it is there
        TooMany,     ///< refused for its length, as the exception has it
        NoFunction,  ///< refused for its function, as the exception has it
        Lost,        ///< no answer, or none that can be used
        StationAway, ///< the station is not to be asked any more in this round
        Ended        ///< nobody is
    };

    Outcome outcome = Given;
    int exception = 0;
    double microseconds =
        0; ///< that it took when it was given at the first attempt; 0 when that is not known

    bool isRefusal() const { return outcome >= Missing && outcome <= NoFunction; }
    bool isOver() const { return outcome == StationAway || outcome == Ended; }
};

/// What a refresh asks, and what it reports of every point in every round, once.
class RefreshClient
{
public:
    virtual ~RefreshClient() = default;

    virtual RangeReply read(const AreaRange &range) = 0;

    /// The last range that was read holds these points.
    virtual void given(const AreaRange &range, const std::vector<int> &points) = 0;
    /// They could not be read; the last range that was asked for is the reason.
    virtual void failed(const AreaRange &range, const std::vector<int> &points) = 0;
    /// They were not asked for, since they were refused before.
    virtual void notAsked(const Refusals::Refusal &refusal, const std::vector<int> &points) = 0;
};
