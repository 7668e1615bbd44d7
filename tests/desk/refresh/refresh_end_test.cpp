// However a round ends, every point is reported once, and nobody is asked any more.

#include "desk/refresh/refresh.h"

#include "tests/lines/layouts.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace
{

const qint64 Hour = 3600 * 1000;

// Answers as the device does until its last request: from then on the station is away, or nobody is asked.
class EndingClient : public RefreshClient
{
public:
    EndingClient(const Layout &layout, int last, RangeReply::Outcome end)
        : m_layout(layout), m_last(last), m_end(end), m_reports(layout.points.size())
    {
    }

    RangeReply read(const AreaRange &range) override
    {
        EXPECT_FALSE(hasEnded() && m_end == RangeReply::Ended) << "asked after the end";
        EXPECT_EQ(m_away.count(range.station), 0u) << "asked a station that is away";
        if (m_requests++ != m_last)
            return m_layout.device.answer(range);
        if (m_end == RangeReply::StationAway)
            m_away.insert(range.station);
        return {m_end, 0, 0};
    }
    void given(const AreaRange & /*range*/, const std::vector<int> &points) override { report(points); }
    void failed(const AreaRange & /*range*/, const std::vector<int> &points) override { report(points); }
    void notAsked(const Refusals::Refusal & /*refusal*/, const std::vector<int> &points) override
    {
        report(points);
    }

    int requests() const { return m_requests; }
    bool hasEnded() const { return m_requests > m_last; }
    bool isEachReportedOnce() const
    {
        return std::all_of(m_reports.begin(), m_reports.end(), [](int reports) { return reports == 1; });
    }

private:
    void report(const std::vector<int> &points)
    {
        for (const int point : points)
            ++m_reports[static_cast<size_t>(point)];
    }

    const Layout &m_layout;
    int m_last;
    RangeReply::Outcome m_end;
    int m_requests = 0;
    std::set<int> m_away;
    std::vector<int> m_reports;
};

const int Never = 1 << 30;

// Some rounds, an hour in which refusals become due, and one that ends, or what it explores then does.
// Whether it came so far.
bool endsAt(const Layout &layout, int roundsBefore, int last)
{
    Learnt learnt;
    Refresh refresh(layout.points, learnt);
    for (int round = 0; round < roundsBefore; ++round) {
        EndingClient client(layout, Never, RangeReply::Ended);
        refresh.readRound(client, round);
        EXPECT_TRUE(client.isEachReportedOnce());
        refresh.explore(client, round);
    }
    EndingClient client(layout, last, RangeReply::Ended);
    refresh.readRound(client, Hour);
    EXPECT_TRUE(client.isEachReportedOnce()) << roundsBefore << " rounds, " << last << " requests";
    if (!client.hasEnded())
        refresh.explore(client, Hour);
    return client.hasEnded();
}

Layout layoutOf(unsigned int seed)
{
    Layout layout = randomLayout(seed);
    layout.device.holesAre = static_cast<PlanDevice::Refusing>(seed % 3);
    layout.device.longRangesAre = static_cast<PlanDevice::Refusing>(seed / 3 % 3);
    if (seed % 5 == 0)
        layout.device.unknownFunctions.insert({1, static_cast<Area>(seed / 5 % 4)});
    return layout;
}

} // namespace

TEST(RefreshEnd, ReportsEveryPointOnceAndAsksNobodyAnyMore)
{
    for (unsigned int seed = 0; seed < 45; ++seed) {
        const Layout layout = layoutOf(seed);
        for (const int roundsBefore : {0, 3}) {
            for (int last = 0; last < 30 && endsAt(layout, roundsBefore, last); ++last)
                ASSERT_FALSE(HasFailure()) << "seed " << seed;
        }
    }
}

TEST(RefreshEnd, OfAStationLeavesTheOthers)
{
    Layout layout;
    for (const int station : {1, 2}) {
        for (const Area area : {Area::Coils, Area::HoldingRegisters})
            layout.points.push_back({station, area, 0, 0});
    }
    Learnt learnt;
    Refresh refresh(layout.points, learnt);
    EndingClient client(layout, 0, RangeReply::StationAway);
    refresh.readRound(client, 0);
    EXPECT_TRUE(client.isEachReportedOnce());
    EXPECT_EQ(client.requests(), 3) << "one of the first station, two of the second";
}
