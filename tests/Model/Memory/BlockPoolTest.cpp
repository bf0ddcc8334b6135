// Blocks cut from regions: none overlaps another, what is given back is used again, and
// all of it goes back in the end.
#include "Memory/BlockPool.h"

#include "support/RandomRings.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <thread>
#include <vector>

using namespace Halvard::Orv;
using namespace OrvTest;

namespace {

constexpr std::size_t KiB = 1024;
constexpr std::size_t Smallest = BlockPool::SmallestBlock;
constexpr std::size_t Largest = BlockPool::LargestBlock;

/// A block, and the byte that it is filled with.
struct Block
{
    char *memory;
    std::size_t bytes;
    char content;
};

bool isIntact(const Block &block)
{
    return std::all_of(block.memory, block.memory + block.bytes,
                       [&](char byte) { return byte == block.content; });
}

TEST(BlockPoolTest, HoldsNothingWithoutBlocks)
{
    BlockPool pool;
    EXPECT_EQ(pool.heldBytes(), 0u);
    void *const first = pool.allocate(Smallest);
    void *const second = pool.allocate(Largest);
    ASSERT_TRUE(first && second);
    EXPECT_GE(pool.heldBytes(), Smallest + Largest);
    pool.free(first, Smallest);
    EXPECT_GE(pool.heldBytes(), Largest);
    pool.free(second, Largest);
    EXPECT_EQ(pool.heldBytes(), 0u);
}

TEST(BlockPoolTest, UsesTheLowestRoomFirst)
{
    BlockPool pool;
    char *const first = static_cast<char *>(pool.allocate(100 * KiB));
    char *const second = static_cast<char *>(pool.allocate(200 * KiB));
    char *const third = static_cast<char *>(pool.allocate(300 * KiB));
    EXPECT_EQ(second, first + 100 * KiB);
    EXPECT_EQ(third, second + 200 * KiB);
    pool.free(first, 100 * KiB);
    pool.free(second, 200 * KiB);
    // The two are one room now, in which 300 KiB fit exactly.
    EXPECT_EQ(pool.allocate(300 * KiB), first);
    EXPECT_EQ(pool.allocate(64 * KiB), third + 300 * KiB);
}

TEST(BlockPoolTest, JoinsRoomOnBothSides)
{
    BlockPool pool;
    char *const first = static_cast<char *>(pool.allocate(Smallest));
    void *const second = pool.allocate(Smallest);
    void *const third = pool.allocate(Smallest);
    void *const last = pool.allocate(Smallest);
    pool.free(first, Smallest);
    pool.free(third, Smallest);
    pool.free(second, Smallest);
    EXPECT_EQ(pool.allocate(3 * Smallest), first);
    EXPECT_TRUE(last);
}

TEST(BlockPoolTest, JoinsRoomBehindABlockThatFittedExactly)
{
    BlockPool pool;
    void *const first = pool.allocate(Smallest);
    void *const second = pool.allocate(Smallest);
    void *const third = pool.allocate(Smallest);
    pool.free(second, Smallest);
    EXPECT_EQ(pool.allocate(Smallest), second);
    pool.free(third, Smallest);
    EXPECT_EQ(pool.allocate(2 * Smallest), third); // and what was behind it
    EXPECT_TRUE(first);
}

TEST(BlockPoolTest, GrowsWhereThereIsRoomOnly)
{
    BlockPool pool;
    char *const first = static_cast<char *>(pool.allocate(100 * KiB));
    EXPECT_TRUE(pool.resizeInPlace(first, 100 * KiB, 150 * KiB));
    char *const second = static_cast<char *>(pool.allocate(100 * KiB));
    EXPECT_EQ(second, first + 150 * KiB);
    EXPECT_FALSE(pool.resizeInPlace(first, 150 * KiB, 151 * KiB));
    EXPECT_TRUE(pool.resizeInPlace(first, 150 * KiB, 70 * KiB));
    EXPECT_FALSE(pool.resizeInPlace(first, 70 * KiB, 151 * KiB));
    EXPECT_TRUE(pool.resizeInPlace(first, 70 * KiB, 150 * KiB));
    EXPECT_TRUE(pool.resizeInPlace(first, 150 * KiB, 150 * KiB));
    // Up to the very end of what is held, and not beyond.
    const std::size_t rest = pool.heldBytes() - 150 * KiB;
    std::size_t bytes = 100 * KiB;
    for (const std::size_t larger : {Largest, rest, rest + 1}) {
        const bool fits = larger <= rest;
        EXPECT_EQ(pool.resizeInPlace(second, bytes, larger), fits) << larger;
        bytes = fits ? larger : bytes;
    }
}

TEST(BlockPoolTest, EmptiesLargePagesThatALargeBlockLeaves)
{
    constexpr std::size_t LargePage = 2048 * KiB;
    BlockPool pool;
    char *const before = static_cast<char *>(pool.allocate(Smallest));
    char *const large = static_cast<char *>(pool.allocate(Largest));
    char *const after = static_cast<char *>(pool.allocate(Smallest));
    std::memset(before, 1, Smallest);
    std::memset(large, 2, Largest);
    std::memset(after, 3, Smallest);
    pool.free(large, Largest);
    EXPECT_TRUE(isIntact({before, Smallest, 1}));
    EXPECT_TRUE(isIntact({after, Smallest, 3}));
    // A page that has gone to the system comes back as zeros. In four MiB lies one page as
    // a whole at least.
    ASSERT_EQ(pool.allocate(Largest), large);
    const auto zeros = static_cast<std::size_t>(std::count(large, large + Largest, 0));
    EXPECT_GE(zeros, LargePage);
    EXPECT_EQ(zeros % LargePage, 0u);
}

TEST(BlockPoolTest, BlocksAreAlignedForEverything)
{
    BlockPool pool;
    for (std::size_t bytes = Smallest; bytes < Smallest + 130; bytes += 13) {
        const auto address = reinterpret_cast<std::uintptr_t>(pool.allocate(bytes));
        EXPECT_EQ(address % 64, 0u) << bytes;
    }
}

/// Many blocks come, change their size and go, each filled with a byte of its own.
void useAtRandom(BlockPool &pool, std::uint32_t seed)
{
    Dice dice(seed);
    std::vector<Block> blocks;
    const auto size = [&] {
        const int kib = dice.below(4) == 0 ? dice.below(4096 - 64) : dice.below(400);
        return Smallest + static_cast<std::size_t>(kib) * KiB;
    };
    for (int step = 0; step < 600; ++step) {
        const int choice = dice.below(3);
        if (choice == 0 || blocks.empty()) {
            const std::size_t bytes = size();
            Block block = {static_cast<char *>(pool.allocate(bytes)), bytes,
                           static_cast<char>(step)};
            ASSERT_TRUE(block.memory);
            std::memset(block.memory, block.content, bytes);
            blocks.push_back(block);
            continue;
        }
        Block &block =
            blocks[static_cast<std::size_t>(dice.below(static_cast<int>(blocks.size())))];
        ASSERT_TRUE(isIntact(block)) << "step " << step << " of seed " << seed;
        if (choice == 1) {
            const std::size_t bytes = size();
            if (pool.resizeInPlace(block.memory, block.bytes, bytes)) {
                block.bytes = std::min(block.bytes, bytes);
                ASSERT_TRUE(isIntact(block)) << "step " << step << " of seed " << seed;
                block.bytes = bytes;
                std::memset(block.memory, block.content, bytes);
            }
        } else {
            pool.free(block.memory, block.bytes);
            block = blocks.back();
            blocks.pop_back();
        }
    }
    for (const Block &block : blocks) {
        EXPECT_TRUE(isIntact(block));
        pool.free(block.memory, block.bytes);
    }
}

TEST(BlockPoolTest, BlocksNeverOverlap)
{
    BlockPool pool;
    for (const std::uint32_t seed : {1u, 2u, 3u})
        useAtRandom(pool, seed);
    EXPECT_EQ(pool.heldBytes(), 0u);
}

TEST(BlockPoolTest, ServesManyThreads)
{
    BlockPool pool;
    std::vector<std::thread> threads;
    for (std::uint32_t seed = 10; seed < 14; ++seed)
        threads.emplace_back([&pool, seed] { useAtRandom(pool, seed); });
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(pool.heldBytes(), 0u);
}

} // namespace
