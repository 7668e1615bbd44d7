#include "tests/support/little_memory.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <malloc.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

#if defined(__SANITIZE_ADDRESS__)
const bool HasRealMemory = false;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
const bool HasRealMemory = false;
#else
const bool HasRealMemory = true;
#endif
#else
const bool HasRealMemory = true;
#endif

const int NotLimited = 77;

size_t pagesInUse()
{
    unsigned long pages = 0;
    if (std::FILE *file = std::fopen("/proc/self/statm", "r")) {
        if (std::fscanf(file, "%lu", &pages) != 1)
            pages = 0;
        std::fclose(file);
    }
    return pages;
}

bool limitMemory(size_t more)
{
    malloc_trim(0);
    rlimit limit = {};
    limit.rlim_cur = pagesInUse() * static_cast<size_t>(sysconf(_SC_PAGESIZE)) + more;
    limit.rlim_max = limit.rlim_cur;
    if (setrlimit(RLIMIT_AS, &limit) != 0)
        return false;
    void *volatile tooMuch = std::malloc(more + 1);
    std::free(tooMuch);
    return tooMuch == nullptr;
}

[[noreturn]] void runLimited(size_t more, const std::function<std::string()> &run)
{
    if (!limitMemory(more))
        std::exit(NotLimited);
    const std::string failure = run();
    std::cerr << failure << std::endl;
    std::exit(failure.empty() ? EXIT_SUCCESS : EXIT_FAILURE);
}

bool endedWell(int status)
{
    const int code = WIFEXITED(status) ? WEXITSTATUS(status) : EXIT_FAILURE;
    if (code == NotLimited)
        std::cerr << "memory cannot be limited here" << std::endl;
    return code == EXIT_SUCCESS || code == NotLimited;
}

} // namespace

void inLittleMemory(int megabytes, const std::function<std::string()> &run)
{
    if (!HasRealMemory)
        return;
    EXPECT_EXIT(runLimited(static_cast<size_t>(megabytes) << 20, run), endedWell, "");
}
