#pragma once

#include "kit/process/skipped_time.h"

#include <vector>

/// While one lives, nothing sleeps in this program, and what it was to sleep is noted. In seconds and
/// microseconds SQLite waits on a locked database.
class SleepRecorder : public kit::SkippedTime
{
public:
    SleepRecorder() : waited(0) {}

    /// What nanosleep() was asked for so far, in nanoseconds each.
    const std::vector<qint64> &sleeps() const { return asked; }
    void note(qint64 nanoseconds) override { asked.push_back(nanoseconds); }
    /// What sleep() and usleep() were asked for, in microseconds altogether.
    qint64 waits() const { return waited; }
    void noteOther(qint64 nanoseconds) override { waited += nanoseconds / 1000; }

private:
    std::vector<qint64> asked;
    qint64 waited;
};
