/// \file
/// Memory from the system itself, in large pages where it has them.
#pragma once

#include <cstddef>

namespace Halvard::Orv {

// Zeros at first; pages that nothing was written to take no memory. Sizes need not be
// whole pages. Null when there is none to be had; always null except on Linux.

void *mapMemory(size_t bytes);

/// Moves pages, not bytes. The memory is left as it is when null is returned.
void *remapMemory(void *memory, size_t oldBytes, size_t newBytes);

void unmapMemory(void *memory, size_t bytes);

/// Gives back the large pages that lie in [`begin`, `end`) as a whole, but not their
/// addresses: they are zeros from now on, and take memory when they are written to.
void emptyLargePages(char *begin, char *end);

} // namespace Halvard::Orv
