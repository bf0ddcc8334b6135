#include "Triangles/Ears/BlockerSearch.h"

#include "support/NearCorners.h"
#include "support/RandomRings.h"
#include "support/RingRecipes.h"

#include "Triangles/Ears/LineSearch.h"
#include "Triangles/Ears/NodeSplit.h"
#include "Triangles/Ears/PointNeighbours.h"
#include "Triangles/Ears/RingBoxes.h"
#include "Triangles/Ears/SearchReach.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <optional>
#include <set>
#include <string>

using namespace Halvard::Orv;
using namespace OrvTest;

namespace {

constexpr std::uint32_t Seed = 20240917;

CornerTriangle triangleOf(const std::vector<QVector2D> &points, int corner, int next, int prev)
{
    const auto at = [&](int i) { return points[static_cast<std::size_t>(i)]; };
    return CornerTriangle(at(corner), at(next), at(prev));
}

/// Mostly neighbours, as ears are.
CornerTriangle anyTriangle(Dice &dice, const std::vector<QVector2D> &points)
{
    const int count = static_cast<int>(points.size());
    const int corner = dice.below(count);
    const int step = dice.oneIn(2) ? 1 : dice.between(1, count - 1);
    if (dice.oneIn(4))
        return triangleOf(points, corner, dice.below(count), dice.below(count));
    return triangleOf(points, corner, (corner + step) % count, (corner + count - step) % count);
}

/// Whether nothing lies in any triangle through the corner, as far as ears go: they
/// have a next and a previous corner apart from each other, and are convex.
bool isCandidate(const CornerTriangle &triangle)
{
    const QVector2D corner = triangle.edge(0).start;
    const QVector2D toNext = triangle.edge(0).direction;
    const QVector2D toPrev = unit(triangle.edge(2).start - corner);
    return cross(toNext, toPrev) > 0.0f;
}

/// Calls `visit(first)` for leaves where anything may block.
template <typename Visit>
bool anyLeaf(const RingBoxes &boxes, const CornerTriangle &triangle, Visit visit)
{
    const TriangleReach reach(triangle);
    return boxes.anyLeaf(FarReach(triangle, reach), visit) ||
           boxes.anyLeaf(NearReach(reach), visit);
}

/// Leaves that a search for the ones near the triangle's corners, or for the others, visits.
struct Leaves
{
    Leaves(const RingBoxes &boxes, const CornerTriangle &triangle)
    {
        const TriangleReach reach(triangle);
        boxes.anyLeaf(FarReach(triangle, reach), [&](int first) {
            isFarTwice = !far.insert(first).second || isFarTwice;
            return false;
        });
        boxes.anyLeaf(NearReach(reach), [&](int first) {
            near.insert(first);
            return false;
        });
    }

