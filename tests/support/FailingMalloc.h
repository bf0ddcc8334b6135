/// \file
/// Memory that ends.
#pragma once

#include <cstddef>

namespace OrvTest {

/// Lets large allocations of this thread fail while it lives, by taking the place of
/// malloc() and its kin.
class FailingMalloc
{
public:
    /// Blocks from this size on are counted, and fail.
    static constexpr size_t Large = 8192;

    /// False where the allocator cannot be replaced: under a sanitizer, and without
    /// glibc.
    static bool isPossible();

    /// \param succeeding as many large blocks are still to be had; all later ones fail.
    explicit FailingMalloc(long succeeding);
    ~FailingMalloc();
    FailingMalloc(const FailingMalloc &) = delete;
    FailingMalloc &operator=(const FailingMalloc &) = delete;

    /// How many allocations have failed.
    static long failures();
    /// How many of the large blocks given out since the object was made are not freed.
    static long blocksLeft();
};

} // namespace OrvTest
