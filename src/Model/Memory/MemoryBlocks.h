/// \file
/// Blocks of memory of any size.
#pragma once

#include <cstddef>

namespace Halvard::Orv {

// Small blocks are the allocator's, larger ones a BlockPool's. The largest come from the
// system and go back to it as soon as they are freed: an allocator keeps some tens of
// megabytes in case they are wanted again, which for the arrays of a model they are not.
// Growing then moves pages, not bytes, and room that nothing was written to takes no
// memory.

/// Memory of any content. Null when there is none to be had.
///
/// \param block null, or a block from here, which keeps its bytes up to the smaller of
///        the two sizes, and is left as it is when null is returned.
/// \param oldBytes the size that the block was asked for with; 0 for null.
/// \param newBytes above 0.
void *resizeBlock(void *block, size_t oldBytes, size_t newBytes);

/// How large a block of `bytes` bytes becomes when it is full and nobody knows how much
/// more is to come.
size_t grownBytes(size_t bytes);

/// A block of zeros. Null when there is none to be had, or `bytes` is 0.
void *zeroedBlock(size_t bytes);

/// \param block null, or from here.
void freeBlock(void *block, size_t bytes);

} // namespace Halvard::Orv
