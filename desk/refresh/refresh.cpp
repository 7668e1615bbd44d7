#include "desk/refresh/refresh.h"

#include "desk/refresh/area_round.h"
#include "desk/refresh/exploring.h"

Refresh::Refresh(const std::vector<AreaRange> &points, Learnt &learnt)
    : m_areas(areaPlansOf(points)), m_learnt(learnt)
{
}

void Refresh::readRound(RefreshClient &client, qint64 now)
{
    RangeReply::Outcome over = RangeReply::Given;
    int stationAway = -1;
    for (AreaPlan &areaPlan : m_areas) {
        StationFacts &facts = m_learnt[areaPlan.station()];
        facts.compareCosts();
        AreaRound round(areaPlan, facts, client, now);
        if (over != RangeReply::Ended && stationAway != areaPlan.station())
            over = round.run();
        if (over == RangeReply::StationAway)
            stationAway = areaPlan.station();
        round.failAll({areaPlan.station(), areaPlan.area(), 0, 0});
    }
}

void Refresh::explore(RefreshClient &client, qint64 now)
{
    for (AreaPlan &areaPlan : m_areas) {
        StationFacts &facts = m_learnt[areaPlan.station()];
        facts.compareCosts();
        if (::explore(areaPlan, facts, client, now) == RangeReply::Ended)
            return;
    }
}

quint64 Refresh::plansMade() const
{
    quint64 plans = 0;
    for (const AreaPlan &areaPlan : m_areas)
        plans += areaPlan.plansMade();
    return plans;
}
