/// \file
/// Scratch memory that starts as zeros.
#pragma once

#include "Memory/GrowArray.h"

#include <cstddef>
#include <new>
#include <type_traits>
#include <utility>

namespace Halvard::Orv {

/// A fixed number of elements, all zero at first. Large arrays are untouched pages
/// that are zero already, so nothing is spent on the parts that are never used.
/// Throws std::bad_alloc.
template <typename T>
class ZeroedArray
{
    static_assert(std::is_trivial_v<T>, "elements are bytes");

public:
    explicit ZeroedArray(size_t count)
    {
        if (count > static_cast<size_t>(-1) / sizeof(T))
            throw std::bad_alloc();
        auto *const block = static_cast<T *>(zeroedBlock(count * sizeof(T)));
        if (!block && count > 0)
            throw std::bad_alloc();
        _elements = GrowArray<T>::adopt(block, count);
    }

    /// The elements as an array for other use.
    GrowArray<T> intoArray() && { return std::move(_elements); }

    T *data() { return _elements.data(); }
    const T *data() const { return _elements.data(); }
    size_t size() const { return _elements.size(); }
    T &operator[](size_t i) { return _elements[i]; }
    const T &operator[](size_t i) const { return _elements[i]; }

private:
    GrowArray<T> _elements;
};

} // namespace Halvard::Orv
