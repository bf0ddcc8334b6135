#include "Memory/MemoryBlocks.h"

#include "Memory/BlockPool.h"
#include "Memory/SystemMemory.h"

#include <QtCore/QtGlobal>

#include <algorithm>
#include <cstdlib>
#include <cstring>

#if defined(__SANITIZE_ADDRESS__)
#define ORV_ADDRESS_SANITIZER
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define ORV_ADDRESS_SANITIZER
#endif
#endif

namespace Halvard::Orv {

namespace {

/// Where a block of some size comes from.
enum class Source
{
    Allocator,
    Pool,
    System
};

Source sourceOf(size_t bytes)
{
#if defined(Q_OS_LINUX) && !defined(ORV_ADDRESS_SANITIZER)
    if (bytes >= BlockPool::LargestBlock)
        return Source::System;
    if (bytes >= BlockPool::SmallestBlock)
        return Source::Pool;
#else
    // The address sanitizer sees the ends of the allocator's blocks only.
    Q_UNUSED(bytes)
#endif
    return Source::Allocator;
}

BlockPool &pool()
{
    // Never destroyed: arrays may live as long as the process.
    static BlockPool *const instance = new BlockPool;
    return *instance;
}

void *newBlock(size_t bytes)
{
    switch (sourceOf(bytes)) {
    case Source::Pool:
        return pool().allocate(bytes);
    case Source::System:
        return mapMemory(bytes);
    default:
        return std::malloc(bytes);
    }
}

void *movedBlock(void *block, size_t oldBytes, size_t newBytes)
{
    void *const moved = newBlock(newBytes);
    if (moved && block) {
        std::memcpy(moved, block, std::min(oldBytes, newBytes));
        freeBlock(block, oldBytes);
    }
    return moved;
}

} // namespace

void *resizeBlock(void *block, size_t oldBytes, size_t newBytes)
{
    const Source source = sourceOf(newBytes);
    if (!block || sourceOf(oldBytes) != source)
        return movedBlock(block, oldBytes, newBytes);
    switch (source) {
    case Source::Pool:
        if (pool().resizeInPlace(block, oldBytes, newBytes))
            return block;
        return movedBlock(block, oldBytes, newBytes);
    case Source::System:
        return remapMemory(block, oldBytes, newBytes);
    default:
        return std::realloc(block, newBytes);
    }
}

size_t grownBytes(size_t bytes)
{
    // What a large block of the pool has and does not need takes memory from others.
    constexpr size_t Large = size_t(1) << 20;
    return bytes + (bytes >= Large && sourceOf(bytes) == Source::Pool ? bytes / 4 : bytes);
}

void *zeroedBlock(size_t bytes)
{
    if (bytes == 0)
        return nullptr;
    switch (sourceOf(bytes)) {
    case Source::Pool: {
        void *const block = pool().allocate(bytes);
        return block ? std::memset(block, 0, bytes) : nullptr;
    }
    case Source::System:
        return mapMemory(bytes);
    default:
        return std::calloc(1, bytes);
    }
}

void freeBlock(void *block, size_t bytes)
{
    if (!block)
        return;
    switch (sourceOf(bytes)) {
    case Source::Pool:
        return pool().free(block, bytes);
    case Source::System:
        return unmapMemory(block, bytes);
    default:
        return std::free(block);
    }
}

} // namespace Halvard::Orv
