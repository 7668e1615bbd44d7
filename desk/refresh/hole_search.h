#pragma once

#include "desk/learning/span_set.h"
#include "desk/refresh/refresh_client.h"

#include <functional>
#include <vector>

/// Finds why a range was refused: reads on in parts, each value once, until one span or one step from a span
/// to the next is known to be the reason.
class HoleSearch
{
public:
    /// Reads from one span to another.
    using Reader = std::function<RangeReply(int first, int last)>;
    /// Whether a range may have been refused for another reason than what is in it.
    using IsDoubtful = std::function<bool(int count, const RangeReply &reply)>;

    struct End {
        enum Reason {
            Wanted, ///< the span cannot be read on its own
            Step,   ///< it cannot be read together with the one before
            Length, ///< nothing but the length of the range; the span was read as well
            Over    ///< not found: nothing more is to be asked
        };

        Reason reason;
        int span;
        /// What was refused, and how.
        Span refused;
        RangeReply reply;
    };

    HoleSearch(const std::vector<Span> &spans, Reader reader, IsDoubtful isDoubtful);

    /// The range from \a first to \a last was refused with \a reply. With \a isFirstGiven the first span has
    /// been read before.
    End run(int first, int last, bool isFirstGiven, const RangeReply &reply);

private:
    const Span &at(int span) const { return m_spans[static_cast<size_t>(span)]; }
    Span from(int first, int last) const { return {at(first).first, at(last).last}; }
    int middle(int first, int given, int bad) const;
    End confirm(int given, int bad, End end);

    const std::vector<Span> &m_spans;
    Reader m_reader;
    IsDoubtful m_isDoubtful;
};
