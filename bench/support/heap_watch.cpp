#include "bench/support/heap_watch.h"

#include <malloc.h>

#include <algorithm>
#include <cerrno>
#include <ctime>

// The names are the C library's.
// NOLINTBEGIN(bugprone-reserved-identifier, readability-inconsistent-declaration-parameter-name)

// Its own functions, under the names by which others may call them.
extern "C" {
void *__libc_malloc(size_t size);
void *__libc_calloc(size_t count, size_t size);
void *__libc_realloc(void *memory, size_t size);
void *__libc_memalign(size_t alignment, size_t size);
void __libc_free(void *memory);
int __nanosleep(const timespec *time, timespec *left);
}

namespace
{

HeapUse use = {0, 0, 0};
long long sleeps = 0;

void *taken(void *memory)
{
    if (memory == nullptr)
        return nullptr;
    ++use.allocations;
    use.bytes += static_cast<long long>(malloc_usable_size(memory));
    use.peak = std::max(use.peak, use.bytes);
    return memory;
}

void givenBack(void *memory)
{
    use.bytes -= static_cast<long long>(malloc_usable_size(memory));
}

} // namespace

HeapUse heapUse()
{
    return use;
}

void restartPeak()
{
    use.peak = use.bytes;
}

long long sleepCount()
{
    return sleeps;
}

extern "C" {

void *malloc(size_t size)
{
    return taken(__libc_malloc(size));
}

void *calloc(size_t count, size_t size)
{
    return taken(__libc_calloc(count, size));
}

void *realloc(void *memory, size_t size)
{
    const size_t before = malloc_usable_size(memory);
    void *moved = __libc_realloc(memory, size);
    if (moved != nullptr)
        use.bytes -= static_cast<long long>(before);
    return taken(moved);
}

void *memalign(size_t alignment, size_t size)
{
    return taken(__libc_memalign(alignment, size));
}

void *aligned_alloc(size_t alignment, size_t size)
{
    return memalign(alignment, size);
}

int posix_memalign(void **memory, size_t alignment, size_t size)
{
    *memory = memalign(alignment, size);
    return *memory == nullptr ? ENOMEM : 0;
}

void free(void *memory)
{
    givenBack(memory);
    __libc_free(memory);
}

int nanosleep(const timespec *time, timespec *left)
{
    ++sleeps;
    return __nanosleep(time, left);
}
}

// NOLINTEND(bugprone-reserved-identifier, readability-inconsistent-declaration-parameter-name)