    std::set<int> far;
    std::set<int> near;
    bool isFarTwice = false;
};

std::vector<QVector2D> finitePoints(const Ring &ring)
{
    std::vector<QVector2D> points;
    std::copy_if(
        ring.points.begin(), ring.points.end(), std::back_inserter(points),
        [](QVector2D point) { return std::isfinite(point.x()) && std::isfinite(point.y()); });
    return points;
}

/// Often with corners that coincide, and more points than are asked one by one.
Ring byAnyRecipe(Dice &dice, int count)
{
    const RingRecipe recipe = anyRecipe(dice);
    return {written(recipe), ringOf(recipe, count, dice)};
}

/// The ring goes from the one side to the other and on to the right:
///
///     0   2   4   6 ...        1 up
///       1   3   5              1 down
///
/// with 36 corners above and 28 below, so that the median has some from above on both sides.
TEST(NodeSplit, PartsTwoArcsOfDifferentSize)
{
    constexpr int Count = 64;
    std::vector<QVector2D> points;
    for (int i = 0; i < Count; ++i) {
        const bool isAbove = i % 2 == 0 || i % 16 == 15;
        points.emplace_back(1e-3f * static_cast<float>(i), isAbove ? 1.0f : -1.0f);
    }
    std::vector<int> order(Count);
    std::iota(order.begin(), order.end(), 0);
    const int *const first = order.data();
    for (const bool isAcross : {false, true}) {
        const std::optional<AlongAxis> axis =
            splitForTriangles(points.data(), first, first + Count / 2, first + Count, isAcross);
        ASSERT_TRUE(axis) << "strips from side to side";
        EXPECT_GT(std::fabs(axis->at(1) - axis->at(0)), 1.0) << "along, not across";
    }
}

/// A strip of 32 by 2: lines along it, even askew, would meet both halves of its length.
TEST(NodeSplit, PartsAStripAcrossTheLinesThatRunAlongIt)
{
    SCOPED_TRACE("seed " + std::to_string(Seed));
    Dice dice(Seed);
    std::vector<QVector2D> points;
    for (int i = 0; i < 500; ++i)
        points.emplace_back(static_cast<float>(dice.real(0.0, 32.0)),
                            static_cast<float>(dice.real(0.0, 2.0)));
    std::vector<int> order(points.size());
    std::iota(order.begin(), order.end(), 0);
    struct Row
    {
        QVector2D direction;
        QVector2D axis;
    };
    const Row rows[] = {
        {{1.0f, 0.0f}, {0.0f, 1.0f}},
        {{-0.9998f, 0.02f}, {-0.02f, -0.9998f}},
        {{0.0f, 1.0f}, {1.0f, 0.0f}},
    };
    for (const Row &row : rows) {
        for (const bool isAcross : {false, true}) {
            const std::optional<AlongAxis> axis =
                splitForLines(points.data(), order.data(), order.data() + order.size(), isAcross,
                              {row.direction, row.direction});
            ASSERT_TRUE(axis);
            // The coordinates of the axis found, against those along the one expected.
            const double found = axis->at(1) - axis->at(0);
            const QVector2D step = points[1] - points[0];
            const double expected = static_cast<double>(QVector2D::dotProduct(row.axis, step));
            EXPECT_NEAR(std::fabs(found), std::fabs(expected), 0.35)
                << row.direction.x() << ' ' << row.direction.y();
        }
    }
}

TEST(RingBoxes, HasEveryPointOnce)
{
    SCOPED_TRACE("seed " + std::to_string(Seed));
    Dice dice(Seed);
    RingBoxes boxes;
    for (int count = 1; count < 200; ++count) {
        std::vector<QVector2D> points = finitePoints(anyRing(dice, count));
        if (points.empty())
            continue;
        boxes.build(points);
        std::vector<int> order = boxes.order();
        std::sort(order.begin(), order.end());
        std::vector<int> expected(points.size());
        std::iota(expected.begin(), expected.end(), 0);
        EXPECT_EQ(order, expected) << count;
    }
}

TEST(RingBoxes, LeadsToEveryPointThatBlocks)
{
    SCOPED_TRACE("seed " + std::to_string(Seed));
    Dice dice(Seed);
    RingBoxes boxes;
    int blocking = 0;
    for (int round = 0; round < 400 && !HasFailure(); ++round) {
        const Ring ring = anyRing(dice, dice.between(3, 300));
        const std::vector<QVector2D> points = finitePoints(ring);
        if (points.size() < 3)
            continue;
        boxes.build(points);
        for (int i = 0; i < 50; ++i) {
            const CornerTriangle triangle = anyTriangle(dice, points);
            if (!isCandidate(triangle))
                continue;
            const Leaves leaves(boxes, triangle);
            constexpr std::size_t Many = 16;
            EXPECT_FALSE(leaves.isFarTwice && leaves.far.size() < Many);
            for (std::size_t place = 0; place < points.size(); ++place) {
                const auto point = static_cast<std::size_t>(boxes.order()[place]);
                if (!triangle.isBlockedBy(points[point]))
                    continue;
                ++blocking;
                const int first =
                    static_cast<int>(place) / RingBoxes::LeafSize * RingBoxes::LeafSize;
                const bool mayBeNear = isNearACorner(points[point], triangle);
                EXPECT_EQ((mayBeNear ? leaves.near : leaves.far).count(first), 1u)
                    << ring.name << ", round " << round;
            }
        }
    }
    EXPECT_GT(blocking, 10000);
}

TEST(RingBoxes, StopsWhereItIsTold)
{
    Dice dice(Seed);
    const std::vector<QVector2D> points = starRing(dice, 100).points;
    RingBoxes boxes;
    boxes.build(points);
    const CornerTriangle all({-9, -9}, {9, -9}, {0, 20});
    int visits = 0;
    EXPECT_TRUE(anyLeaf(boxes, all, [&](int) { return ++visits == 3; }));
    EXPECT_EQ(visits, 3);
    EXPECT_FALSE(anyLeaf(boxes, all, [](int) { return false; }));
}

TEST(RingBoxes, GivesUpAfterSoManySteps)
{
    Dice dice(Seed);
    const std::vector<QVector2D> points = starRing(dice, 1000).points;
    RingBoxes boxes;
    boxes.build(points);
    const CornerTriangle all({-9, -9}, {9, -9}, {0, 20});
    const TriangleReach reach(all);
    const auto stepsLeftOf = [&](int steps) {
        boxes.anyLeaf(FarReach(all, reach), steps, [](int) { return false; });
        return steps;
    };
    constexpr int Plenty = 1000000;
    const int needed = Plenty - stepsLeftOf(Plenty);
    EXPECT_GT(needed, 1000 / RingBoxes::LeafSize);
    EXPECT_EQ(stepsLeftOf(needed), 0);
    EXPECT_LT(stepsLeftOf(needed - 1), 0);
    EXPECT_LT(stepsLeftOf(0), 0);
}

/// Where very many leaves are within reach, a leaf may be visited again, but none is left
/// out.
TEST(RingBoxes, LeadsToEveryPointThatBlocksASliver)
{
    SCOPED_TRACE("seed " + std::to_string(Seed));
    Dice dice(Seed);
    RingBoxes boxes;
    int blocking = 0;
    std::size_t mostLeaves = 0;
    for (const RingFamily &family : hostileRings()) {
        const std::vector<QVector2D> points = ringOf(family.recipe, 3000, dice);
        boxes.build(points);
        for (int i = 0; i < 30; ++i) {
            const CornerTriangle triangle = anyTriangle(dice, points);
            if (!isCandidate(triangle))
                continue;
            const Leaves leaves(boxes, triangle);
            mostLeaves = std::max(mostLeaves, leaves.far.size());
            for (std::size_t place = 0; place < points.size(); ++place) {
                const auto point = static_cast<std::size_t>(boxes.order()[place]);
                if (!triangle.isBlockedBy(points[point]))
                    continue;
                ++blocking;
                const int first =
                    static_cast<int>(place) / RingBoxes::LeafSize * RingBoxes::LeafSize;
                const bool mayBeNear = isNearACorner(points[point], triangle);
                ASSERT_EQ((mayBeNear ? leaves.near : leaves.far).count(first), 1u) << family.name;
            }
        }
    }
    EXPECT_GT(blocking, 10000);
    EXPECT_GT(mostLeaves, 300u) << "no sliver with very many leaves";
}

/// Points in boxes, and how many of their leaves were visited.
class CountedLeaves
{
public:
    CountedLeaves(std::vector<QVector2D> points, const NodeSplit &split)
        : _points(std::move(points))
    {
        _boxes.build(_points, split);
    }

