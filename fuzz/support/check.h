#pragma once

#include <cstdio>
#include <cstdlib>

/// Stops the run, as a crash does, when the driver broke a promise on this input.
#define FUZZ_CHECK(condition)                                                                                \
    ((condition) ? static_cast<void>(0) : fuzz::failCheck(#condition, __FILE__, __LINE__))

namespace fuzz
{

[[noreturn]] inline void failCheck(const char *condition, const char *file, int line)
{
    std::fprintf(stderr, "%s:%d: not true: %s\n", file, line, condition);
    std::abort();
}

} // namespace fuzz
