/// \file
/// QVector3D's normalisation of four vectors at once.
//
// QVector3D computes lengths in double; a vector whose squared length is within
// 1e-12 of 0 is taken for zero, and one within 1e-12 of 1 is left as it is. The
// latter needs no care: dividing by a length that is off 1 by 5e-13 gives, rounded
// to float, the vector itself.
#pragma once

#include "Lanes/Lanes.h"

namespace Halvard::Orv {

/// What becomes of vectors that count as zero.
enum class NullVectors
{
    BecomeZero, ///< as QVector3D::normalized() has it
    Stay        ///< as QVector3D::normalize() has it
};

/// Divides the components of two vectors by their lengths.
template <NullVectors Nulls>
class UnitScale
{
public:
    UnitScale(Double2 x, Double2 y, Double2 z)
    {
        const Double2 square = x * x + y * y + z * z;
        _length = squareRoot(square);
        _isNull = square <= NullSquare;
    }

    Double2 operator()(Double2 component) const
    {
        const Double2 null = Nulls == NullVectors::Stay ? component : Double2{0.0, 0.0};
        return _isNull ? null : component / _length;
    }

private:
    /// qFuzzyIsNull() of double: smaller squared lengths count as zero.
    static constexpr double NullSquare = 1e-12;

    Double2 _length;
    Mask2 _isNull;
};

/// The vectors at unit length, bit by bit as QVector3D has them, but for the bits
/// of NaNs.
template <NullVectors Nulls>
Q_ALWAYS_INLINE Points4 unit(const Points4 &vectors)
{
    const UnitScale<Nulls> lower(lowerDoubles(vectors.x), lowerDoubles(vectors.y),
                                 lowerDoubles(vectors.z));
    const UnitScale<Nulls> upper(upperDoubles(vectors.x), upperDoubles(vectors.y),
                                 upperDoubles(vectors.z));
    const auto scaled = [&](Float4 component) {
        return toFloats(lower(lowerDoubles(component)), upper(upperDoubles(component)));
    };
    return {scaled(vectors.x), scaled(vectors.y), scaled(vectors.z)};
}

} // namespace Halvard::Orv
