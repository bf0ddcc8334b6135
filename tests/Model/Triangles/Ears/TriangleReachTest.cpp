#include "Triangles/Ears/TriangleReach.h"

#include "support/RandomRings.h"

#include "Triangles/Ears/CornerEvaluation.h"
#include "Triangles/Ears/OrientedBox.h"
#include "Triangles/Ears/TriangleWindow.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numeric>

using namespace Halvard::Orv;
using namespace OrvTest;

namespace {

constexpr std::uint32_t Seed = 20240917;

QVector2D anyDirection(Dice &dice)
{
    const double angle = dice.real(0.0, 6.283185307179586);
    return QVector2D{static_cast<float>(std::cos(angle)), static_cast<float>(std::sin(angle))};
}

/// From tiny to huge, with the length where directions vanish well in between.
float anyLength(Dice &dice)
{
    const int decade = dice.oneIn(2) ? dice.between(-8, 1) : dice.between(-12, 37);
    return static_cast<float>(std::pow(10.0, decade + dice.real(0.0, 1.0)));
}

/// Up to a few floats away.
float nudged(Dice &dice, float value)
{
    for (int steps = dice.below(4); steps > 0; --steps)
        value = std::nextafter(value, dice.oneIn(2) ? 1e38f : -1e38f);
    return value;
}

QVector2D nudged(Dice &dice, QVector2D point)
{
    return QVector2D{nudged(dice, point.x()), nudged(dice, point.y())};
}

struct Corners
{
    QVector2D corner;
    QVector2D next;
    QVector2D prev;
};

/// Counter-clockwise and clockwise triangles, many of them slivers and many with an
/// edge that has hardly a length, near the origin and far from it.
Corners anyCorners(Dice &dice)
{
    const float size = anyLength(dice);
    const QVector2D origin =
        dice.oneIn(2) ? QVector2D()
                      : anyDirection(dice) * (size * static_cast<float>(dice.below(1000)));
    Corners corners;
    corners.corner = origin;
    corners.next = origin + anyDirection(dice) * size;
    switch (dice.below(4)) {
    case 0:
        corners.prev = origin + anyDirection(dice) * size;
        break;
    case 1:
        corners.prev = corners.next + anyDirection(dice) * anyLength(dice);
        break;
    case 2:
        corners.prev = nudged(dice, corners.next);
        break;
    default:
        corners.prev = nudged(dice, origin + (corners.next - origin) *
                                                 static_cast<float>(dice.real(-2.0, 2.0)));
        break;
    }
    if (dice.oneIn(3))
        std::swap(corners.corner, corners.prev);
    return corners;
}

/// Upon an edge or beyond it, or about where directions vanish around a corner, give
/// or take a few floats.
QVector2D pointAtTheBorder(Dice &dice, const CornerTriangle &triangle)
{
    const int i = dice.below(3);
    const QVector2D start = triangle.edge(i).start;
    const QVector2D end = triangle.edge((i + 1) % 3).start;
    switch (dice.below(4)) {
    case 0:
        return nudged(dice, start + (end - start) * static_cast<float>(dice.real(0.0, 1.0)));
    case 1:
        return nudged(dice, start + (end - start) * static_cast<float>(dice.real(-30.0, 30.0)));
    case 2:
        return nudged(dice,
                      start + anyDirection(dice) * static_cast<float>(dice.real(0.8e-6, 1.2e-6)));
    default:
        return nudged(dice, start + triangle.edge(i).direction * anyLength(dice));
    }
}

double crossInDouble(QVector2D direction, QVector2D point, QVector2D origin)
{
    const double x = static_cast<double>(point.x()) - static_cast<double>(origin.x());
    const double y = static_cast<double>(point.y()) - static_cast<double>(origin.y());
    return static_cast<double>(direction.x()) * y - static_cast<double>(direction.y()) * x;
}

double distance(QVector2D point, QVector2D origin)
{
    return std::hypot(static_cast<double>(point.x()) - static_cast<double>(origin.x()),
                      static_cast<double>(point.y()) - static_cast<double>(origin.y()));
}

bool isFinite(QVector2D point)
{
    return std::isfinite(point.x()) && std::isfinite(point.y());
}

bool hasPointWithin(const CornerTriangle &triangle, QVector2D point)
{
    return (TriangleReach(triangle).pointsWithin(four(point.x()), four(point.y())) & 1u) != 0;
}

bool hasFarPointWithin(const CornerTriangle &triangle, QVector2D point)
{
    return (TriangleReach(triangle).farPointsWithin(four(point.x()), four(point.y())) & 1u) != 0;
}

/// A corner of the triangle is so near that its direction from there vanishes.
bool isNear(const CornerTriangle &triangle, QVector2D point)
{
    constexpr double Near = 1.000001e-6;
    return distance(point, triangle.edge(0).start) <= Near ||
           distance(point, triangle.edge(1).start) <= Near ||
           distance(point, triangle.edge(2).start) <= Near;
}

unsigned boxesWithin(const CornerTriangle &triangle, const Boxes4 &boxes)
{
    const TriangleReach reach(triangle);
    return reach.farBoxesWithin(boxes) | reach.nearBoxesWithin(boxes);
}

/// Four boxes of which the second is the one.
Boxes4 boxesOf(const OrientedBox &box)
{
    constexpr float Far = 1e30f;
    Boxes4 boxes{four(Far),  four(Far),  four(1.0f), four(0.0f),
                 four(1.0f), four(0.0f), four(1.0f), four(1.0f)};
    box.putInto(boxes, 1);
    return boxes;
}

TEST(CornerTriangle, NormalisesAsQtDoes)
{
    SCOPED_TRACE("seed " + std::to_string(Seed));
    Dice dice(Seed);
    constexpr float inf = std::numeric_limits<float>::infinity();
    const float special[] = {0.0f,  -0.0f,  1.0f, -1.0f, 1e-6f, 1e-45f,
                             3e38f, -3e38f, inf,  -inf,  NAN,   7.07e-7f};
    for (int i = 0; i < 200000 && !HasFailure(); ++i) {
        QVector2D vector = anyDirection(dice);
        if (dice.oneIn(2))
            vector *= anyLength(dice);
        if (dice.oneIn(8))
            vector.setX(special[dice.below(12)]);
        if (dice.oneIn(8))
            vector.setY(special[dice.below(12)]);
        vector = nudged(dice, vector);
        const QVector2D expected = vector.normalized();
        const QVector2D result = unit(vector);
        const bool isNaN = std::isnan(expected.x()) || std::isnan(expected.y());
        if (isNaN) {
            EXPECT_EQ(std::isnan(result.x()), std::isnan(expected.x())) << vector.x();
            EXPECT_EQ(std::isnan(result.y()), std::isnan(expected.y())) << vector.y();
        } else {
            EXPECT_TRUE(same(result, expected)) << vector.x() << ' ' << vector.y();
        }
    }
}

TEST(CornerTriangle, FindsEarsOnlyWhereTheCosineIsANumber)
{
    SCOPED_TRACE("seed " + std::to_string(Seed));
    Dice dice(Seed);
    int ears = 0;
    for (int i = 0; i < 20000; ++i) {
        const Ring ring = anyRing(dice, 3);
        Vertex corner = {1, 2, 0.0f, 0.0f, true, false};
        evaluateCorner(corner, ring.points.data(), 0, [](const CornerTriangle &) { return false; });
        ears += corner.isEar ? 1 : 0;
        EXPECT_FALSE(corner.isEar && !std::isfinite(corner.cosAngle)) << ring.name;
    }
    EXPECT_GT(ears, 1000);
}

/// How far outside of an edge the float comparison still holds, in half units in the
/// last place of the distance from the edge's first corner: up to 3.
TEST(TriangleReach, RestsOnThreeRoundings)
{
    SCOPED_TRACE("seed " + std::to_string(Seed));
    Dice dice(Seed);
    constexpr double HalfUnit = 0x1p-24;
    constexpr double NearCorner = 1.000001e-6;
    double worst = 0.0;
    for (int i = 0; i < 400000; ++i) {
        const Corners corners = anyCorners(dice);
        const CornerTriangle triangle(corners.corner, corners.next, corners.prev);
        const QVector2D point = pointAtTheBorder(dice, triangle);
        const CornerTriangle::Edge &edge = triangle.edge(dice.below(3));
        if (!isFinite(point) || distance(point, edge.start) <= NearCorner)
            continue;
        if (cross(edge.direction, unit(point - edge.start)) >= 0.0f) {
            worst = std::max(worst, -crossInDouble(edge.direction, point, edge.start) /
                                        (HalfUnit * distance(point, edge.start)));
        }
    }
    EXPECT_LE(worst, 3.0);
    EXPECT_GT(worst, 1.25) << "the points are too easy";
}

TEST(TriangleReach, MissesNoPointThatBlocks)
{
    SCOPED_TRACE("seed " + std::to_string(Seed));
    Dice dice(Seed);
    int blocked = 0;
    int outside = 0;
    for (int i = 0; i < 400000 && !HasFailure(); ++i) {
        const Corners corners = anyCorners(dice);
        const CornerTriangle triangle(corners.corner, corners.next, corners.prev);
        const QVector2D point = pointAtTheBorder(dice, triangle);
        if (!triangle.isBlockedBy(point))
            continue;
        ++blocked;
        for (int k = 0; k < 3; ++k) {
            const CornerTriangle::Edge &edge = triangle.edge(k);
            if (crossInDouble(edge.direction, point, edge.start) < 0.0) {
                ++outside;
                break;
            }
        }
        EXPECT_TRUE(hasPointWithin(triangle, point))
            << std::hexfloat << point.x() << ' ' << point.y() << ", triangle " << i;
        EXPECT_TRUE(hasFarPointWithin(triangle, point) || isNear(triangle, point))
            << std::hexfloat << point.x() << ' ' << point.y() << ", triangle " << i;
    }
    EXPECT_GT(blocked, 20000);
    EXPECT_GT(outside, 5000) << "the points are too easy";
}

TEST(TriangleReach, MissesNoBoxWithAPointThatBlocks)
{
    SCOPED_TRACE("seed " + std::to_string(Seed));
    Dice dice(Seed);
    int blocked = 0;
    int windows = 0;
    for (int i = 0; i < 300000 && !HasFailure(); ++i) {
        const Corners corners = anyCorners(dice);
        const CornerTriangle triangle(corners.corner, corners.next, corners.prev);
        std::vector<QVector2D> points{pointAtTheBorder(dice, triangle)};
        if (!triangle.isBlockedBy(points[0]))
            continue;
        ++blocked;
        for (int more = dice.below(4); more > 0; --more) {
            QVector2D other = pointAtTheBorder(dice, triangle);
            if (dice.oneIn(2))
                other = points[0] + anyDirection(dice) * anyLength(dice);
            if (isFinite(other))
                points.push_back(other);
        }
        std::vector<int> order(points.size());
        std::iota(order.begin(), order.end(), 0);
        const OrientedBox box =
            OrientedBox::around(points.data(), order.data(), order.data() + order.size());
        const TriangleReach reach(triangle);
        const TriangleWindow window(triangle);
        const Boxes4 boxes = boxesOf(box);
        if (isNear(triangle, points[0]))
            EXPECT_NE(reach.nearBoxesWithin(boxes) & 2u, 0u) << i;
        else
            EXPECT_NE(reach.farBoxesWithin(boxes) & 2u, 0u) << i;
        EXPECT_NE(window.boxesWithin(boxes) & 2u, 0u) << i;
        windows += (window.boxesWithin(boxes) & 1u) == 0 ? 1 : 0;
    }
    EXPECT_GT(blocked, 20000);
    EXPECT_GT(windows, 5000) << "hardly a triangle has a window";
}

/// It would be no use otherwise.
TEST(TriangleReach, PassesOverWhatIsClearlyOutside)
{
    const CornerTriangle triangle({0, 0}, {1, 0}, {0, 1});
    const struct
    {
        const char *name;
        QVector2D point;
        bool isWithin;
    } cases[] = {
        {"inside", {0.25f, 0.25f}, true},
        {"upon an edge", {0.5f, 0.0f}, true},
        {"a little outside of an edge along an axis", {0.5f, -1e-7f}, false},
        {"a little outside of a diagonal", {0.5f, 0.5f + 0x1p-23f}, true},
        {"outside by more than rounding", {0.5f, 0.5f + 0x1p-20f}, false},
        {"hardly apart from a corner", {0.0f, -1e-6f}, true},
        {"near a corner", {0.0f, -4e-6f}, false},
        {"beyond the diagonal", {0.6f, 0.6f}, false},
        {"not a number", {NAN, 0.25f}, false},
    };
    for (const auto &row : cases) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(hasPointWithin(triangle, row.point), row.isWithin);
        if (std::isnan(row.point.x()))
            continue;
        const int only = 0;
        const Boxes4 boxes = boxesOf(OrientedBox::around(&row.point, &only, &only + 1));
        EXPECT_EQ((boxesWithin(triangle, boxes) & 2u) != 0, row.isWithin);
    }
}

