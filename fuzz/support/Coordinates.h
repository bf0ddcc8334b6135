/// \file
/// Coordinates from the bytes of an input.
#pragma once

#include "support/Fuzzing.h"

#include <cmath>

namespace OrvFuzz {

/// The plain algorithm takes a time that grows with the square of the corners at least:
/// many small rings find more than few large ones.
constexpr std::size_t MaxCorners = 64;

/// Turns bytes into coordinates in one of several ways, which the input chooses:
/// floats of any bits hardly ever make a ring that can be cut, and numbers of a small
/// lattice never lie far apart.
class Coordinates
{
public:
    explicit Coordinates(Input &input) : _input(input), _kind(static_cast<Kind>(input.below(4)))
    {
        if (_kind == Kind::ScaledLattice || _kind == Kind::NearLattice)
            _scale = std::ldexp(1.0f, static_cast<int>(input.byte()) - 128);
    }

    float next()
    {
        switch (_kind) {
        case Kind::AnyBits:
            return _input.take<float>();
        case Kind::Lattice:
            return static_cast<float>(_input.take<std::int8_t>());
        case Kind::ScaledLattice:
            return static_cast<float>(_input.take<std::int8_t>()) * _scale;
        case Kind::NearLattice:
            break;
        }
        // Close by a point of a lattice: corners that nearly coincide, edges that are
        // nearly parallel.
        const auto bits = _input.take<std::uint16_t>();
        return static_cast<float>(bits & 7) + static_cast<float>(bits >> 3) * _scale;
    }

private:
    enum class Kind
    {
        AnyBits,
        Lattice,
        ScaledLattice,
        NearLattice
    };

    Input &_input;
    Kind _kind;
    float _scale = 1.0f;
};

} // namespace OrvFuzz
