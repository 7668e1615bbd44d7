#pragma once

#include "desk/learning/span_set.h"

#include <QtGlobal>

#include <optional>
#include <vector>

/// What of an area a station has refused, and what it has given. Where a range was refused, every range that
/// holds it is avoided, until it is asked for again: rarely, and the more so the more often it was refused.
class Refusals
{
public:
    struct Refusal {
        Span span;
        /// Asked for on its own, as something wanted; otherwise the step between two that can be read.
        bool isWanted;
        int exception;         ///< 0 when there was no answer
        qint64 askAgain;       ///< when, in milliseconds of the clock that all times here are of
        qint64 pause;          ///< how long it was let alone the last time
        bool wasGiven = false; ///< before; so it may be given again soon
        int losses = 0;        ///< how often there was no answer
    };

    /// \a span was given: whatever was refused in it is not refused any more.
    void addGiven(const Span &span);
    bool wasGiven(const Span &span) const { return m_given.contains(span); }

    /// \a span was refused when it was asked for on its own.
    void addWanted(const Span &span, int exception, qint64 now);
    /// Two that can be read are refused together; \a span reaches from the end of one to that of the other.
    void addStep(const Span &span, int exception, qint64 now);
    void restore(const Refusal &refusal);
    void restoreNoFunction(const Refusal &refusal);
    void clear();

    /// There was no answer to \a span on its own, though there was to others. Until that has happened several
    /// times it is asked for all the same, but with nothing else.
    void addLost(const Span &span, qint64 now);
    /// The function was refused with which the area is read, when \a asked was asked for on its own. Stands
    /// for every refusal until something is given.
    void setNoFunction(const Span &asked, qint64 now);

    /// The refusal of just this span as something wanted.
    const Refusal *wanted(const Span &span) const;
    bool hasGiven() const { return !m_given.isEmpty(); }
    /// Whether something was refused that \a span holds.
    bool isBarred(const Span &span) const;
    /// One that is to be asked for again.
    std::optional<Refusal> due(qint64 now) const;
    /// In the order of their first, then their last numbers.
    const std::vector<Refusal> &all() const { return m_refusals; }
    const std::optional<Refusal> &noFunction() const { return m_noFunction; }
    /// Another one whenever a refusal has come or gone.
    quint64 version() const { return m_version; }

private:
    void add(Refusal refusal, qint64 now);
    Refusal paused(Refusal refusal, const Refusal *before, qint64 now) const;
    template <typename Condition>
    void removeIf(Condition condition);

    std::vector<Refusal> m_refusals;
    std::optional<Refusal> m_noFunction;
    SpanSet m_given;
    quint64 m_version = 0;
};