/// Slivers about as thin as those that have no window, and points along them, near and far.
TEST(TriangleWindow, HoldsWhatBlocksASliver)
{
    SCOPED_TRACE("seed " + std::to_string(Seed));
    Dice dice(Seed);
    int blocking = 0;
    for (int i = 0; i < 600000; ++i) {
        const QVector2D along = anyDirection(dice);
        const QVector2D across(-along.y(), along.x());
        const auto length = static_cast<float>(std::pow(10.0, dice.real(-1.0, 2.0)));
        const auto height = length * static_cast<float>(std::pow(10.0, dice.real(-7.0, -5.5)));
        const QVector2D corner = dice.oneIn(2) ? QVector2D() : anyDirection(dice) * (3.0f * length);
        const QVector2D next = corner + along * length;
        const QVector2D prev =
            nudged(dice, corner + along * (length * static_cast<float>(dice.real(0.0, 1.0))) +
                             across * height);
        const CornerTriangle triangle(corner, next, prev);
        const QVector2D origin = triangle.edge(dice.below(3)).start;
        const auto distance = length * static_cast<float>(std::pow(10.0, dice.real(-1.0, 3.0)));
        const QVector2D point =
            nudged(dice, origin + along * (dice.oneIn(2) ? distance : -distance));
        if (!triangle.isBlockedBy(point))
            continue;
        ++blocking;
        Boxes4 boxes{};
        boxes.centreX = four(point.x());
        boxes.centreY = four(point.y());
        ASSERT_EQ(TriangleWindow(triangle).boxesWithin(boxes), 0xfu)
            << "a sliver of " << length << " x " << height << ", a point " << distance << " away";
    }
    EXPECT_GT(blocking, 10000);
}

