/// \file
/// Points that may block an ear, four at a time, and where to look for them.
#pragma once

#include "Triangles/Ears/CornerTriangle.h"
#include "Triangles/Ears/RingBoxes.h"

#include <QtGui/QVector2D>

#include <vector>

namespace Halvard::Orv {

constexpr int NoSite = -1;

/// Sites are numbered points. They leave one by one.
class SiteTree
{
public:
    /// Forgets what was placed: other sites follow.
    void reset(size_t siteCount);

    /// Places sites, or, of those that were, the ones that are left.
    /// \param sites ascending.
    /// \param points by number of the site.
    /// \param split how to build the tree of boxes; none to do without it, and look at all.
    void place(const std::vector<int> &sites, const std::vector<QVector2D> &points,
               const NodeSplit &split);

    /// Does nothing for a site that was not placed.
    void remove(int site);

    bool isEmpty() const { return _x.empty(); }

    /// A site that blocks the triangle, or NoSite, by looking at all.
    int blockerAmongAll(const CornerTriangle &triangle, const TriangleReach &reach) const;
    /// The same by looking at those that are not near a corner of the triangle.
    /// \param stepsLeft as for RingBoxes::anyLeaf(): negative where it was given up.
    int blockerAmongFar(const CornerTriangle &triangle, const TriangleReach &reach,
                        int &stepsLeft) const;
    /// The same by looking at those that are near one.
    int blockerAmongNear(const CornerTriangle &triangle, const TriangleReach &reach) const;

private:
    int blockerInSlots(size_t slot, unsigned within, const CornerTriangle &triangle,
                       int &edge) const;

    RingBoxes _boxes;
    std::vector<QVector2D> _placedPoints;
    /// By slot; x is NaN in slots without a site.
    std::vector<float> _x;
    std::vector<float> _y;
    std::vector<int> _siteAt;
    /// By site; negative where it was not placed.
    std::vector<int> _slots;
};

} // namespace Halvard::Orv
