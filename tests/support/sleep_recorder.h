#pragma once

#include <QtGlobal>

#include <vector>

/// While one lives, nanosleep() sleeps no longer in this program: it notes the time and returns at once.
class SleepRecorder
{
public:
    SleepRecorder();
    ~SleepRecorder();

    SleepRecorder(const SleepRecorder &) = delete;
    SleepRecorder &operator=(const SleepRecorder &) = delete;

    /// The sleeps so far, in nanoseconds each.
    const std::vector<qint64> &sleeps() const { return asked; }
    void note(qint64 nanoseconds) { asked.push_back(nanoseconds); }

private:
    std::vector<qint64> asked;
};
