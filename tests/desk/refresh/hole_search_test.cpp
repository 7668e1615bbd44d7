#include "desk/refresh/hole_search.h"

#include <gtest/gtest.h>

#include <numeric>

namespace
{

struct Device {
    int hole = -1; // an address that is not there
    int maxCount = 125;

    RangeReply answer(const Span &span) const
    {
        const bool isGiven = (hole < span.first || hole > span.last) && span.count() <= maxCount;
        return {isGiven ? RangeReply::Given : RangeReply::Missing, isGiven ? 0 : 2, 0};
    }
};

struct Search {
    HoleSearch::End end;
    std::vector<Span> asked;
};

Search searchIn(const std::vector<Span> &spans, const Device &device, bool isDoubtful = false)
{
    Search search;
    const auto read = [&](int first, int last) {
        const Span span{spans[static_cast<size_t>(first)].first, spans[static_cast<size_t>(last)].last};
        search.asked.push_back(span);
        return device.answer(span);
    };
    const int last = static_cast<int>(spans.size()) - 1;
    const RangeReply whole = device.answer({spans.front().first, spans.back().last});
    search.end = HoleSearch(spans, read, [&](int, const RangeReply &) {
                     return isDoubtful;
                 }).run(0, last, false, whole);
    return search;
}

std::vector<Span> everySecond(int count)
{
    std::vector<Span> spans;
    for (int i = 0; i < count; ++i)
        spans.push_back({2 * i, 2 * i});
    return spans;
}

} // namespace

TEST(HoleSearch, FindsEveryHoleByHalving)
{
    const std::vector<Span> spans = everySecond(32);
    for (int hole = 0; hole <= 62; ++hole) {
        const Search search = searchIn(spans, {hole});
        // Between two spans it is the step to the later one that is refused; so it is for a span that is not
        // there itself, but for the first.
        EXPECT_EQ(search.end.reason, hole == 0 ? HoleSearch::End::Wanted : HoleSearch::End::Step) << hole;
        EXPECT_EQ(search.end.span, (hole + 1) / 2) << hole;
        EXPECT_LE(search.asked.size(), 6u) << hole;
    }
}

TEST(HoleSearch, ReadsAllBeforeTheHoleAndEachOnce)
{
    const std::vector<Span> spans = everySecond(32);
    const Search search = searchIn(spans, {41});
    std::vector<int> timesRead(spans.size());
    for (const Span &asked : search.asked) {
        for (size_t i = 0; i < spans.size(); ++i)
            timesRead[i] += asked.contains(spans[i]) && !asked.contains({41, 41}) ? 1 : 0;
    }
    for (size_t i = 0; i <= 20; ++i)
        EXPECT_GE(timesRead[i], 1) << i;
    EXPECT_LE(std::accumulate(timesRead.begin(), timesRead.end(), 0), 21 + 5) << "but for the joints";
}

TEST(HoleSearch, TriesTheWidestGapFirst)
{
    const std::vector<Span> spans{{0, 0}, {1, 1}, {2, 2}, {40, 40}, {41, 41}};
    const Search search = searchIn(spans, {20});
    ASSERT_EQ(search.asked.size(), 2u);
    EXPECT_EQ(search.asked[0], (Span{0, 2}));
    EXPECT_EQ(search.asked[1], (Span{2, 40}));
    EXPECT_EQ(search.end.span, 3);
}

TEST(HoleSearch, TellsALimitFromAHoleWhereItHasToDoubt)
{
    const std::vector<Span> spans = everySecond(32);
    const Search search = searchIn(spans, {-1, 40}, true);
    EXPECT_EQ(search.end.reason, HoleSearch::End::Length);
    EXPECT_GT(search.end.refused.count(), 40);
    EXPECT_EQ(searchIn(spans, {-1, 40}, false).end.reason, HoleSearch::End::Step);
    EXPECT_EQ(searchIn(spans, {33}, true).end.reason, HoleSearch::End::Step);
}

TEST(HoleSearch, EndsWhenNothingMoreIsToBeAsked)
{
    const std::vector<Span> spans = everySecond(8);
    int asked = 0;
    const auto read = [&](int, int) {
        ++asked;
        return RangeReply{RangeReply::Ended, 0, 0};
    };
    const HoleSearch::End end = HoleSearch(spans, read, [](int, const RangeReply &) {
                                    return false;
                                }).run(0, 7, false, {RangeReply::Missing, 2, 0});
    EXPECT_EQ(end.reason, HoleSearch::End::Over);
    EXPECT_EQ(asked, 1);
}
