/// \file
/// Blocks of memory cut from large pages.
#pragma once

#include <cstddef>
#include <mutex>
#include <vector>

namespace Halvard::Orv {

/// Hands out blocks of some hundred kilobytes.
///
/// Fresh memory is what loading a file of a few megabytes waits for most, and in large
/// pages it costs an eighth. No array of such a file fills a large page, but all of them
/// together fill a few, the lowest first; what one array gives back is the next one's.
/// Large pages that a large block leaves empty go back to the system, and everything does
/// when the last block is back.
///
/// For any number of threads.
class BlockPool
{
public:
    static constexpr size_t SmallestBlock = size_t(64) << 10;
    static constexpr size_t LargestBlock = size_t(4) << 20;

    BlockPool() = default;
    ~BlockPool();
    BlockPool(const BlockPool &) = delete;
    BlockPool &operator=(const BlockPool &) = delete;

    /// Memory of any content, aligned for all types; null when there is none to be had.
    /// \param bytes from SmallestBlock to LargestBlock.
    void *allocate(size_t bytes);

    /// Whether the block now has another size, at the same place. It has not when there
    /// is no room to grow behind it.
    /// \param newBytes from SmallestBlock to LargestBlock.
    bool resizeInPlace(void *block, size_t oldBytes, size_t newBytes);

    /// \param bytes the block's size.
    void free(void *block, size_t bytes);

    /// Memory held from the system.
    size_t heldBytes() const;

private:
    struct Range
    {
        char *begin;
        char *end;
    };
    using Ranges = std::vector<Range>;

    Ranges::iterator firstFreeBehind(const char *place);
    bool addRegion();
    Range giveBack(Range range);
    void releaseRegions();

    mutable std::mutex _mutex;
    Ranges _regions;
    Ranges _free; ///< in the order of addresses; none touches another
    size_t _blockCount = 0;
};

} // namespace Halvard::Orv
