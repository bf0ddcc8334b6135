/// \file
/// A plain array that grows cheaply.
#pragma once

#include "Memory/MemoryBlocks.h"

#include <algorithm>
#include <cstddef>
#include <new>
#include <type_traits>
#include <utility>

namespace Halvard::Orv {

/// Elements in one block of memory.
///
/// Large blocks are moved by remapping their pages, not by copying, and room that
/// was never written takes no memory: growing by doubling costs what is used, no
/// more. New elements are uninitialised. Throws std::bad_alloc.
template <typename T>
class GrowArray
{
    static_assert(std::is_trivially_copyable_v<T>, "elements are moved as bytes");

public:
    GrowArray() = default;
    ~GrowArray() { freeBlock(_data, _capacity * sizeof(T)); }
    GrowArray(GrowArray &&other) noexcept { swap(other); }
    GrowArray &operator=(GrowArray &&other) noexcept
    {
        GrowArray taken(std::move(other));
        swap(taken);
        return *this;
    }
    GrowArray(const GrowArray &) = delete;
    GrowArray &operator=(const GrowArray &) = delete;

    /// \param elements a block of memory with room for `count` elements exactly, which
    ///        is the array's from now on.
    static GrowArray adopt(T *elements, size_t count)
    {
        GrowArray array;
        array._data = elements;
        array._size = array._capacity = count;
        return array;
    }

    T *data() { return _data; }
    const T *data() const { return _data; }
    size_t size() const { return _size; }
    bool isEmpty() const { return _size == 0; }
    T &operator[](size_t i) { return _data[i]; }
    const T &operator[](size_t i) const { return _data[i]; }

    /// Makes room for `count` more elements and returns where they go; commit()
    /// makes those that were written part of the array.
    T *reserveMore(size_t count)
    {
        if (_capacity - _size < count)
            reallocate(std::max(_size + count, grownBytes(_capacity * sizeof(T)) / sizeof(T)));
        return _data + _size;
    }
    void commit(size_t count) { _size += count; }

    /// Makes room for `count` elements in all, so that growing up to there moves
    /// nothing. Does nothing where so much memory is not to be had.
    void tryReserve(size_t count)
    {
        if (count <= _capacity || count > static_cast<size_t>(-1) / sizeof(T))
            return;
        if (void *moved = resizeBlock(_data, _capacity * sizeof(T), count * sizeof(T)))
            take(moved, count);
    }

    size_t capacity() const { return _capacity; }

    void append(T value)
    {
        *reserveMore(1) = value;
        ++_size;
    }

    void resize(size_t count)
    {
        if (count > _capacity)
            reallocate(count);
        _size = count;
    }

    /// The same memory as elements of another type, which divides this one.
    template <typename U>
    GrowArray<U> recast() &&
    {
        static_assert(sizeof(T) % sizeof(U) == 0 && alignof(T) % alignof(U) == 0);
        constexpr size_t parts = sizeof(T) / sizeof(U);
        GrowArray<U> other;
        other._data = reinterpret_cast<U *>(std::exchange(_data, nullptr));
        other._size = parts * std::exchange(_size, 0);
        other._capacity = parts * std::exchange(_capacity, 0);
        return other;
    }

    /// Gives back the room beyond the elements.
    void shrink()
    {
        if (_size == 0)
            *this = GrowArray();
        else if (_size < _capacity)
            reallocate(_size);
    }

private:
    template <typename U>
    friend class GrowArray;

    void swap(GrowArray &other) noexcept
    {
        std::swap(_data, other._data);
        std::swap(_size, other._size);
        std::swap(_capacity, other._capacity);
    }

    void reallocate(size_t capacity)
    {
        if (capacity > static_cast<size_t>(-1) / sizeof(T))
            throw std::bad_alloc();
        void *moved = resizeBlock(_data, _capacity * sizeof(T), capacity * sizeof(T));
        if (!moved)
            throw std::bad_alloc();
        take(moved, capacity);
    }

    void take(void *block, size_t capacity)
    {
        _data = static_cast<T *>(block);
        _capacity = capacity;
    }

    T *_data = nullptr;
    size_t _size = 0;
    size_t _capacity = 0;
};

} // namespace Halvard::Orv
