#pragma once

#include "desk/plan/area_plan.h"
#include "desk/refresh/refresh_client.h"

/// Brings points up to date, round after round, with as little time on the line as what has been learnt
/// allows.
class Refresh
{
public:
    /// What is wanted, each in one piece: some registers, or some bits, of one station; and what is known of
    /// the stations, which grows with every round.
    Refresh(const std::vector<AreaRange> &points, Learnt &learnt);

    /// Reads every point once. \a now in milliseconds, of the same clock each time.
    void readRound(RefreshClient &client, qint64 now);
    /// Asks for what would tell how to plan the next round better; nothing once that is known.
    void explore(RefreshClient &client, qint64 now);

    std::vector<AreaPlan> &areas() { return m_areas; }
    /// How often anything was planned.
    quint64 plansMade() const;

private:
    std::vector<AreaPlan> m_areas;
    Learnt &m_learnt;
};
