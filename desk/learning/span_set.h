#pragma once

#include <vector>

/// Numbers from one to another, both included.
struct Span {
    int first;
    int last;

    bool contains(const Span &other) const { return first <= other.first && other.last <= last; }
    int count() const { return last - first + 1; }
};

inline bool operator==(const Span &left, const Span &right)
{
    return left.first == right.first && left.last == right.last;
}

/// What has been read together. Two spans that have a number in common count as one; two that merely lie side
/// by side do not, for a device may refuse the step from one to the other.
class SpanSet
{
public:
    void add(const Span &span);
    /// What lay on both sides of \a span counts as two from then on.
    void remove(const Span &span);
    bool contains(const Span &span) const;
    bool isEmpty() const { return m_spans.empty(); }

private:
    std::vector<Span> m_spans; // rising
};
