#include "desk/refresh/asking.h"

RangeReply askAndLearn(const AreaPlan &areaPlan, StationFacts &facts, RefreshClient &client, const Span &span)
{
    const RangeReply reply = client.read(areaPlan.rangeOf(span));
    if (reply.isOver())
        return reply;
    facts.lossesInRow = reply.outcome == RangeReply::Lost ? facts.lossesInRow + 1 : 0;
    facts.hasAnswered = facts.hasAnswered || reply.outcome != RangeReply::Lost;
    if (reply.outcome != RangeReply::Given)
        return reply;
    RequestFacts &requests = facts.requests(areaPlan.area());
    requests.limit.addGiven(span.count());
    facts.refusals(areaPlan.area()).addGiven(span);
    if (reply.microseconds > 0)
        requests.cost.add(unitsOf(areaPlan.area(), span.count()), reply.microseconds);
    return reply;
}
