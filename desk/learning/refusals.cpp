#include "desk/learning/refusals.h"

#include "desk/wire/protocol.h"

#include <algorithm>
#include <tuple>

namespace
{

const qint64 Second = 1000;
// A device that is only starting, or was stopped for a moment, comes back soon.
const qint64 ShortPause = 4 * Second;
const qint64 FirstPause = 60 * Second;
const qint64 LongestPause = 3600 * Second;
// Fewer may be chance.
const int TellingLosses = 3;

bool isBefore(const Refusals::Refusal &refusal, const Span &span)
{
    return std::tie(refusal.span.first, refusal.span.last) < std::tie(span.first, span.last);
}

// What the protocol says of addresses and counts; other exceptions are a matter of the moment.
bool isForGood(int exception)
{
    return exception == modbus::IllegalDataAddress || exception == modbus::IllegalDataValue ||
           exception == modbus::IllegalFunction;
}

} // namespace

template <typename Condition>
void Refusals::removeIf(Condition condition)
{
    const auto rest = std::remove_if(m_refusals.begin(), m_refusals.end(), condition);
    m_version += rest == m_refusals.end() ? 0 : 1;
    m_refusals.erase(rest, m_refusals.end());
}

void Refusals::addGiven(const Span &span)
{
    m_given.add(span);
    if (m_noFunction) {
        m_noFunction.reset();
        ++m_version;
    }
    if (m_refusals.empty())
        return;
    bool isBack = false;
    removeIf([&](const Refusal &refusal) {
        isBack = isBack || (refusal.wasGiven && span.contains(refusal.span));
        return span.contains(refusal.span);
    });
    // What has come back has probably come back with the rest of the device.
    if (isBack)
        removeIf([](const Refusal &refusal) { return refusal.wasGiven; });
}

void Refusals::addWanted(const Span &span, int exception, qint64 now)
{
    // Steps were refused for what they lead to.
    removeIf([&](const Refusal &refusal) { return !refusal.isWanted && refusal.span.contains(span); });
    add({span, true, exception, 0, 0}, now);
}

void Refusals::addStep(const Span &span, int exception, qint64 now)
{
    add({span, false, exception, 0, 0}, now);
}

void Refusals::addLost(const Span &span, qint64 now)
{
    const auto place = std::lower_bound(m_refusals.begin(), m_refusals.end(), span, isBefore);
    const bool isAgain = place != m_refusals.end() && place->span == span;
    const int losses = isAgain ? place->losses + 1 : 1;
    add({span, losses >= TellingLosses, 0, 0, 0, false, losses}, now);
}

void Refusals::setNoFunction(const Span &asked, qint64 now)
{
    const Refusal refusal{asked, true, modbus::IllegalFunction, 0, 0};
    m_noFunction = paused(refusal, m_noFunction ? &*m_noFunction : nullptr, now);
    ++m_version;
}

void Refusals::restore(const Refusal &refusal)
{
    const auto place = std::lower_bound(m_refusals.begin(), m_refusals.end(), refusal.span, isBefore);
    if (place == m_refusals.end() || !(place->span == refusal.span))
        m_refusals.insert(place, refusal);
    ++m_version;
}

void Refusals::restoreNoFunction(const Refusal &refusal)
{
    m_noFunction = refusal;
    ++m_version;
}

void Refusals::clear()
{
    m_refusals.clear();
    m_noFunction.reset();
    ++m_version;
}

void Refusals::add(Refusal refusal, qint64 now)
{
    const auto place = std::lower_bound(m_refusals.begin(), m_refusals.end(), refusal.span, isBefore);
    const bool isAgain = place != m_refusals.end() && place->span == refusal.span;
    refusal = paused(refusal, isAgain ? &*place : nullptr, now);
    m_given.remove(refusal.span);
    if (!isAgain || place->isWanted != refusal.isWanted)
        ++m_version;
    if (isAgain)
        *place = refusal;
    else
        m_refusals.insert(place, refusal);
}

// The pause grows each time, so that what is never given is asked for ever more rarely.
Refusals::Refusal Refusals::paused(Refusal refusal, const Refusal *before, qint64 now) const
{
    refusal.wasGiven = m_given.contains(refusal.span) || (before != nullptr && before->wasGiven);
    refusal.pause = refusal.wasGiven || !isForGood(refusal.exception) ? ShortPause : FirstPause;
    if (before != nullptr) {
        refusal.isWanted = refusal.isWanted || before->isWanted;
        refusal.pause = std::min(LongestPause, std::max(refusal.pause, 2 * before->pause));
    }
    refusal.askAgain = now + refusal.pause;
    return refusal;
}

const Refusals::Refusal *Refusals::wanted(const Span &span) const
{
    if (m_noFunction)
        return &*m_noFunction;
    const auto place = std::lower_bound(m_refusals.begin(), m_refusals.end(), span, isBefore);
    return place != m_refusals.end() && place->span == span && place->isWanted ? &*place : nullptr;
}

bool Refusals::isBarred(const Span &span) const
{
    const Span least{span.first, span.first};
    const auto begin = std::lower_bound(m_refusals.begin(), m_refusals.end(), least, isBefore);
    for (auto refusal = begin; refusal != m_refusals.end() && refusal->span.first <= span.last; ++refusal) {
        if (refusal->span.last <= span.last)
            return true;
    }
    return false;
}

std::optional<Refusals::Refusal> Refusals::due(qint64 now) const
{
    if (m_noFunction)
        return m_noFunction->askAgain <= now ? m_noFunction : std::nullopt;
    const auto place = std::find_if(m_refusals.begin(), m_refusals.end(),
                                    [&](const Refusal &refusal) { return refusal.askAgain <= now; });
    return place == m_refusals.end() ? std::nullopt : std::optional<Refusal>(*place);
}
