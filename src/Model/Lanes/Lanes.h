/// \file
/// Four floats or two doubles at once.
///
/// These are the compiler's own vectors: every operation on them is the IEEE
/// operation on each lane, so what is computed in lanes has the bits of what is
/// computed one by one, on every machine. ORV_PORTABLE_VECTORS does without the
/// machine's own instructions altogether.
#pragma once

#if defined(__SSE2__) && !defined(ORV_PORTABLE_VECTORS)
#define ORV_SSE2_LANES
#endif

#include <QtCore/QtGlobal>

#include <cmath>
#include <cstddef>
#include <cstring>

#ifdef ORV_SSE2_LANES
#include <emmintrin.h>
#endif

namespace Halvard::Orv {

using Float2 = float __attribute__((vector_size(8)));
using Float4 = float __attribute__((vector_size(16)));
using Double2 = double __attribute__((vector_size(16)));
/// What comparing gives: all bits of a lane set where it is true.
using Mask4 = int __attribute__((vector_size(16)));
using Mask2 = long long __attribute__((vector_size(16)));

/// Four floats from any address.
inline Float4 loadFour(const float *floats)
{
    Float4 value;
    std::memcpy(&value, floats, sizeof value);
    return value;
}

inline Float2 loadTwo(const float *floats)
{
    Float2 value;
    std::memcpy(&value, floats, sizeof value);
    return value;
}

inline void storeTwo(float *floats, Float2 value)
{
    std::memcpy(floats, &value, sizeof value);
}

/// One bit per lane, lane 0 the lowest.
inline unsigned lanesOf(Mask4 mask)
{
#ifdef ORV_SSE2_LANES
    return static_cast<unsigned>(_mm_movemask_ps(reinterpret_cast<__m128>(mask)));
#else
    return (mask[0] != 0 ? 1u : 0u) | (mask[1] != 0 ? 2u : 0u) | (mask[2] != 0 ? 4u : 0u) |
           (mask[3] != 0 ? 8u : 0u);
#endif
}

inline Float4 squareRoot(Float4 value)
{
#ifdef ORV_SSE2_LANES
    return _mm_sqrt_ps(value);
#else
    return Float4{std::sqrt(value[0]), std::sqrt(value[1]), std::sqrt(value[2]),
                  std::sqrt(value[3])};
#endif
}

inline Double2 squareRoot(Double2 value)
{
#ifdef ORV_SSE2_LANES
    return _mm_sqrt_pd(value);
#else
    return Double2{std::sqrt(value[0]), std::sqrt(value[1])};
#endif
}

/// Lanes 0 and 1.
inline Double2 lowerDoubles(Float4 value)
{
#ifdef ORV_SSE2_LANES
    return _mm_cvtps_pd(value);
#else
    return Double2{static_cast<double>(value[0]), static_cast<double>(value[1])};
#endif
}

/// Lanes 2 and 3.
inline Double2 upperDoubles(Float4 value)
{
    return lowerDoubles(__builtin_shufflevector(value, value, 2, 3, 2, 3));
}

/// Each double rounded to the nearest float.
inline Float4 toFloats(Double2 lower, Double2 upper)
{
#ifdef ORV_SSE2_LANES
    return _mm_movelh_ps(_mm_cvtpd_ps(lower), _mm_cvtpd_ps(upper));
#else
    return Float4{static_cast<float>(lower[0]), static_cast<float>(lower[1]),
                  static_cast<float>(upper[0]), static_cast<float>(upper[1])};
#endif
}

/// x, y and z of four points.
struct Points4
{
    Float4 x;
    Float4 y;
    Float4 z;
};

/// From points that each have x, y, z in the first three lanes.
inline Points4 transposed(Float4 a, Float4 b, Float4 c, Float4 d)
{
    const Float4 abXY = __builtin_shufflevector(a, b, 0, 4, 1, 5);
    const Float4 cdXY = __builtin_shufflevector(c, d, 0, 4, 1, 5);
    const Float4 abZ = __builtin_shufflevector(a, b, 2, 6, 3, 7);
    const Float4 cdZ = __builtin_shufflevector(c, d, 2, 6, 3, 7);
    return {__builtin_shufflevector(abXY, cdXY, 0, 1, 4, 5),
            __builtin_shufflevector(abXY, cdXY, 2, 3, 6, 7),
            __builtin_shufflevector(abZ, cdZ, 0, 1, 4, 5)};
}

/// Four points from twelve floats.
inline Points4 loadPoints(const float *floats)
{
    const Float4 end = loadFour(floats + 8);
    return transposed(loadFour(floats), loadFour(floats + 3), loadFour(floats + 6),
                      __builtin_shufflevector(end, end, 1, 2, 3, 3));
}

/// Corner `i` of four faces of `CornerCount` corners that follow one another: the points
/// that `corners` selects among `positions`, three floats each. One float past each
/// point is read.
template <unsigned CornerCount>
Q_ALWAYS_INLINE Points4 loadCorners(const quint32 *corners, unsigned i, const float *positions)
{
    const auto loadOf = [&](unsigned face) {
        return loadFour(positions + 3 * static_cast<std::size_t>(corners[CornerCount * face + i]));
    };
    return transposed(loadOf(0), loadOf(1), loadOf(2), loadOf(3));
}

inline void storePoints(const Points4 &points, float *floats)
{
    const Float4 xy01 = __builtin_shufflevector(points.x, points.y, 0, 4, 1, 5);
    const Float4 xy23 = __builtin_shufflevector(points.x, points.y, 2, 6, 3, 7);
    const Float4 yz1 = __builtin_shufflevector(points.y, points.z, 1, 5, 1, 5);
    const Float4 values[3] = {__builtin_shufflevector(xy01, points.z, 0, 1, 4, 2),
                              __builtin_shufflevector(yz1, xy23, 0, 1, 4, 5),
                              __builtin_shufflevector(points.z, xy23, 2, 6, 7, 3)};
    std::memcpy(floats, values, sizeof values);
}

/// Lanes 0 of both, then lanes 1 of both.
inline Points4 interleavedLower(const Points4 &first, const Points4 &second)
{
    return {__builtin_shufflevector(first.x, second.x, 0, 4, 1, 5),
            __builtin_shufflevector(first.y, second.y, 0, 4, 1, 5),
            __builtin_shufflevector(first.z, second.z, 0, 4, 1, 5)};
}

/// Lanes 2 of both, then lanes 3 of both.
inline Points4 interleavedUpper(const Points4 &first, const Points4 &second)
{
    return {__builtin_shufflevector(first.x, second.x, 2, 6, 3, 7),
            __builtin_shufflevector(first.y, second.y, 2, 6, 3, 7),
            __builtin_shufflevector(first.z, second.z, 2, 6, 3, 7)};
}

inline Points4 operator+(const Points4 &first, const Points4 &second)
{
    return {first.x + second.x, first.y + second.y, first.z + second.z};
}

inline Points4 operator-(const Points4 &first, const Points4 &second)
{
    return {first.x - second.x, first.y - second.y, first.z - second.z};
}

/// The operations of QVector3D::crossProduct(), in its order.
inline Points4 cross(const Points4 &first, const Points4 &second)
{
    return {first.y * second.z - first.z * second.y, first.z * second.x - first.x * second.z,
            first.x * second.y - first.y * second.x};
}

inline Float4 dot(const Points4 &first, const Points4 &second)
{
    return first.x * second.x + first.y * second.y + first.z * second.z;
}

inline bool hasNaN(const Points4 &points)
{
    return lanesOf((points.x != points.x) | (points.y != points.y) | (points.z != points.z)) != 0;
}

} // namespace Halvard::Orv
