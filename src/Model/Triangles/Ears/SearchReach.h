/// \file
/// What leads a search through the tree of boxes to points that block a triangle.
#pragma once

#include "Triangles/Ears/TriangleReach.h"
#include "Triangles/Ears/TriangleWindow.h"

namespace Halvard::Orv {

/// To those that are not near a corner of the triangle.
class FarReach
{
public:
    FarReach(const CornerTriangle &triangle, const TriangleReach &reach)
        : _reach(reach), _window(triangle)
    {}

    /// One bit per box: set where the box may hold such a point.
    unsigned boxesWithin(const Boxes4 &boxes) const
    {
        const unsigned within = _window.boxesWithin(boxes);
        return within == 0 ? 0 : within & _reach.farBoxesWithin(boxes);
    }

    /// How far each box is from where such points are most likely.
    Float4 distances(const Boxes4 &boxes) const { return _window.distances(boxes); }

private:
    const TriangleReach &_reach;
    TriangleWindow _window;
};

/// To those that are near a corner of the triangle.
class NearReach
{
public:
    explicit NearReach(const TriangleReach &reach) : _reach(reach) {}

    unsigned boxesWithin(const Boxes4 &boxes) const { return _reach.nearBoxesWithin(boxes); }

    /// All the same: what is near is near.
    Float4 distances(const Boxes4 &) const { return four(0.0f); }

private:
    const TriangleReach &_reach;
};

} // namespace Halvard::Orv
