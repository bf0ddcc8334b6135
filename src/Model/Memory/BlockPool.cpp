#include "Memory/BlockPool.h"

#include "Memory/SystemMemory.h"

#include <algorithm>
#include <iterator>
#include <new>

namespace Halvard::Orv {

namespace {

/// Asked for from the system at once.
constexpr size_t RegionBytes = 4 * BlockPool::LargestBlock;

/// Blocks from which on their large pages go back. Smaller ones come and go often, and a
/// page that comes again costs a tenth of a millisecond.
constexpr size_t RoomyBytes = size_t(1) << 20;

/// A multiple of what any type, and any vector instruction, wants.
size_t rounded(size_t bytes)
{
    constexpr size_t Alignment = 64;
    return (bytes + Alignment - 1) / Alignment * Alignment;
}

} // namespace

BlockPool::~BlockPool()
{
    releaseRegions();
}

void *BlockPool::allocate(size_t bytes)
{
    const std::lock_guard<std::mutex> lock(_mutex);
    const size_t size = rounded(bytes);
    const auto fits = [size](const Range &range) {
        return static_cast<size_t>(range.end - range.begin) >= size;
    };
    auto range = std::find_if(_free.begin(), _free.end(), fits);
    if (range == _free.end()) {
        if (!addRegion())
            return nullptr;
        range = std::find_if(_free.begin(), _free.end(), fits);
    }
    void *const block = range->begin;
    range->begin += size;
    if (range->begin == range->end)
        _free.erase(range);
    ++_blockCount;
    return block;
}

bool BlockPool::resizeInPlace(void *block, size_t oldBytes, size_t newBytes)
{
    const std::lock_guard<std::mutex> lock(_mutex);
    char *const begin = static_cast<char *>(block);
    char *const oldEnd = begin + rounded(oldBytes);
    char *const newEnd = begin + rounded(newBytes);
    if (newEnd < oldEnd) {
        giveBack({newEnd, oldEnd});
    } else if (newEnd > oldEnd) {
        const auto next = firstFreeBehind(oldEnd);
        if (next == _free.end() || next->begin != oldEnd || next->end < newEnd)
            return false;
        next->begin = newEnd;
        if (next->begin == next->end)
            _free.erase(next);
    }
    return true;
}

void BlockPool::free(void *block, size_t bytes)
{
    const std::lock_guard<std::mutex> lock(_mutex);
    char *const begin = static_cast<char *>(block);
    const Range room = giveBack({begin, begin + rounded(bytes)});
    if (--_blockCount == 0)
        releaseRegions();
    else if (bytes >= RoomyBytes)
        emptyLargePages(room.begin, room.end);
}

size_t BlockPool::heldBytes() const
{
    const std::lock_guard<std::mutex> lock(_mutex);
    return _regions.size() * RegionBytes;
}

/// The first free range that begins at `place` or behind it.
BlockPool::Ranges::iterator BlockPool::firstFreeBehind(const char *place)
{
    return std::lower_bound(
        _free.begin(), _free.end(), place,
        [](const Range &range, const char *sought) { return range.begin < sought; });
}

bool BlockPool::addRegion()
{
    char *const region = static_cast<char *>(mapMemory(RegionBytes));
    if (!region)
        return false;
    try {
        // There is at most one free range behind each block, and one at the begin of a
        // region: what gives memory back needs none.
        _free.reserve((_regions.size() + 1) * (RegionBytes / SmallestBlock + 1));
        _regions.push_back({region, region + RegionBytes});
    } catch (const std::bad_alloc &) {
        unmapMemory(region, RegionBytes);
        return false;
    }
    giveBack(_regions.back());
    return true;
}

/// Returns all the free room that `range` is part of then.
BlockPool::Range BlockPool::giveBack(Range range)
{
    auto next = firstFreeBehind(range.begin);
    if (next != _free.end() && next->begin == range.end) {
        range.end = next->end;
        next = _free.erase(next);
    }
    if (next != _free.begin() && std::prev(next)->end == range.begin) {
        std::prev(next)->end = range.end;
        return *std::prev(next);
    }
    return *_free.insert(next, range);
}

void BlockPool::releaseRegions()
{
    for (const Range &region : _regions)
        unmapMemory(region.begin, RegionBytes);
    _regions.clear();
    _free.clear();
}

} // namespace Halvard::Orv
