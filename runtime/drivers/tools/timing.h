#pragma once

// Drivers built on earlier headers find the diagnostics here.
#include "drivers/tools/diagnostics.h"

#include <QtGlobal>

/// \file
/// Sleeping, time and processes.

/// Sleeps for \a milliseconds, signals notwithstanding; 0 returns without entering the kernel. The
/// nanoseconds are counted modulo 2^32, so 4294 is the maximum of an exact sleep (5000 sleeps 0.705 s).
void HRSleep(unsigned long milliseconds);

/// Milliseconds of the monotonic clock, which begins with the start of the system and does not jump.
qint64 CurrentMSecsSinceBoot();

/// Whether a process has the id \a pid, also one that belongs to another user. False for a number that is no
/// process id of the system.
bool ProcessIsRunning(qint64 pid);
