/// \file
/// Scratch memory that starts as zeros.
#pragma once

#include "LargeMemory.h"

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <new>
#include <type_traits>

namespace Halvard::Orv {

/// A fixed number of elements, all zero at first. Large arrays come from the
/// system as untouched pages that are zero already, so nothing is spent on the
/// parts that are never used. Throws std::bad_alloc.
template <typename T>
class ZeroedArray
{
    static_assert(std::is_trivial_v<T>, "elements are bytes");

public:
    explicit ZeroedArray(size_t count)
        : _data(static_cast<T *>(std::calloc(count, sizeof(T)))), _size(count)
    {
        if (!_data && count > 0)
            throw std::bad_alloc();
        preferLargePages(_data.get(), count * sizeof(T));
    }

    T *data() { return _data.get(); }
    const T *data() const { return _data.get(); }
    size_t size() const { return _size; }
    T &operator[](size_t i) { return _data.get()[i]; }
    const T &operator[](size_t i) const { return _data.get()[i]; }

private:
    struct Free
    {
        void operator()(T *data) const { std::free(data); }
    };

    std::unique_ptr<T, Free> _data;
    size_t _size;
};

} // namespace Halvard::Orv