    /// Visits leaves until one has a point that blocks.
    /// \param steps after so many it is given up.
    /// \return whether that is known.
    template <typename Reach>
    bool isDecided(const CornerTriangle &triangle, const Reach &reach, int steps = MostSteps)
    {
        _boxes.anyLeaf(reach, steps, [&](int first) {
            ++visits;
            const int last =
                std::min(first + RingBoxes::LeafSize, static_cast<int>(_points.size()));
            isBlocked = std::any_of(
                _boxes.order().begin() + first, _boxes.order().begin() + last, [&](int point) {
                    return triangle.isBlockedBy(_points[static_cast<std::size_t>(point)]);
                });
            return isBlocked;
        });
        return steps >= 0;
    }

    static constexpr int MostSteps = std::numeric_limits<int>::max();
    bool isBlocked = false;
    long long visits = 0;

private:
    std::vector<QVector2D> _points;
    RingBoxes _boxes;
};

std::vector<QVector2D> pointsWithNeighbours(const std::vector<QVector2D> &points)
{
    std::vector<int> numbers(points.size());
    std::iota(numbers.begin(), numbers.end(), 0);
    std::vector<QVector2D> found;
    for (const int number : PointNeighbours(points.data(), numbers).pointsWithNeighbours())
        found.push_back(points[static_cast<std::size_t>(number)]);
    return found;
}

/// The corners of a whole ring that are convex, and not blocked by what is near.
std::vector<CornerTriangle> candidatesOf(const std::vector<QVector2D> &points, long long &visits)
{
    std::vector<CornerTriangle> candidates;
    const std::vector<QVector2D> near = pointsWithNeighbours(points);
    std::optional<CountedLeaves> leaves;
    if (!near.empty())
        leaves.emplace(near, splitForSurroundings);
    const int count = static_cast<int>(points.size());
    for (int corner = 0; corner < count; ++corner) {
        const CornerTriangle triangle =
            triangleOf(points, corner, (corner + 1) % count, (corner + count - 1) % count);
        if (!isCandidate(triangle))
            continue;
        if (leaves) {
            leaves->isBlocked = false;
            leaves->isDecided(triangle, NearReach(TriangleReach(triangle)));
            if (leaves->isBlocked)
                continue;
        }
        candidates.push_back(triangle);
    }
    visits += leaves ? leaves->visits : 0;
    return candidates;
}

/// Leaves that are visited until one has a point that blocks, for each corner of a whole
/// ring that is convex.
/// \param hasLines whether long searches are given up, and made along lines.
double visitsPerCandidate(const std::vector<QVector2D> &points, bool hasLines)
{
    long long visits = 0;
    const std::vector<CornerTriangle> candidates = candidatesOf(points, visits);
    CountedLeaves all(points, splitForTriangles);
    std::vector<CornerTriangle> undecided;
    for (const CornerTriangle &triangle : candidates) {
        const TriangleReach reach(triangle);
        if (!all.isDecided(triangle, FarReach(triangle, reach),
                           hasLines ? LineSearch::ManySteps : CountedLeaves::MostSteps))
            undecided.push_back(triangle);
    }
    visits += all.visits;
    if (!undecided.empty()) {
        std::vector<QVector2D> directions;
        for (std::size_t i = 0; i < undecided.size(); i += 1 + undecided.size() / 16)
            directions.push_back(undecided[i].longestDirection());
        CountedLeaves alongLines(points, [&](const QVector2D *some, const int *first, const int *,
                                             const int *last, bool isAcross) {
            return splitForLines(some, first, last, isAcross, directions);
        });
        for (const CornerTriangle &triangle : undecided)
            alongLines.isDecided(triangle, FarReach(triangle, TriangleReach(triangle)));
        visits += alongLines.visits;
    }
    return candidates.empty()
               ? 0.0
               : static_cast<double>(visits) / static_cast<double>(candidates.size());
}

/// Those of hostileRings() that boxes in ring order are bad for.
const std::set<std::string> &familiesAlongLines()
{
    static const std::set<std::string> names = {"lens jittered by its length", "tilted line",
                                                "line to and fro, half a turn", "line of few rows",
                                                "fan far out"};
    return names;
}

/// The first corner at each point, in ring order.
std::vector<QVector2D> distinctPoints(const std::vector<QVector2D> &points)
{
    std::set<std::pair<float, float>> seen;
    std::vector<QVector2D> distinct;
    for (const QVector2D point : points) {
        if (seen.emplace(point.x(), point.y()).second)
            distinct.push_back(point);
    }
    return distinct;
}

/// Bounds the work where a clock would measure the machine. Without the search from the
/// nearest on, or at random, or boxes that tell flat lines apart, families look at a share
/// of all leaves: hundreds.
TEST(RingBoxes, LooksAtFewLeavesOfHostileRings)
{
    SCOPED_TRACE("seed " + std::to_string(Seed));
    Dice dice(Seed);
    constexpr double MostVisits = 9.0;
    constexpr double MostVisitsWithLines = 60.0;
    for (const RingFamily &family : hostileRings()) {
        const bool hasLines = familiesAlongLines().count(family.name) != 0;
        for (const int count : {4000, 32000}) {
            const std::vector<QVector2D> points =
                distinctPoints(ringOf(family.recipe, count, dice));
            EXPECT_LT(visitsPerCandidate(points, hasLines),
                      hasLines ? MostVisitsWithLines : MostVisits)
                << family.name << ", " << points.size();
        }
    }
}

/// Where one side of a zigzag is cut off corner by corner, each triangle has three corners
/// of that side, which lie on a line but for rounding: all boxes in ring order reach from side
/// to side, and are met.
TEST(RingBoxes, LooksAtFewLeavesAlongTheSideOfAZigzag)
{
    SCOPED_TRACE("seed " + std::to_string(Seed));
    Dice dice(Seed);
    RingRecipe recipe;
    recipe.shape = RingRecipe::Zigzag;
    recipe.order = RingRecipe::Backward;
    recipe.bend = 2e-4;
    recipe.tilt = 3.387;
    constexpr int Count = 8000;
    const std::vector<QVector2D> points = ringOf(recipe, Count, dice);
    std::vector<CornerTriangle> triangles;
    for (int corner = 2; corner + 2 < Count; corner += 2) {
        const CornerTriangle triangle = triangleOf(points, corner, corner + 2, corner - 2);
        if (isCandidate(triangle))
            triangles.push_back(triangle);
    }
    ASSERT_GT(triangles.size(), 1000u);
    RingBoxes inRingOrder;
    inRingOrder.build(points);
    RingBoxes alongLines;
    alongLines.build(points, [&](const QVector2D *all, const int *first, const int *,
                                 const int *last, bool isAcross) {
        return splitForLines(all, first, last, isAcross, {triangles[0].longestDirection()});
    });
    const auto visits = [&](const RingBoxes &boxes) {
        double visited = 0.0;
        for (const CornerTriangle &triangle : triangles) {
            const TriangleReach reach(triangle);
            boxes.anyLeaf(FarReach(triangle, reach), [&](int) {
                visited += 1.0;
                return false;
            });
        }
        return visited / static_cast<double>(triangles.size());
    };
    EXPECT_GT(visits(inRingOrder), 100.0) << "they would do";
    EXPECT_LT(visits(alongLines), 30.0);
}

/// Corners that go from the one side of a circle to the other: in ring order, every leaf
/// would be a strip from side to side, and spikes from the centre would meet half of them.
TEST(RingBoxes, LooksAtFewLeavesForSpikesAcrossHalvesInRingOrder)
{
    constexpr double TwoPi = 6.283185307179586;
    constexpr int Spikes = 200;
    Dice dice(Seed);
    RingRecipe recipe;
    recipe.shape = RingRecipe::Arc;
    recipe.order = RingRecipe::OutsideIn;
    recipe.bend = TwoPi;
    const std::vector<QVector2D> points = ringOf(recipe, 8000, dice);
    RingBoxes boxes;
    boxes.build(points);
    const auto onCircle = [](double angle) {
        return QVector2D(static_cast<float>(std::cos(angle)), static_cast<float>(std::sin(angle)));
    };
    int visits = 0;
    for (int i = 0; i < Spikes; ++i) {
        const double angle = TwoPi * i / Spikes;
        const CornerTriangle spike({0, 0}, onCircle(angle), onCircle(angle + 1e-3));
        anyLeaf(boxes, spike, [&](int) {
            ++visits;
            return false;
        });
    }
    EXPECT_LT(visits, 12 * Spikes);
}

/// The shapes that boxes along the axes, in ring order or in space, do badly with.
TEST(RingBoxes, LooksAtFewLeavesOfRingsOfManyCorners)
{
    Dice dice(Seed);
    constexpr int Count = 20000;
    const Ring rings[] = {starRing(dice, Count), combRing(Count / 2), spiralRing(Count),
                          windingRing(dice, Count), convexRing(dice, Count)};
    for (const Ring &ring : rings) {
        RingBoxes boxes;
        boxes.build(ring.points);
        const int count = static_cast<int>(ring.points.size());
        int candidates = 0;
        int visits = 0;
        for (int corner = 0; corner < count; ++corner) {
            const CornerTriangle triangle =
                triangleOf(ring.points, corner, (corner + 1) % count, (corner + count - 1) % count);
            if (!isCandidate(triangle))
                continue;
            ++candidates;
            anyLeaf(boxes, triangle, [&](int) {
                ++visits;
                return false;
            });
        }
        EXPECT_GT(candidates, count / 4) << ring.name;
        EXPECT_LT(visits, 12 * candidates) << ring.name << ", of " << count / RingBoxes::LeafSize;
    }
}

TEST(BlockerSearch, AgreesWithALoopWhileCornersGo)
{
    SCOPED_TRACE("seed " + std::to_string(Seed));
    Dice dice(Seed);
    BlockerSearch search;
    int outcomes[2] = {};
    for (int round = 0; round < 300 && !HasFailure(); ++round) {
        const int count = round % 3 == 0 ? dice.between(257, 900) : dice.between(5, 60);
        const Ring ring = round % 6 == 0 ? byAnyRecipe(dice, count) : anyRing(dice, count);
        search.reset(ring.points.data(), count);
        std::vector<int> active(static_cast<std::size_t>(count));
        std::iota(active.begin(), active.end(), 0);
        while (active.size() > 3 && !HasFailure()) {
            const int left = static_cast<int>(active.size());
            const int at = dice.below(left);
            const int corner = active[static_cast<std::size_t>(at)];
            const CornerTriangle triangle =
                triangleOf(ring.points, corner, active[static_cast<std::size_t>((at + 1) % left)],
                           active[static_cast<std::size_t>((at + left - 1) % left)]);
            if (isCandidate(triangle)) {
                const bool expected = std::any_of(active.begin(), active.end(), [&](int other) {
                    return triangle.isBlockedBy(ring.points[static_cast<std::size_t>(other)]);
                });
                EXPECT_EQ(search.isBlocked(corner, triangle), expected) << ring.name;
                ++outcomes[expected ? 1 : 0];
            }
            const int gone = dice.below(left);
            search.remove(active[static_cast<std::size_t>(gone)]);
            active.erase(active.begin() + gone);
        }
    }
    EXPECT_GT(outcomes[0], 5000);
    EXPECT_GT(outcomes[1], 5000);
}

/// Of rings that are searched along lines, every corner, with all others and after some went.
TEST(BlockerSearch, AgreesWithALoopWhereItSearchesAlongLines)
{
    SCOPED_TRACE("seed " + std::to_string(Seed));
    Dice dice(Seed);
    constexpr int Count = 2500;
    BlockerSearch search;
    int outcomes[2] = {};
    for (const RingFamily &family : hostileRings()) {
        if (familiesAlongLines().count(family.name) == 0)
            continue;
        const std::vector<QVector2D> points = ringOf(family.recipe, Count, dice);
        search.reset(points.data(), Count);
        std::vector<int> active(points.size());
        std::iota(active.begin(), active.end(), 0);
        for (const int goes : {0, Count / 5, Count / 5}) {
            for (int i = 0; i < goes; ++i) {
                const int at = dice.below(static_cast<int>(active.size()));
                search.remove(active[static_cast<std::size_t>(at)]);
                active.erase(active.begin() + at);
            }
            for (std::size_t at = 0; at < active.size() && !HasFailure(); ++at) {
                const int corner = active[at];
                const CornerTriangle triangle =
                    triangleOf(points, corner, active[(at + 1) % active.size()],
                               active[(at + active.size() - 1) % active.size()]);
                if (!isCandidate(triangle))
                    continue;
                const bool expected = std::any_of(active.begin(), active.end(), [&](int other) {
                    return triangle.isBlockedBy(points[static_cast<std::size_t>(other)]);
                });
                EXPECT_EQ(search.isBlocked(corner, triangle), expected) << family.name;
                ++outcomes[expected ? 1 : 0];
            }
        }
    }
    EXPECT_GT(outcomes[0], 1000);
    EXPECT_GT(outcomes[1], 1000);
}

} // namespace
