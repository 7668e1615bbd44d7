#pragma once

#include "desk/learning/cost_learner.h"
#include "desk/learning/count_limit.h"
#include "desk/learning/refusals.h"

#include <array>
#include <map>

/// How a station is to be read, as the person says.
struct StationOptions {
    /// Whether registers and bits that nobody wants may be read where that saves a request.
    bool fillsGaps = true;
    /// For devices that want a request for each item.
    bool isOneByOne = false;
};

/// What is known of one kind of a station's requests: those for registers, or those for bits.
struct RequestFacts {
    CostLearner cost;
    CountLimit limit;
};

/// What has been learnt of one station.
class StationFacts
{
public:
    RequestFacts &requests(Area area) { return m_requests.at(isBitArea(area) ? 1 : 0); }
    Refusals &refusals(Area area) { return m_refusals.at(static_cast<size_t>(area)); }
    /// Asks for everything again.
    void forgetRefusals();
    /// Lets the kind of requests whose costs are not known go by the other.
    void compareCosts();

    StationOptions options;
    /// Whether it has ever answered.
    bool hasAnswered = false;
    int lossesInRow = 0; ///< requests without any answer since the last one

private:
    std::array<RequestFacts, 2> m_requests{
        RequestFacts{CostLearner(startingCost(Area::HoldingRegisters)), CountLimit(modbus::MaxReadRegisters)},
        RequestFacts{CostLearner(startingCost(Area::Coils)), CountLimit(modbus::MaxReadBits)}};
    std::array<Refusals, 4> m_refusals;
};

/// By station.
using Learnt = std::map<int, StationFacts>;
