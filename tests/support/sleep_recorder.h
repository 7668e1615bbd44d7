#pragma once

#include <QtGlobal>

#include <vector>

/// While one lives, nothing sleeps in this program. What nanosleep() was asked for is noted; sleep() and
/// usleep(), with which SQLite waits on a locked database, just return.
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
    /// What sleep() and usleep() were asked for, in microseconds altogether.
    qint64 waits() const { return waited; }
    void noteWait(qint64 microseconds) { waited += microseconds; }

private:
    std::vector<qint64> asked;
    qint64 waited;
    SleepRecorder *outer;
};
