/// \file
/// What all fuzz targets share: the bytes of an input as numbers, and a way to fail.
#pragma once

#include <QtCore/QByteArray>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <type_traits>

namespace OrvFuzz {

/// Says what differs or does not hold, and aborts: libFuzzer then keeps the input.
[[noreturn]] void fail(const std::string &what);

/// Aborts with `what` unless `condition` holds.
inline void require(bool condition, const char *what)
{
    if (!condition)
        fail(what);
}

/// The input as it is, without a copy; lives no longer than the input.
inline QByteArray asText(const std::uint8_t *data, std::size_t size)
{
    return QByteArray::fromRawData(reinterpret_cast<const char *>(data), static_cast<int>(size));
}

/// A number that any change of the text changes: for choices that should not take
/// bytes from a text, so that every OBJ or MTL file is an input as it is.
unsigned choiceOf(const QByteArray &text);

/// Takes numbers from the front of an input; zeros when it has ended.
class Input
{
public:
    Input(const std::uint8_t *data, std::size_t size) : _next(data), _end(data + size) {}

    bool isAtEnd() const { return _next == _end; }
    std::size_t size() const { return static_cast<std::size_t>(_end - _next); }

    template <typename Number>
    Number take()
    {
        static_assert(std::is_trivially_copyable_v<Number>, "made of any bytes");
        Number number{};
        const std::size_t count = sizeof number < size() ? sizeof number : size();
        if (count > 0)
            std::memcpy(&number, _next, count);
        _next += count;
        return number;
    }

    unsigned byte() { return take<std::uint8_t>(); }
    /// 0 to `count` - 1.
    unsigned below(unsigned count) { return byte() % count; }
    bool flag() { return byte() & 1u; }

private:
    const std::uint8_t *_next;
    const std::uint8_t *_end;
};

} // namespace OrvFuzz
