#include "desk/plan/station_scan.h"

#include <algorithm>
#include <set>

namespace
{

bool isFound(StationAnswer::Kind kind)
{
    return kind == StationAnswer::Answers || kind == StationAnswer::Refuses;
}

template <typename Condition>
std::vector<StationScan::Result> chosen(const std::vector<StationScan::Result> &results, Condition condition)
{
    std::vector<StationScan::Result> some;
    std::copy_if(results.begin(), results.end(), std::back_inserter(some),
                 [&](const StationScan::Result &result) { return condition(result.answer.kind); });
    return some;
}

} // namespace

bool StationScan::run(const std::vector<int> &stations, const Watcher &mayGoOn)
{
    const int total = static_cast<int>(stations.size());
    for (int i = 0; i < total; ++i) {
        if (!mayGoOn(i, total, static_cast<int>(found().size())))
            return false;
        const int station = stations[static_cast<size_t>(i)];
        const StationAnswer answer = m_prober(station);
        // What came when the scan was to end says nothing.
        if (!mayGoOn(i, total, static_cast<int>(found().size())))
            return false;
        if (answer.kind == StationAnswer::Hopeless)
            return false;
        note(station, answer);
        m_scannedTo = std::max(m_scannedTo, station);
    }
    return true;
}

void StationScan::note(int station, const StationAnswer &answer)
{
    const auto place =
        std::lower_bound(m_results.begin(), m_results.end(), station,
                         [](const Result &result, int number) { return result.station < number; });
    if (place != m_results.end() && place->station == station)
        place->answer = answer;
    else
        m_results.insert(place, {station, answer});
}

std::vector<int> StationScan::doubtful() const
{
    if (count(StationAnswer::Echo) > 0)
        return {};
    const bool isNoneFound = found().empty();
    std::set<int> named;
    for (const Result &result : m_results)
        named.insert(result.answer.otherStation);
    std::vector<int> stations;
    for (const Result &result : m_results) {
        const StationAnswer::Kind kind = result.answer.kind;
        const bool isOpen = kind == StationAnswer::Silent || kind == StationAnswer::Disturbed;
        if (isOpen && (isNoneFound || kind == StationAnswer::Disturbed || named.count(result.station) > 0))
            stations.push_back(result.station);
    }
    return stations;
}

std::vector<StationScan::Result> StationScan::found() const
{
    return chosen(m_results, isFound);
}

std::vector<StationScan::Result> StationScan::disturbed() const
{
    return chosen(m_results, [](StationAnswer::Kind kind) { return kind == StationAnswer::Disturbed; });
}

int StationScan::count(StationAnswer::Kind kind) const
{
    return static_cast<int>(std::count_if(m_results.begin(), m_results.end(), [kind](const Result &result) {
        return result.answer.kind == kind;
    }));
}
