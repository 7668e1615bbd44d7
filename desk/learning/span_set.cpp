#include "desk/learning/span_set.h"

#include <algorithm>

namespace
{

// The spans that have a number in common with `span`; none have one in common with each other.
template <typename Spans>
auto touching(Spans &spans, const Span &span)
{
    const auto first = std::lower_bound(spans.begin(), spans.end(), span.first,
                                        [](const Span &other, int number) { return other.last < number; });
    const auto end =
        std::find_if(first, spans.end(), [&](const Span &other) { return other.first > span.last; });
    return std::make_pair(first, end);
}

} // namespace

void SpanSet::add(const Span &span)
{
    const auto [first, end] = touching(m_spans, span);
    Span whole = span;
    if (first != end) {
        whole.first = std::min(whole.first, first->first);
        whole.last = std::max(whole.last, (end - 1)->last);
    }
    m_spans.insert(m_spans.erase(first, end), whole);
}

void SpanSet::remove(const Span &span)
{
    const auto [first, end] = touching(m_spans, span);
    if (first == end)
        return;
    const Span before{first->first, span.first - 1};
    const Span after{span.last + 1, (end - 1)->last};
    auto place = m_spans.erase(first, end);
    if (after.first <= after.last)
        place = m_spans.insert(place, after);
    if (before.first <= before.last)
        m_spans.insert(place, before);
}

bool SpanSet::contains(const Span &span) const
{
    const auto [first, end] = touching(m_spans, span);
    return first != end && first->contains(span);
}
