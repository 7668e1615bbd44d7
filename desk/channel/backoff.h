#pragma once

#include <QtGlobal>

#include <algorithm>

/// Growing distances between attempts at what has failed: twice as long each time, up to the longest. Times
/// are microseconds of any one clock.
class Backoff
{
public:
    Backoff(qint64 first, qint64 longest) : m_first(first), m_longest(longest), m_failures(0), m_until(0) {}

    void succeed() { m_failures = 0; }
    void fail(qint64 now)
    {
        const int most = 30;
        m_until = now + std::min(m_longest, m_first << std::min(m_failures, most));
        ++m_failures;
    }
    /// How often in a row it has failed.
    int failures() const { return m_failures; }
    /// When the next attempt is due; in the past where nothing has failed.
    qint64 until() const { return m_failures == 0 ? 0 : m_until; }

private:
    qint64 m_first;
    qint64 m_longest;
    int m_failures;
    qint64 m_until;
};
