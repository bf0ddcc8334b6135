/// \file
/// The floating-point state that results are defined in.
#pragma once

#include <cfenv>

#if defined(__SSE2__)
#include <xmmintrin.h>
#endif

namespace Halvard::Orv {

/// Gives the thread the default floating-point state while it lives, and the host's state back:
/// round to nearest, denormals kept, no exception that traps.
///
/// A host program may round otherwise, flush denormals to zero for speed, or let a division by zero
/// end it. Results here are defined to the bit, and dividing by zero is part of them. Every
/// exported function that computes has one of these; so has every task that runs on another thread.
///
/// What the caller hands in, such as a stream or an allocator, is called in the default state.
class FloatingPointState
{
public:
    FloatingPointState() : _isForeign(!isDefault())
    {
        if (_isForeign) {
            std::fegetenv(&_host);
            std::fesetenv(FE_DFL_ENV);
        }
    }

    ~FloatingPointState()
    {
        if (_isForeign)
            std::fesetenv(&_host);
    }

    FloatingPointState(const FloatingPointState &) = delete;
    FloatingPointState &operator=(const FloatingPointState &) = delete;

private:
    /// Saving and setting the state takes longer than a small polygon, so it is looked at first.
    /// All our arithmetic is SSE's where there is SSE2; what x87 does is nobody's result.
    static bool isDefault()
    {
#if defined(__SSE2__)
        constexpr unsigned RaisedFlags = 0x3f; // sticky: they change no result
        constexpr unsigned AllMasked = 0x1f80; // the value after a process has started
        return (_mm_getcsr() & ~RaisedFlags) == AllMasked;
#else
        return false;
#endif
    }

    const bool _isForeign;
    std::fenv_t _host;
};

} // namespace Halvard::Orv
