#pragma once

#include "desk/refresh/hole_search.h"
#include "desk/refresh/open_points.h"

/// Reads all that is wanted of one area of one station once, and learns from what comes of it. Every point is
/// reported in the end.
class AreaRound
{
public:
    /// \a now in milliseconds, of the same clock in every round.
    AreaRound(AreaPlan &areaPlan, StationFacts &facts, RefreshClient &client, qint64 now);

    /// Given, or why nothing more is to be asked.
    RangeReply::Outcome run();
    /// Reports that nothing could be read.
    void failAll(const AreaRange &asked);

private:
    void readOpen();
    void readSpans(SpanPlan &plan);
    void readNext();
    int lastOfNext() const;
    int firstOfNext(int last) const;
    void takeRefusal(int first, int last, const RangeReply &reply);
    bool isWorthSearching(int first, int last);
    void readFirstAlone(int last, const RangeReply &reply);
    void search(int first, int last, bool isFirstGiven, const RangeReply &reply);
    void takeStep(int span, const RangeReply &reply);
    void takeAlone(int span, const RangeReply &reply, bool isLossTelling);
    void fail(int first, int last);
    void goOnAfter(int span, bool isRead);
    void goOnAt(int span);
    void askAgain();
    void reportRefused();

    RangeReply ask(const Span &span);
    bool isOver() const { return m_over != RangeReply::Given; }

    AreaRange rangeOf(const Span &span) const;
    Refusals &refusals() const { return m_facts.refusals(m_areaPlan.area()); }
    RequestFacts &requests() const { return m_facts.requests(m_areaPlan.area()); }

    AreaPlan &m_areaPlan;
    StationFacts &m_facts;
    RefreshClient &m_client;
    qint64 m_now;
    OpenPoints m_open;
    RangeReply::Outcome m_over = RangeReply::Given;

    SpanPlan *m_plan = nullptr;
    /// The next span of the plan, and what is known of it.
    int m_position = 0;
    bool m_isJoined = false;   ///< the one before was read, and whether both can be read together is open
    bool m_isDoubtful = false; ///< it lies close to others that are not there
    int m_holes = 0;           ///< found on the way to it
};
