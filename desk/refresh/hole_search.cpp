#include "desk/refresh/hole_search.h"

#include <algorithm>
#include <utility>

HoleSearch::HoleSearch(const std::vector<Span> &spans, Reader reader, IsDoubtful isDoubtful)
    : m_spans(spans), m_reader(std::move(reader)), m_isDoubtful(std::move(isDoubtful))
{
}

// All up to `given` has been read, and something up to `bad` is refused.
HoleSearch::End HoleSearch::run(int first, int last, bool isFirstGiven, const RangeReply &reply)
{
    int given = isFirstGiven ? first : first - 1;
    int bad = last;
    End end{End::Step, bad, from(first, last), reply};
    while (bad > std::max(first, given + 1)) {
        const int begin = std::max(first, given);
        const int part = middle(first, given, bad);
        const RangeReply answer = m_reader(begin, part);
        if (answer.isOver())
            return {End::Over, given + 1, from(begin, part), answer};
        if (answer.outcome == RangeReply::Given) {
            given = part;
        } else {
            bad = part;
            end = {End::Step, bad, from(begin, part), answer};
        }
    }
    end.span = bad;
    if (given >= first)
        return confirm(given, bad, end);
    end.reason = End::Wanted;
    return end;
}

// Half of the addresses that are left are in one part, half in the other: holes are likelier in a wide gap
// than in a narrow one.
int HoleSearch::middle(int first, int given, int bad) const
{
    const int known = given < first ? at(first).first - 1 : at(given).last;
    const int half = known + (at(bad).last - known) / 2;
    const auto begin = m_spans.begin() + given + 1;
    const auto end = m_spans.begin() + bad;
    auto part =
        std::upper_bound(begin, end, half, [](int number, const Span &span) { return number < span.last; });
    const bool isNearerBefore = part != begin && (part == end || half - (part - 1)->last < part->last - half);
    if (isNearerBefore)
        --part;
    return static_cast<int>(part - m_spans.begin());
}

// The range that was refused was longer than this step, if some of it has been read since.
HoleSearch::End HoleSearch::confirm(int given, int bad, End end)
{
    const Span step = from(given, bad);
    if (end.refused == step || !m_isDoubtful(end.refused.count(), end.reply))
        return end;
    const RangeReply answer = m_reader(given, bad);
    if (answer.isOver())
        return {End::Over, bad, step, answer};
    if (answer.outcome == RangeReply::Given)
        end.reason = End::Length;
    else
        end = {End::Step, bad, step, answer};
    return end;
}
