#pragma once

#include <QtGlobal>

#include <functional>
#include <map>

/// A clock that only moves when it is told to, and what is to happen when it does. Microseconds.
class VirtualTime
{
public:
    qint64 now() const { return m_now; }
    /// Lets \a event happen at \a time, or now if that is over; what is due at the same time happens in the
    /// order of these calls.
    void at(qint64 time, std::function<void()> event);
    void after(qint64 delay, std::function<void()> event) { at(m_now + delay, std::move(event)); }
    /// Lets the next thing happen that is due until \a until; false when there is none, and it is \a until
    /// then.
    bool step(qint64 until);
    /// Lets everything happen that is due until \a until.
    void runUntil(qint64 until);
    /// How much is to happen still.
    size_t pending() const { return m_events.size(); }

private:
    qint64 m_now = 0;
    std::multimap<qint64, std::function<void()>> m_events;
};
