/// \file
/// Numbers that fall anywhere, the same in every run.
#pragma once

#include <cstddef>
#include <cstdint>

namespace Halvard::Orv {

/// The linear congruential generator of W. H. Press et al., "Numerical Recipes" (1992).
/// Only the speed of a search depends on its numbers.
class QuickRandom
{
public:
    /// Uniform in 0 to 2^24 - 1: the high bits, since the low ones repeat after a few.
    std::uint32_t next()
    {
        _state = 1664525u * _state + 1013904223u;
        return _state >> 8;
    }

private:
    std::uint32_t _state = 1;
};

/// One number of each `step` from 0 up to but not including `count`.
///
/// It lies anywhere within the step: every 64th corner of a zigzag would be on the same
/// side, and tell nothing of the other.
class SampledNumbers
{
public:
    SampledNumbers(std::ptrdiff_t step, std::ptrdiff_t count) : _step(step), _count(count)
    {
        choose();
    }

    bool isAtEnd() const { return _number >= _count; }
    std::ptrdiff_t operator*() const { return _number; }

    void operator++()
    {
        _first += _step;
        choose();
    }

private:
    void choose()
    {
        _number = _first;
        if (_step > 1)
            _number += static_cast<std::ptrdiff_t>(_random.next()) % _step;
    }

    std::ptrdiff_t _step;
    std::ptrdiff_t _count;
    std::ptrdiff_t _first = 0;
    std::ptrdiff_t _number = 0;
    QuickRandom _random;
};

/// Calls `look(number)` for SampledNumbers. All numbers need none of their bookkeeping.
template <typename Look>
void forEachSampled(std::ptrdiff_t step, std::ptrdiff_t count, Look look)
{
    if (step > 1) {
        for (SampledNumbers i(step, count); !i.isAtEnd(); ++i)
            look(*i);
        return;
    }
    for (std::ptrdiff_t i = 0; i < count; ++i)
        look(i);
}

} // namespace Halvard::Orv
