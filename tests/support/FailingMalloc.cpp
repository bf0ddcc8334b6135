#include "support/FailingMalloc.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>

#if defined(__GLIBC__) && !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
#define ORV_REPLACES_MALLOC
#endif

namespace OrvTest {

namespace {

// Plain data: this is used before and after anything is constructed.
struct State
{
    bool armed;
    long remaining;
    long failures;
    size_t count;
    std::array<void *, 4096> blocks;
};

thread_local State state __attribute__((tls_model("initial-exec")));

[[maybe_unused]] bool refuses(size_t bytes)
{
    if (!state.armed || bytes < FailingMalloc::Large)
        return false;
    if (state.remaining-- > 0)
        return false;
    ++state.failures;
    errno = ENOMEM;
    return true;
}

[[maybe_unused]] void *noted(void *block, size_t bytes)
{
    if (state.armed && block && bytes >= FailingMalloc::Large && state.count < state.blocks.size())
        state.blocks[state.count++] = block;
    return block;
}

[[maybe_unused]] void forget(void *block)
{
    const auto end = state.blocks.begin() + state.count;
    const auto found = std::find(state.blocks.begin(), end, block);
    if (block && found != end)
        *found = state.blocks[--state.count];
}

} // namespace

bool FailingMalloc::isPossible()
{
#ifdef ORV_REPLACES_MALLOC
    return true;
#else
    return false;
#endif
}

FailingMalloc::FailingMalloc(long succeeding)
{
    state.remaining = succeeding;
    state.failures = 0;
    state.count = 0;
    state.armed = true;
}

FailingMalloc::~FailingMalloc()
{
    state.armed = false;
}

long FailingMalloc::failures()
{
    return state.failures;
}

long FailingMalloc::blocksLeft()
{
    return static_cast<long>(state.count);
}

} // namespace OrvTest

#ifdef ORV_REPLACES_MALLOC

using namespace OrvTest;

extern "C" {

void *__libc_malloc(size_t);
void *__libc_calloc(size_t, size_t);
void *__libc_realloc(void *, size_t);
void __libc_free(void *);

void *malloc(size_t bytes)
{
    return refuses(bytes) ? nullptr : noted(__libc_malloc(bytes), bytes);
}

void *calloc(size_t count, size_t bytes)
{
    return refuses(count * bytes) ? nullptr : noted(__libc_calloc(count, bytes), count * bytes);
}

void *realloc(void *block, size_t bytes)
{
    if (refuses(bytes))
        return nullptr;
    void *const moved = __libc_realloc(block, bytes);
    if (moved || bytes == 0)
        forget(block);
    return noted(moved, bytes);
}

void free(void *block)
{
    if (state.count > 0)
        forget(block);
    __libc_free(block);
}

} // extern "C"

#endif
