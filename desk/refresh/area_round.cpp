#include "desk/refresh/area_round.h"

#include "desk/refresh/asking.h"

#include <algorithm>

namespace
{

// So many requests in a row without any answer are hardly a matter of what was asked for.
const int ManyLosses = 8;
// Where others are not there, what begins so soon after them is probably not there either.
const int Neighbourhood = 3;

} // namespace

AreaRound::AreaRound(AreaPlan &areaPlan, StationFacts &facts, RefreshClient &client, qint64 now)
    : m_areaPlan(areaPlan), m_facts(facts), m_client(client), m_now(now), m_open(areaPlan.points())
{
}

RangeReply::Outcome AreaRound::run()
{
    readOpen();
    if (!isOver())
        askAgain();
    if (!isOver())
        readOpen();
    if (!isOver())
        reportRefused();
    return m_over;
}

// What lies within something that turns out to be refused has to be read for itself.
void AreaRound::readOpen()
{
    if (m_open.isUntouched())
        readSpans(m_areaPlan.plan(m_facts));
    while (!m_open.isEmpty() && !isOver()) {
        SpanPlan plan;
        plan.spans = spansOf(m_open.points(), refusals());
        if (plan.spans.empty())
            return;
        m_areaPlan.replan(plan, m_facts);
        readSpans(plan);
    }
}

void AreaRound::readSpans(SpanPlan &plan)
{
    m_plan = &plan;
    m_position = 0;
    m_isJoined = m_isDoubtful = false;
    m_holes = 0;
    while (m_position < plan.size() && !isOver()) {
        if (m_areaPlan.isOutdated(plan, m_facts))
            m_areaPlan.replan(plan, m_facts, m_position);
        readNext();
    }
}

void AreaRound::readNext()
{
    const int last = lastOfNext();
    const int first = firstOfNext(last);
    const RangeReply reply = ask(m_plan->range(first, last));
    if (reply.outcome == RangeReply::Given)
        goOnAfter(last, true);
    else if (!reply.isOver())
        takeRefusal(first, last, reply);
}

// Where holes are frequent, long ranges would only be refused.
int AreaRound::lastOfNext() const
{
    if (m_isDoubtful)
        return m_position;
    const int planned = m_plan->lastSpan(m_position);
    return m_holes == 0 ? planned : std::min(planned, m_position + std::max(1, 2 * m_position / m_holes - 1));
}

// A range that is not the planned one takes the span before along: so it becomes known whether they can be
// read together, before a plan relies on it.
int AreaRound::firstOfNext(int last) const
{
    if (!m_isJoined)
        return m_position;
    const Span whole = m_plan->range(m_position - 1, last);
    const RangeRules rules = m_areaPlan.rules(m_facts);
    const bool isAllowed = rules.fillsGaps && whole.count() <= rules.maxCount && !refusals().isBarred(whole);
    return isAllowed ? m_position - 1 : m_position;
}

void AreaRound::goOnAfter(int span, bool isRead)
{
    m_isJoined = isRead && span != m_plan->lastSpan(m_position);
    m_isDoubtful = false;
    m_position = span + 1;
}

// The span before cannot be read, or not together with this one.
void AreaRound::goOnAt(int span)
{
    m_position = span;
    m_isJoined = false;
    m_isDoubtful = span < m_plan->size() &&
                   m_plan->range(span, span).first <= m_plan->range(span - 1, span - 1).last + Neighbourhood;
    ++m_holes;
}

void AreaRound::takeRefusal(int first, int last, const RangeReply &reply)
{
    const Span span = m_plan->range(first, last);
    const bool isShorterWorthTrying =
        reply.outcome == RangeReply::TooMany && first != last && requests().limit.addRefused(rangeOf(span));
    if (isShorterWorthTrying)
        return;
    if (first == last)
        takeAlone(first, reply, refusals().isBarred(span));
    else if (reply.outcome == RangeReply::Lost && !isWorthSearching(first, last))
        fail(first, last);
    else if (reply.outcome == RangeReply::NoFunction && !refusals().hasGiven())
        readFirstAlone(last, reply);
    else
        search(first, last, first < m_position, reply);
}

// What was read together before is lost by chance. And a station that has been silent for long, or always,
// has to answer to one span before it is asked for more.
bool AreaRound::isWorthSearching(int first, int last)
{
    const Span span = m_plan->range(first, last);
    if (refusals().wasGiven(span) && span.count() <= requests().limit.given())
        return false;
    if (m_facts.hasAnswered && m_facts.lossesInRow <= ManyLosses)
        return true;
    if (m_facts.lossesInRow > 2 * ManyLosses)
        return false;
    // Not the same one each time.
    const int distance = m_facts.lossesInRow / 2 % (last - first + 1);
    const int one = m_facts.hasAnswered ? last - distance : first + distance;
    const RangeReply answer = ask(m_plan->range(one, one));
    return answer.outcome != RangeReply::Lost && !answer.isOver();
}

