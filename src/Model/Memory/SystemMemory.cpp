#include "Memory/SystemMemory.h"

#include <QtCore/QtGlobal>

#ifdef Q_OS_LINUX
#include <sys/mman.h>

#include <cstdint>
#endif

namespace Halvard::Orv {

#ifdef Q_OS_LINUX

namespace {

/// What came from mmap() or mremap(), in large pages: touching fresh memory page by
/// page is a large part of loading a file.
void *inLargePages(void *mapped, size_t bytes)
{
    if (mapped == MAP_FAILED)
        return nullptr;
    madvise(mapped, bytes, MADV_HUGEPAGE); // may fail: so be it
    return mapped;
}

} // namespace

void *mapMemory(size_t bytes)
{
    return inLargePages(
        mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0), bytes);
}

void *remapMemory(void *memory, size_t oldBytes, size_t newBytes)
{
    return inLargePages(mremap(memory, oldBytes, newBytes, MREMAP_MAYMOVE), newBytes);
}

void unmapMemory(void *memory, size_t bytes)
{
    munmap(memory, bytes);
}

void emptyLargePages(char *begin, char *end)
{
    // Of x86-64, and of ARM with pages of 4 KiB. Elsewhere these are whole pages, too.
    constexpr std::uintptr_t LargePage = std::uintptr_t(2) << 20;
    const std::uintptr_t first =
        (reinterpret_cast<std::uintptr_t>(begin) + LargePage - 1) / LargePage * LargePage;
    const std::uintptr_t last = reinterpret_cast<std::uintptr_t>(end) / LargePage * LargePage;
    if (first < last)
        madvise(reinterpret_cast<void *>(first), last - first, MADV_DONTNEED);
}

#else

void *mapMemory(size_t)
{
    return nullptr;
}

void *remapMemory(void *, size_t, size_t)
{
    return nullptr;
}

void unmapMemory(void *, size_t) {}

void emptyLargePages(char *, char *) {}

#endif

} // namespace Halvard::Orv
