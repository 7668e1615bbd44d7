#include "desk/plan/asking.h"

RangeReply askAndLearn(const Table &table, StationFacts &facts, RefreshClient &client, const Span &span)
{
    const RangeReply reply = client.read(table.rangeOf(span));
    if (reply.isOver())
        return reply;
    facts.lossesInRow = reply.outcome == RangeReply::Lost ? facts.lossesInRow + 1 : 0;
    facts.hasAnswered = facts.hasAnswered || reply.outcome != RangeReply::Lost;
    if (reply.outcome != RangeReply::Given)
        return reply;
    RequestFacts &requests = facts.requests(table.area());
    requests.limit.addGiven(span.count());
    facts.refusals(table.area()).addGiven(span);
    if (reply.microseconds > 0)
        requests.cost.add(unitsOf(table.area(), span.count()), reply.microseconds);
    return reply;
}