/// All lines along the edges of the sliver run through the box; yet it is far off.
TEST(TriangleWindow, KeepsAwayWhatLiesAlongASliver)
{
    const CornerTriangle sliver({0, 0}, {1, 0}, {0.5f, 1e-5f});
    const std::vector<QVector2D> points{{10, -5}, {11, 5}};
    const int order[] = {0, 1};
    const Boxes4 boxes = boxesOf(OrientedBox::around(points.data(), order, order + 2));
    EXPECT_NE(boxesWithin(sliver, boxes) & 2u, 0u);
    EXPECT_EQ(TriangleWindow(sliver).boxesWithin(boxes) & 2u, 0u);
}

/// However flat: what is rounded along it must not widen it.
TEST(OrientedBox, IsAsThinAsAFlatLine)
{
    for (const float height : {1e-3f, 1e-9f, 1e-16f, 1e-23f, 1e-30f}) {
        const std::vector<QVector2D> points{
            {0, 0}, {0.25f, height}, {0.5f, 0}, {0.75f, height}, {1, 0}};
        const int order[] = {0, 1, 2, 3, 4};
        const OrientedBox box = OrientedBox::around(points.data(), order, order + 5);
        EXPECT_LT(box.across, height);
        EXPECT_LT(box.widthAcross({1, 0}), height);
        EXPECT_GE(box.widthAcross({0, 1}), 0.5f);
    }
}

TEST(OrientedBox, HoldsItsPoints)
{
    SCOPED_TRACE("seed " + std::to_string(Seed));
    Dice dice(Seed);
    for (int i = 0; i < 20000 && !HasFailure(); ++i) {
        const float size = anyLength(dice);
        const QVector2D origin = anyDirection(dice) * anyLength(dice);
        std::vector<QVector2D> points;
        std::vector<int> order;
        for (int count = dice.between(1, 20); count > 0; --count) {
            const QVector2D point = origin + anyDirection(dice) * size;
            if (isFinite(point)) {
                order.push_back(static_cast<int>(points.size()));
                points.push_back(point);
            }
        }
        if (points.empty())
            continue;
        const OrientedBox box =
            OrientedBox::around(points.data(), order.data(), order.data() + order.size());
        for (const QVector2D point : points)
            EXPECT_TRUE(box.holds(point) || !isFinite(box.centre)) << i;
    }
}

} // namespace
