#include "Triangles/Ears/SiteTree.h"

#include "Triangles/Ears/SearchReach.h"

#include <limits>

namespace Halvard::Orv {

namespace {

constexpr size_t Lanes = 4;
constexpr int NoSlot = -1;
constexpr float Gone = std::numeric_limits<float>::quiet_NaN();

static_assert(RingBoxes::LeafSize == 2 * Lanes, "a leaf is looked at in two steps");

} // namespace

void SiteTree::reset(size_t siteCount)
{
    _slots.assign(siteCount, NoSlot);
}

void SiteTree::place(const std::vector<int> &sites, const std::vector<QVector2D> &points,
                     const NodeSplit &split)
{
    const bool hasBoxes = static_cast<bool>(split);
    if (hasBoxes) {
        _placedPoints.clear();
        _placedPoints.reserve(sites.size());
        for (const int site : sites)
            _placedPoints.push_back(points[static_cast<size_t>(site)]);
        _boxes.build(_placedPoints, split);
    }
    const size_t slotCount =
        (sites.size() + RingBoxes::LeafSize - 1) / RingBoxes::LeafSize * RingBoxes::LeafSize;
    _x.assign(slotCount, Gone);
    _y.assign(slotCount, Gone);
    _siteAt.resize(slotCount);
    for (size_t slot = 0; slot < sites.size(); ++slot) {
        const size_t at = hasBoxes ? static_cast<size_t>(_boxes.order()[slot]) : slot;
        const int site = sites[at];
        _x[slot] = points[static_cast<size_t>(site)].x();
        _y[slot] = points[static_cast<size_t>(site)].y();
        _siteAt[slot] = site;
        _slots[static_cast<size_t>(site)] = static_cast<int>(slot);
    }
}

void SiteTree::remove(int site)
{
    const int slot = _slots[static_cast<size_t>(site)];
    if (slot != NoSlot)
        _x[static_cast<size_t>(slot)] = Gone;
}

int SiteTree::blockerAmongAll(const CornerTriangle &triangle, const TriangleReach &reach) const
{
    int edge = 0;
    for (size_t slot = 0; slot < _x.size(); slot += Lanes) {
        const unsigned within = reach.pointsWithin(loadFour(&_x[slot]), loadFour(&_y[slot]));
        const int blocker = blockerInSlots(slot, within, triangle, edge);
        if (blocker != NoSite)
            return blocker;
    }
    return NoSite;
}

int SiteTree::blockerAmongFar(const CornerTriangle &triangle, const TriangleReach &reach,
                              int &stepsLeft) const
{
    const auto within = [&](size_t slot) {
        return reach.farPointsWithin(loadFour(&_x[slot]), loadFour(&_y[slot]));
    };
    int blocker = NoSite;
    int edge = 0;
    _boxes.anyLeaf(FarReach(triangle, reach), stepsLeft, [&](int first) {
        const size_t slot = static_cast<size_t>(first);
        const unsigned found = within(slot) | within(slot + Lanes) << Lanes;
        blocker = blockerInSlots(slot, found, triangle, edge);
        return blocker != NoSite;
    });
    return blocker;
}

int SiteTree::blockerAmongNear(const CornerTriangle &triangle, const TriangleReach &reach) const
{
    const auto within = [&](size_t slot) {
        return reach.pointsWithin(loadFour(&_x[slot]), loadFour(&_y[slot]));
    };
    int blocker = NoSite;
    int edge = 0;
    _boxes.anyLeaf(NearReach(reach), [&](int first) {
        const size_t slot = static_cast<size_t>(first);
        const unsigned found = within(slot) | within(slot + Lanes) << Lanes;
        blocker = blockerInSlots(slot, found, triangle, edge);
        return blocker != NoSite;
    });
    return blocker;
}

/// The first site that blocks among those in slots whose bits are set.
int SiteTree::blockerInSlots(size_t slot, unsigned within, const CornerTriangle &triangle,
                             int &edge) const
{
    for (; within != 0; within &= within - 1) {
        const size_t at = slot + qCountTrailingZeroBits(within);
        if (triangle.isBlockedBy({_x[at], _y[at]}, edge))
            return _siteAt[at];
    }
    return NoSite;
}

} // namespace Halvard::Orv
