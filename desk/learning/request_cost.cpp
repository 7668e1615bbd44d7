#include "desk/learning/request_cost.h"

#include <algorithm>
#include <cmath>

namespace
{

// A tenth changes which gaps are filled by as little, and those cost nearly the same either way.
const double Near = 0.1;
// What a unit adds to a request and no plan notices, whatever it is compared with.
const double Unnoticed = 0.0005;

} // namespace

RequestCost startingCost(Area area)
{
    return isBitArea(area) ? RequestCost{52900, 1145} : RequestCost{52900, 2290};
}

bool isNear(const RequestCost &left, const RequestCost &right)
{
    const double first = left.perUnit * right.perRequest;
    const double second = right.perUnit * left.perRequest;
    return std::abs(first - second) <=
           Near * std::max(first, second) + Unnoticed * left.perRequest * right.perRequest;
}
