#include "desk/plan/refresh.h"

#include "desk/plan/exploring.h"
#include "desk/plan/table_round.h"

#include <map>
#include <utility>

namespace
{

std::vector<Table> tablesOf(const std::vector<AreaRange> &points)
{
    std::map<std::pair<int, Area>, std::vector<TablePoint>> byTable;
    for (size_t i = 0; i < points.size(); ++i)
        byTable[{points[i].station, points[i].area}].push_back(
            {{points[i].first, points[i].last}, static_cast<int>(i)});
    std::vector<Table> tables;
    tables.reserve(byTable.size());
    for (auto &[key, tablePoints] : byTable)
        tables.emplace_back(key.first, key.second, std::move(tablePoints));
    return tables;
}

} // namespace

Refresh::Refresh(const std::vector<AreaRange> &points, Learnt &learnt)
    : m_tables(tablesOf(points)), m_learnt(learnt)
{
}

void Refresh::readRound(RefreshClient &client, qint64 now)
{
    RangeReply::Outcome over = RangeReply::Given;
    int stationAway = -1;
    for (Table &table : m_tables) {
        StationFacts &facts = m_learnt[table.station()];
        facts.compareCosts();
        TableRound round(table, facts, client, now);
        if (over != RangeReply::Ended && stationAway != table.station())
            over = round.run();
        if (over == RangeReply::StationAway)
            stationAway = table.station();
        round.failAll({table.station(), table.area(), 0, 0});
    }
}

void Refresh::explore(RefreshClient &client, qint64 now)
{
    for (Table &table : m_tables) {
        if (::explore(table, m_learnt[table.station()], client, now) == RangeReply::Ended)
            return;
    }
}

quint64 Refresh::plansMade() const
{
    quint64 plans = 0;
    for (const Table &table : m_tables)
        plans += table.plansMade();
    return plans;
}
