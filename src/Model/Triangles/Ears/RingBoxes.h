/// \file
/// A tree of boxes around the points of a ring.
#pragma once

#include "Triangles/Ears/NodeSplit.h"
#include "Triangles/Ears/Sampling.h"
#include "Triangles/Ears/TriangleReach.h"

#include <QtCore/QtAlgorithms>
#include <QtGui/QVector2D>

#include <limits>
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
    void build(const std::vector<QVector2D> &points, const NodeSplit &split = splitForTriangles);

    /// Numbers of the points leaf by leaf.
    const std::vector<int> &order() const { return _order; }

    /// Calls `visit(first)` with the place in order() of the first point of each leaf
    /// within reach, until one returns true. Where there are very many, some leaves are
    /// visited more than once.
    /// \param reach a FarReach or a NearReach.
    /// \param stepsLeft how many nodes and leaves to look at: less by those that were, and
    ///        negative where it was given up. Leaves that are visited more than once do not
    ///        count.
    /// \return whether one did.
    template <typename Reach, typename Visit>
    bool anyLeaf(const Reach &reach, int &stepsLeft, Visit visit) const;

    /// The same to the end.
    template <typename Reach, typename Visit>
    bool anyLeaf(const Reach &reach, Visit visit) const
    {
        int stepsLeft = std::numeric_limits<int>::max();
        return anyLeaf(reach, stepsLeft, visit);
    }

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
    int *parted(int *first, int *last, bool isAcross);

    /// One bit per child: set where it may hold a point that blocks.
    template <typename Reach>
    static unsigned childrenWithin(const Node &node, const Reach &reach)
    {
        const unsigned all = (1u << node.childCount) - 1u;
        return reach.boxesWithin(node.boxes) & all;
    }

    static int push(const Node &node, unsigned children, Float4 distances, int *waiting, int count);
    template <typename Reach>
    int leafAtRandom(const Reach &reach, QuickRandom &random) const;

    const QVector2D *_points = nullptr;
    const NodeSplit *_split = nullptr;
    std::vector<int> _order;
    std::vector<int> _sorted;
    std::vector<Node> _nodes;
};

/// A leaf within reach, by choosing any child within reach in each node; -1 where a node
/// has none.
template <typename Reach>
int RingBoxes::leafAtRandom(const Reach &reach, QuickRandom &random) const
{
    int number = 0;
    while (number >= 0) {
        const Node &node = _nodes[static_cast<size_t>(number)];
        const unsigned children = childrenWithin(node, reach);
        if (children == 0)
            return -1;
        unsigned child;
        do {
            child = random.next() % Fanout;
        } while ((children >> child & 1u) == 0);
        number = node.children[child];
    }
    return ~number;
}

/// Visits the leaves from the nearest on.
///
/// Where the corners of a ring lie on a line but for rounding, half of them may be within
/// the reach of a triangle, and whether one blocks is as good as random, but differs
/// from one end of the line to the other: the nearest thousands may all pass by, and
/// those far off all block. So after some leaves as many are visited at random. When a
/// share p of all leaves within reach has a point that blocks, about 1 / p visits find
/// one, wherever it is, and a triangle that nothing blocks costs twice the visits.
template <typename Reach, typename Visit>
bool RingBoxes::anyLeaf(const Reach &reach, int &stepsLeft, Visit visit) const
{
    constexpr int ManyLeaves = 16;
    constexpr int Growth = 3;
    // A split halves, so that the depth is that of the number of points in base 4, and
    // every level leaves at most three children waiting.
    int waiting[Fanout * 16];
    int count = 0;
    waiting[count++] = 0;
    QuickRandom random;
    int visits = 0;
    int visitsInOrder = ManyLeaves;
    while (count > 0) {
        if (--stepsLeft < 0)
            return false;
        const int next = waiting[--count];
        if (next >= 0) {
            const Node &node = _nodes[static_cast<size_t>(next)];
            const unsigned children = childrenWithin(node, reach);
            if ((children & (children - 1)) != 0)
                count = push(node, children, reach.distances(node.boxes), waiting, count);
            else if (children != 0)
                waiting[count++] = node.children[qCountTrailingZeroBits(children)];
            continue;
        }
        if (visit(LeafSize * ~next))
            return true;
        if (++visits < visitsInOrder || count == 0)
            continue;
        for (int i = 0; i < visits; ++i) {
            const int leaf = leafAtRandom(reach, random);
            if (leaf >= 0 && visit(LeafSize * leaf))
                return true;
        }
        visitsInOrder *= Growth;
    }
    return false;
}

} // namespace Halvard::Orv