// The device may not know the function, and then need not be asked for every part.
void AreaRound::readFirstAlone(int last, const RangeReply &reply)
{
    const int first = m_position;
    const RangeReply answer = ask(m_plan->range(first, first));
    if (answer.outcome == RangeReply::Given)
        search(first, last, true, reply);
    else if (!answer.isOver())
        takeAlone(first, answer, true);
}

void AreaRound::search(int first, int last, bool isFirstGiven, const RangeReply &reply)
{
    const auto read = [&](int from, int to) { return ask(m_plan->range(from, to)); };
    const auto isDoubtful = [&](int count, const RangeReply &refusal) {
        return refusal.outcome == RangeReply::Lost || count > requests().limit.given();
    };
    const HoleSearch::End end =
        HoleSearch(m_plan->spans, read, isDoubtful).run(first, last, isFirstGiven, reply);
    switch (end.reason) {
    case HoleSearch::End::Over: break;
    case HoleSearch::End::Wanted: takeAlone(end.span, end.reply, true); break;
    case HoleSearch::End::Step: takeStep(end.span, end.reply); break;
    case HoleSearch::End::Length:
        requests().limit.addRefused(rangeOf(end.refused));
        m_position = end.span + 1;
        m_isDoubtful = m_isJoined = false;
        break;
    }
}

void AreaRound::takeStep(int span, const RangeReply &reply)
{
    const Span step{m_plan->range(span - 1, span - 1).last, m_plan->range(span, span).last};
    refusals().addStep(step, reply.exception, m_now);
    requests().limit.addHole(rangeOf(step));
    goOnAt(span);
}

// A span that was refused on its own. No answer says so only where there was one to others at the same time.
void AreaRound::takeAlone(int span, const RangeReply &reply, bool isLossTelling)
{
    const Span alone = m_plan->range(span, span);
    m_client.failed(rangeOf(alone), m_open.takeEqual(alone));
    if (reply.outcome == RangeReply::NoFunction && !refusals().hasGiven()) {
        refusals().setNoFunction(alone, m_now);
        m_position = m_plan->size();
        return;
    }
    if (reply.isRefusal())
        refusals().addWanted(alone, reply.exception, m_now);
    else if (isLossTelling)
        refusals().addLost(alone, m_now);
    else
        return goOnAfter(span, false);
    requests().limit.addHole(rangeOf(alone));
    goOnAt(span + 1);
}

void AreaRound::fail(int first, int last)
{
    const Span span = m_plan->range(first, last);
    m_client.failed(rangeOf(span), m_open.takeWithin(span));
    goOnAfter(last, false);
}

void AreaRound::failAll(const AreaRange &asked)
{
    const std::vector<int> points = m_open.takeAll();
    if (!points.empty())
        m_client.failed(asked, points);
}

void AreaRound::askAgain()
{
    const std::optional<Refusals::Refusal> refusal = refusals().due(m_now);
    if (!refusal)
        return;
    const bool isNoFunction = refusals().noFunction().has_value();
    const RangeReply reply = ask(refusal->span);
    if (reply.outcome == RangeReply::Given || reply.isOver())
        return;
    if (isNoFunction)
        refusals().setNoFunction(refusal->span, m_now);
    else if (refusal->isWanted)
        refusals().addWanted(refusal->span, refusal->exception, m_now);
    else
        refusals().addStep(refusal->span, refusal->exception, m_now);
}

void AreaRound::reportRefused()
{
    for (const AreaPoint &point : m_open.points()) {
        const std::vector<int> points = m_open.takeEqual(point.span);
        if (!points.empty())
            m_client.notAsked(*refusals().wanted(point.span), points);
    }
}

RangeReply AreaRound::ask(const Span &span)
{
    const RangeReply reply = askAndLearn(m_areaPlan, m_facts, m_client, span);
    if (reply.isOver())
        m_over = reply.outcome;
    if (reply.outcome != RangeReply::Given)
        return reply;
    const std::vector<int> points = m_open.takeWithin(span);
    if (!points.empty())
        m_client.given(rangeOf(span), points);
    return reply;
}

AreaRange AreaRound::rangeOf(const Span &span) const
{
    return m_areaPlan.rangeOf(span);
}
