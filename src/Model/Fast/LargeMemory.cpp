#include "LargeMemory.h"

#include <QtCore/QtGlobal>

#include <algorithm>
#include <cstdlib>
#include <cstring>

#ifdef Q_OS_LINUX
#include <sys/mman.h>
#endif

namespace Halvard::Orv {

namespace {

#ifdef Q_OS_LINUX

/// Below, asking the system costs more than the allocator keeps back.
constexpr size_t Large = size_t(1) << 20;

/// Touching fresh memory page by page is a large part of loading a file; large pages
/// make it a small one. Blocks of less would waste much of their last page.
constexpr size_t WorthLargePages = size_t(4) << 20;

bool isLarge(size_t bytes)
{
    return bytes >= Large;
}

/// As it comes from mmap() and mremap(): the block, or null.
void *prepared(void *mapped, size_t bytes)
{
    if (mapped == MAP_FAILED)
        return nullptr;
    if (bytes >= WorthLargePages)
        madvise(mapped, bytes, MADV_HUGEPAGE); // may fail: so be it
    return mapped;
}

void *mapBlock(size_t bytes)
{
    const int protection = PROT_READ | PROT_WRITE;
    return prepared(mmap(nullptr, bytes, protection, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0), bytes);
}

void *remapBlock(void *block, size_t oldBytes, size_t newBytes)
{
    return prepared(mremap(block, oldBytes, newBytes, MREMAP_MAYMOVE), newBytes);
}

void unmapBlock(void *block, size_t bytes)
{
    munmap(block, bytes);
}

#else

bool isLarge(size_t)
{
    return false;
}

void *mapBlock(size_t)
{
    return nullptr;
}

void *remapBlock(void *, size_t, size_t)
{
    return nullptr;
}

void unmapBlock(void *, size_t) {}

#endif

} // namespace

void *resizeBlock(void *block, size_t oldBytes, size_t newBytes)
{
    const bool wasLarge = block && isLarge(oldBytes);
    if (wasLarge && isLarge(newBytes))
        return remapBlock(block, oldBytes, newBytes);
    if (!wasLarge && !isLarge(newBytes))
        return std::realloc(block, newBytes);
    void *const moved = isLarge(newBytes) ? mapBlock(newBytes) : std::malloc(newBytes);
    if (moved && block) {
        std::memcpy(moved, block, std::min(oldBytes, newBytes));
        freeBlock(block, oldBytes);
    }
    return moved;
}

void *zeroedBlock(size_t bytes)
{
    if (bytes == 0)
        return nullptr;
    return isLarge(bytes) ? mapBlock(bytes) : std::calloc(1, bytes);
}

void freeBlock(void *block, size_t bytes)
{
    if (block && isLarge(bytes))
        unmapBlock(block, bytes);
    else
        std::free(block);
}

} // namespace Halvard::Orv
