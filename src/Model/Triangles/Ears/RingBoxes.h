/// \file
/// A tree of boxes around the points of a ring.
#pragma once

#include "Triangles/Ears/TriangleReach.h"
#include "Triangles/Ears/TriangleWindow.h"

#include <QtGui/QVector2D>

#include <vector>

namespace Halvard::Orv {

/// Finds the points near a triangle without looking at all others.
///
/// The boxes are oriented, and a node is split in ring order where that keeps its
/// halves apart, in space where it does not: the spikes of a star are long and thin,
/// and boxes along the axes around them would overlap everywhere; the turns of a
/// spiral lie within each other.
class RingBoxes
{
public:
    /// Points of a leaf. All leaves but the last are full.
    static constexpr int LeafSize = 8;

    /// \param points finite.
    void build(const std::vector<QVector2D> &points);

    /// Numbers of the points leaf by leaf.
    const std::vector<int> &order() const { return _order; }

    /// Calls `visit(first)` with the place in order() of the first point of each leaf
    /// that may have a point that blocks the triangle, until one returns true.
    /// \return whether one did.
    template <typename Visit>
    bool anyLeaf(const CornerTriangle &triangle, const TriangleReach &reach, Visit visit) const;

private:
    static constexpr int Fanout = 4;

    struct Node
    {
        Boxes4 boxes;
        /// Number of a node, or ~ the number of a leaf.
        int children[Fanout];
        int childCount;
    };

    int addNode(int *first, int *last);
    void addChild(int parent, int *first, int *last);
    int *split(int *first, int *last);

    const QVector2D *_points = nullptr;
    std::vector<int> _order;
    std::vector<int> _sorted;
    std::vector<Node> _nodes;
};

template <typename Visit>
bool RingBoxes::anyLeaf(const CornerTriangle &triangle, const TriangleReach &reach,
                        Visit visit) const
{
    const TriangleWindow window(triangle);
    // A split halves, so that the depth is that of the number of points in base 4, and
    // every level leaves at most three children waiting.
    int waiting[Fanout * 16];
    int count = 0;
    waiting[count++] = 0;
    while (count > 0) {
        const int next = waiting[--count];
        if (next < 0) {
            if (visit(LeafSize * ~next))
                return true;
            continue;
        }
        const Node &node = _nodes[static_cast<size_t>(next)];
        const unsigned within = reach.boxesWithin(node.boxes) & window.boxesWithin(node.boxes);
        for (int child = node.childCount - 1; child >= 0; --child) {
            if ((within >> child & 1u) == 0)
                continue;
            const bool isPoint =
                node.boxes.along[child] == 0.0f && node.boxes.across[child] == 0.0f;
            // All points of the box coincide with a corner of the triangle.
            if (isPoint &&
                triangle.hasCornerAt({node.boxes.centreX[child], node.boxes.centreY[child]}))
                continue;
            waiting[count++] = node.children[child];
        }
    }
    return false;
}

} // namespace Halvard::Orv
