// Arrays of sizes whose memory comes from different places.
#include "Memory/GrowArray.h"

#include "Memory/ZeroedArray.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <numeric>
#include <vector>

using namespace Halvard::Orv;

#ifdef __SANITIZE_ADDRESS__
/// As without the sanitizer, memory that is not to be had is null.
extern "C" __attribute__((visibility("default"))) const char *__asan_default_options()
{
    return "allocator_may_return_null=1";
}
#endif

namespace {

/// Elements of 4 bytes: around 64 KiB, 1 MiB and 4 MiB, and far from them.
const std::size_t Counts[] = {1,       1000,    (1 << 14) - 1, 1 << 14, (1 << 14) + 1, 200'000,
                              1 << 18, 600'000, (1 << 20) - 1, 1 << 20, (1 << 20) + 1, 5 << 20};

GrowArray<std::uint32_t> counted(std::size_t count)
{
    GrowArray<std::uint32_t> array;
    array.resize(count);
    std::iota(array.data(), array.data() + count, 7u);
    return array;
}

/// How many of the first `count` elements are what counted() made them.
std::size_t countedElements(const std::uint32_t *elements, std::size_t count)
{
    std::size_t right = 0;
    for (std::size_t i = 0; i < count; ++i)
        right += elements[i] == 7u + i ? 1 : 0;
    return right;
}

TEST(GrowArrayTest, KeepsItsElementsFromAnySizeToAnyOther)
{
    for (const std::size_t from : Counts) {
        for (const std::size_t to : Counts) {
            GrowArray<std::uint32_t> array = counted(from);
            array.resize(to);
            array.shrink();
            EXPECT_EQ(array.size(), to);
            EXPECT_EQ(array.capacity(), to);
            const std::size_t common = std::min(from, to);
            EXPECT_EQ(countedElements(array.data(), common), common) << from << " to " << to;
            array.data()[to - 1] = 1; // is there
        }
    }
}

TEST(GrowArrayTest, GrowsElementByElement)
{
    GrowArray<std::uint32_t> array;
    for (std::uint32_t i = 0; i < 2500000; ++i)
        array.append(7 + i);
    EXPECT_EQ(countedElements(array.data(), array.size()), 2500000u);
    EXPECT_LT(array.capacity(), 2 * array.size()); // at most doubled
}

TEST(GrowArrayTest, GrowsBesideOthers)
{
    for (const std::size_t count : {30'000, 200'000, 400'000}) {
        GrowArray<std::uint32_t> first = counted(count);
        GrowArray<std::uint32_t> second = counted(count);
        first.resize(2 * count);
        std::fill_n(first.data() + count, count, 1u);
        EXPECT_EQ(countedElements(first.data(), count), count);
        EXPECT_EQ(countedElements(second.data(), count), count);
    }
}

TEST(GrowArrayTest, ReservesAndCommits)
{
    for (const std::size_t count : Counts) {
        GrowArray<std::uint32_t> array = counted(5);
        array.tryReserve(count + 5);
        EXPECT_GE(array.capacity(), count + 5);
        std::uint32_t *const room = array.reserveMore(count);
        EXPECT_EQ(room, array.data() + 5);
        std::iota(room, room + count, 12u);
        array.commit(count);
        EXPECT_EQ(countedElements(array.data(), array.size()), count + 5);
    }
}

TEST(GrowArrayTest, CanReserveNothingBeyondTheAddressSpace)
{
    GrowArray<std::uint32_t> array = counted(3);
    const std::uint32_t *const before = array.data();
    array.tryReserve(std::numeric_limits<std::size_t>::max() / 8);
    array.tryReserve(std::numeric_limits<std::size_t>::max() / 2);
    EXPECT_EQ(array.data(), before);
    EXPECT_EQ(countedElements(array.data(), 3), 3u);
}

TEST(GrowArrayTest, IsRecastWithItsMemory)
{
    for (const std::size_t count : Counts) {
        GrowArray<std::uint32_t> array = counted(count);
        const void *const memory = array.data();
        GrowArray<float> floats = std::move(array).recast<float>();
        EXPECT_EQ(array.data(), nullptr);
        EXPECT_EQ(array.size(), 0u);
        EXPECT_EQ(floats.data(), memory);
        EXPECT_EQ(floats.size(), count);
        const GrowArray<std::uint32_t> back = std::move(floats).recast<std::uint32_t>();
        EXPECT_EQ(countedElements(back.data(), count), count);
    }
}

TEST(GrowArrayTest, MovesWithoutCopying)
{
    GrowArray<std::uint32_t> array = counted(9);
    const void *const memory = array.data();
    GrowArray<std::uint32_t> other = counted(1 << 21);
    other = std::move(array);
    EXPECT_EQ(other.data(), memory);
    EXPECT_TRUE(array.isEmpty());
    EXPECT_EQ(countedElements(other.data(), other.size()), 9u);
}

TEST(ZeroedArrayTest, IsZeroInAllSizes)
{
    // While there is another block, what is given back is given out again.
    const GrowArray<std::uint32_t> other = counted(20'000);
    for (const std::size_t count : Counts) {
        GrowArray<std::uint32_t> used = counted(count);
        used = {};
        ZeroedArray<std::uint32_t> array(count);
        EXPECT_EQ(array.size(), count);
        EXPECT_EQ(std::count(array.data(), array.data() + count, 0u),
                  static_cast<std::ptrdiff_t>(count));
        GrowArray<std::uint32_t> rest = std::move(array).intoArray();
        rest.resize(2 * count);
        EXPECT_EQ(std::count(rest.data(), rest.data() + count, 0u),
                  static_cast<std::ptrdiff_t>(count));
    }
    EXPECT_EQ(ZeroedArray<std::uint32_t>(0).size(), 0u);
}

} // namespace
