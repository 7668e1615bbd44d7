#pragma once

#include <QtGlobal>

namespace kit
{

/// While one lives, nobody in this process waits: sleeping returns at once, and all clocks go on by what was
/// slept.
class SkippedTime
{
public:
    SkippedTime();
    virtual ~SkippedTime();
    SkippedTime(const SkippedTime &) = delete;
    SkippedTime &operator=(const SkippedTime &) = delete;

    /// Called with what nanosleep() and clock_nanosleep() are asked for while this one is the latest.
    virtual void note(qint64 /*nanoseconds*/) {}
    /// The same with what sleep() and usleep() are asked for.
    virtual void noteOther(qint64 /*nanoseconds*/) {}

    /// Lets the clocks go on, as a wait would.
    static void skip(qint64 nanoseconds);
    /// What was skipped so far.
    static qint64 skipped();
    /// A clock that never goes back, with what was skipped.
    static qint64 nanoseconds();

private:
    SkippedTime *m_outer;
};

} // namespace kit
