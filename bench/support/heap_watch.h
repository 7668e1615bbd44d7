#pragma once

#include <cstddef>

/// What a program that links heap_watch.cpp asks of the heap and of the clock. Its own malloc() and
/// nanosleep() take the place of the C library's, which they call.

struct HeapUse {
    long long allocations; ///< calls that gave memory
    long long bytes;       ///< in use now
    long long peak;        ///< the most that was in use since restartPeak()
};

HeapUse heapUse();
void restartPeak();

/// Calls of nanosleep(), whatever the time.
long long sleepCount();
