#include "desk/plan/cheapest_ranges.h"

#include <algorithm>
#include <limits>

namespace
{

// The ends that a range may have, each with what it costs to go on after it, and the cheapest of them at the
// front: an end that is farther away and dearer than another never becomes the cheapest again.
class CheapestEnd
{
public:
    struct End {
        int span;
        double cost;
    };

    void add(const End &end)
    {
        while (m_ends.size() > m_front && m_ends.back().cost >= end.cost)
            m_ends.pop_back();
        m_ends.push_back(end);
    }
    // Of those up to a span. Never asked for a farther one afterwards.
    const End *upTo(int span)
    {
        while (m_front < m_ends.size() && m_ends[m_front].span > span)
            ++m_front;
        return m_front < m_ends.size() ? &m_ends[m_front] : nullptr;
    }

private:
    std::vector<End> m_ends;
    size_t m_front = 0;
};

// Goes through the spans from the last to the first. With eight bits in a byte, what a range costs depends on
// where its beginning and its end lie within bytes, so ends are kept apart by that.
class Search
{
public:
    Search(const std::vector<Span> &spans, const Refusals &refusals, const RangeRules &rules)
        : m_spans(spans),
          m_refusals(refusals.all()),
          m_rules(rules),
          m_ends(static_cast<size_t>(rules.itemsPerUnit)),
          m_farthest(static_cast<int>(spans.size()) - 1),
          m_refusal(m_refusals.size())
    {
        m_result.lastSpan.resize(spans.size());
        m_result.cost.resize(spans.size() + 1);
    }

    CheapestRanges run(int from)
    {
        for (int span = static_cast<int>(m_spans.size()) - 1; span >= from; --span) {
            addEnd(span);
            limitFarthest(span);
            choose(span);
        }
        return std::move(m_result);
    }

private:
    const Span &at(int span) const { return m_spans[static_cast<size_t>(span)]; }
    int wholeUnits(int items) const { return items / m_rules.itemsPerUnit; }

    void addEnd(int span)
    {
        const int end = at(span).last + 1;
        const double after = m_result.cost[static_cast<size_t>(span) + 1];
        m_ends[static_cast<size_t>(end % m_rules.itemsPerUnit)].add(
            {span, m_rules.cost.perUnit * wholeUnits(end) + after});
    }

    void limitFarthest(int span)
    {
        const int first = at(span).first;
        for (; m_refusal > 0 && m_refusals[m_refusal - 1].span.first >= first; --m_refusal)
            m_refusedLast = std::min(m_refusedLast, m_refusals[m_refusal - 1].span.last);
        while (m_farthest > span &&
               (at(m_farthest).last - first >= m_rules.maxCount || at(m_farthest).last >= m_refusedLast))
            --m_farthest;
        const bool isGap = m_farthest > span && !m_rules.fillsGaps && at(span + 1).first > at(span).last + 1;
        if (isGap || m_rules.isOneByOne)
            m_farthest = span;
    }

    void choose(int span)
    {
        const int first = at(span).first;
        const int part = first % m_rules.itemsPerUnit;
        double cheapest = std::numeric_limits<double>::infinity();
        for (int endPart = 0; endPart < m_rules.itemsPerUnit; ++endPart) {
            const CheapestEnd::End *end = m_ends[static_cast<size_t>(endPart)].upTo(m_farthest);
            const double cost =
                end == nullptr ? cheapest : end->cost + (endPart > part ? m_rules.cost.perUnit : 0);
            if (cost < cheapest) {
                cheapest = cost;
                m_result.lastSpan[static_cast<size_t>(span)] = end->span;
            }
        }
        m_result.cost[static_cast<size_t>(span)] =
            cheapest + m_rules.cost.perRequest - m_rules.cost.perUnit * wholeUnits(first);
    }

    const std::vector<Span> &m_spans;
    const std::vector<Refusals::Refusal> &m_refusals;
    const RangeRules &m_rules;
    CheapestRanges m_result;
    std::vector<CheapestEnd> m_ends;
    int m_farthest;
    size_t m_refusal;
    int m_refusedLast = std::numeric_limits<int>::max();
};

} // namespace

CheapestRanges cheapestRanges(const std::vector<Span> &spans, const Refusals &refusals,
                              const RangeRules &rules, int from)
{
    return Search(spans, refusals, rules).run(from);
}
