#pragma once

#include "desk/readings/value_row.h"

#include <deque>

/// The recent course of one value that is read again and again.
class WatchedValue
{
public:
    /// A value is live no longer than \a lifetime after it was read, in milliseconds.
    explicit WatchedValue(qint64 lifetime) : m_lifetime(lifetime) {}

    /// A value that was read at \a now, in milliseconds of any clock.
    void add(const ValueRow &row, qint64 now);
    /// It could not be read.
    void addGap();

    bool isLive(qint64 now) const { return m_isRead && now - m_readAt <= m_lifetime; }
    /// Whether the last reading differs from the one before.
    bool hasChanged() const { return m_isRead && m_hasChanged; }
    /// The value while it is live, otherwise "?".
    QString text(qint64 now) const;
    /// Which limit it is beyond, "above 80"; what it was, and how long ago, when it is not live any more.
    QString note(qint64 now) const;
    /// The last readings, as many as \a length, as a line of bars between their smallest and their largest;
    /// gaps are blank. Where bars do not arrive, characters of ASCII stand for them, "_" to "#".
    QString sparkline(bool isUnicode, int length = MaxCourse) const;

    /// How many readings a course has.
    static const int MaxCourse = 24;

private:
    QString shownText() const;
    void addToCourse(double number);

    qint64 m_lifetime;
    ValueRow m_row;
    qint64 m_readAt = -1;
    bool m_isRead = false; // the last time it was tried
    bool m_hasChanged = false;
    std::deque<double> m_course; // not-a-numbers are gaps
};
