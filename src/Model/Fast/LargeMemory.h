/// \file
/// Memory of many megabytes.
#pragma once

#include "GrowArray.h"

#include <cstddef>

namespace Halvard::Orv {

/// Asks the system to back large memory with large pages. Touching fresh memory
/// page by page is otherwise a large part of loading a file. Small memory, and a
/// system that has no large pages, are left alone.
///
/// \param memory a block of its own from the allocator, with all its bytes.
void preferLargePages(void *memory, size_t bytes);

/// Makes room for `count` more elements in an array that may become large.
template <typename T>
T *reserveLarge(GrowArray<T> &array, size_t count)
{
    T *const room = array.reserveMore(count);
    preferLargePages(array.data(), (array.size() + count) * sizeof(T));
    return room;
}

} // namespace Halvard::Orv
