#include "support/MessageCapture.h"
#include "support/PlainGeometry.h"
#include "support/RandomRings.h"
#include "support/RingRecipes.h"

#include <OrvModel/Triangulate2D.h>

#include <gmock/gmock.h>

#include <cstdlib>
#include <map>

using namespace Halvard::Orv;
using namespace OrvTest;

namespace {

using Points = std::vector<QVector2D>;
using Triples = std::vector<int>;

constexpr std::uint32_t Seed = 20240917;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr int LargeRing = 1200;
constexpr int MiddleRing = 500;
#else
constexpr int LargeRing = 2500;
constexpr int MiddleRing = 1200;
#endif

/// What the environment asks for, to test more than there is time for every day.
int countFrom(const char *variable, int usual)
{
    const char *text = std::getenv(variable);
    return text ? std::atoi(text) : usual;
}

Triples triangulated(const Points &points, bool clockwise)
{
    std::vector<float> numbers;
    for (const QVector2D &point : points) {
        numbers.push_back(point.x());
        numbers.push_back(point.y());
    }
    QVector<int> triangles;
    Triangulate2D(static_cast<int>(points.size()), numbers.data(), triangles, clockwise);
    return {triangles.begin(), triangles.end()};
}

std::string written(const Points &points)
{
    std::ostringstream text;
    text << std::hexfloat;
    for (const QVector2D &point : points)
        text << '{' << point.x() << "f, " << point.y() << "f}, ";
    return text.str();
}

/// Compares result and messages with the plain rules. Whether there are triangles.
bool expectPlainResult(const Ring &ring, bool clockwise)
{
    const Triples expected = plainTriangulate2D(ring.points, clockwise);
    const MessageCapture capture;
    const Triples triangles = triangulated(ring.points, clockwise);
    const std::vector<Message> messages =
        expected.empty() ? std::vector<Message>{{QtWarningMsg, "Unable to triangulate polygon."}}
                         : std::vector<Message>{};
    EXPECT_EQ(triangles, expected)
        << ring.name << (clockwise ? ", clockwise: " : ": ") << written(ring.points);
    EXPECT_EQ(capture.messages(), messages) << ring.name;
    return !expected.empty();
}

/// Rings and outcomes by their kind, so that no kind can be always sound or always
/// stuck without anybody noticing.
struct Tally
{
    int sound = 0;
    int stuck = 0;
};

TEST(Triangulate2DReference, AgreesOnSmallRings)
{
    SCOPED_TRACE("seed " + std::to_string(Seed));
    Dice dice(Seed);
    std::map<std::string, Tally> tallies;
    const int rings = countFrom("ORV_TEST_SMALL_RINGS", 20000);
    for (int i = 0; i < rings && !HasFailure(); ++i) {
        const Ring ring = anyRing(dice, dice.between(5, 14));
        const bool sound = expectPlainResult(ring, dice.oneIn(3));
        ++(sound ? tallies[ring.name].sound : tallies[ring.name].stuck);
    }
    for (const auto &[name, tally] : tallies) {
        EXPECT_GT(tally.sound, 0) << name;
        EXPECT_GT(tally.stuck, 0) << name;
    }
    EXPECT_EQ(tallies.size(), 6u * 4u);
}

TEST(Triangulate2DReference, AgreesOnRingsOfEverySize)
{
    SCOPED_TRACE("seed " + std::to_string(Seed));
    Dice dice(Seed);
    for (int count = 3; count < 140 && !HasFailure(); ++count) {
        expectPlainResult(starRing(dice, count), false);
        expectPlainResult(convexRing(dice, count), false);
        expectPlainResult(anyRing(dice, count), false);
        expectPlainResult({"backward star", reversed(starRing(dice, count).points)}, true);
        expectPlainResult({"backward ring", reversed(anyRing(dice, count).points)}, true);
    }
}

TEST(Triangulate2DReference, AgreesOnLargeRings)
{
    SCOPED_TRACE("seed " + std::to_string(Seed));
    Dice dice(Seed);
    for (const int count : {600, 1024, countFrom("ORV_TEST_LARGE_RING", LargeRing)}) {
        SCOPED_TRACE(count);
        EXPECT_TRUE(expectPlainResult(starRing(dice, count), false));
        EXPECT_TRUE(expectPlainResult(windingRing(dice, count), false));
        EXPECT_TRUE(expectPlainResult(
            {"backward winding", reversed(windingRing(dice, count).points)}, true));
        EXPECT_TRUE(expectPlainResult(combRing(count / 2), false));
        EXPECT_TRUE(expectPlainResult(spiralRing(count), false));
        EXPECT_TRUE(
            expectPlainResult({"backward comb", reversed(combRing(count / 2).points)}, true));
        expectPlainResult(stutteringRing(dice, count), false);
        expectPlainResult(latticeRing(dice, count), false);
        expectPlainResult(crossingRing(dice, count), false);
        expectPlainResult(anyRing(dice, count), false);
    }
    EXPECT_TRUE(expectPlainResult(convexRing(dice, 500), false));
}

/// Large enough for boxes, and degenerate in every way.
TEST(Triangulate2DReference, AgreesOnDegenerateRingsOfManyCorners)
{
    SCOPED_TRACE("seed " + std::to_string(Seed));
    Dice dice(Seed);
    const int rings = countFrom("ORV_TEST_DEGENERATE_RINGS", 150);
    for (int i = 0; i < rings && !HasFailure(); ++i)
        expectPlainResult(anyRing(dice, dice.between(257, 400)), dice.oneIn(3));
}

/// Every family as it is, and many rings like it.
TEST(Triangulate2DReference, AgreesOnHostileFamilies)
{
    SCOPED_TRACE("seed " + std::to_string(Seed));
    Dice dice(Seed);
    const int variations = countFrom("ORV_TEST_VARIATIONS", 4);
    for (const RingFamily &family : hostileRings()) {
        expectPlainResult({family.name, ringOf(family.recipe, MiddleRing, dice)}, false);
        expectPlainResult({family.name, ringOf(family.recipe, MiddleRing, dice)}, true);
        for (int i = 0; i < variations && !HasFailure(); ++i) {
            const RingRecipe recipe = variationOf(family.recipe, dice);
            const std::string name = std::string(family.name) + ", " + written(recipe);
            const int count = dice.between(257, 400);
            expectPlainResult({name, ringOf(recipe, count, dice)}, dice.oneIn(2));
        }
    }
}

TEST(Triangulate2DReference, AgreesOnRingsByAnyRecipe)
{
    SCOPED_TRACE("seed " + std::to_string(Seed));
    Dice dice(Seed);
    const int rings = countFrom("ORV_TEST_RECIPES", 200);
    for (int i = 0; i < rings && !HasFailure(); ++i) {
        const RingRecipe recipe = anyRecipe(dice);
        const int count = dice.oneIn(10) ? dice.between(257, MiddleRing) : dice.between(257, 400);
        expectPlainResult({written(recipe), ringOf(recipe, count, dice)}, dice.oneIn(2));
    }
}

long long twiceTheArea(const Points &points, int first, int second, int third)
{
    const auto x = [&](int i) {
        return static_cast<long long>(points[static_cast<std::size_t>(i)].x());
    };
    const auto y = [&](int i) {
        return static_cast<long long>(points[static_cast<std::size_t>(i)].y());
    };
    return (x(second) - x(first)) * (y(third) - y(first)) -
           (x(third) - x(first)) * (y(second) - y(first));
}

/// Counter-clockwise triangles whose areas add up to the ring's, with every edge
/// of the ring once and every other edge once each way, tile it. Coordinates are
/// whole numbers, so that the areas are exact.
void expectTiling(const Points &points, const Triples &triangles, bool clockwise)
{
    const int count = static_cast<int>(points.size());
    ASSERT_EQ(triangles.size(), 3 * (points.size() - 2));
    long long ringArea = 0;
    for (int i = 1; i + 1 < count; ++i)
        ringArea += twiceTheArea(points, 0, i, i + 1);
    long long area = 0;
    std::map<std::pair<int, int>, int> edges;
    for (std::size_t t = 0; t < triangles.size(); t += 3) {
        const int corners[] = {triangles[t], triangles[t + 1], triangles[t + 2]};
        const long long one = twiceTheArea(points, corners[0], corners[1], corners[2]);
        EXPECT_GT(one, 0) << "triangle " << t / 3;
        area += one;
        for (int corner = 0; corner < 3; ++corner)
            ++edges[{corners[corner], corners[(corner + 1) % 3]}];
    }
    EXPECT_EQ(area, clockwise ? -ringArea : ringArea);
    for (int i = 0; i < count; ++i) {
        const int next = (i + 1) % count;
        EXPECT_EQ((edges.erase(clockwise ? std::pair(next, i) : std::pair(i, next))), 1u);
    }
    for (const auto &[edge, times] : edges) {
        EXPECT_EQ(times, 1);
        EXPECT_EQ(edges.count({edge.second, edge.first}), 1u);
    }
}

TEST(Triangulate2DReference, TilesSimpleRings)
{
    SCOPED_TRACE("seed " + std::to_string(Seed));
    Dice dice(Seed);
    for (int i = 0; i < 2000 && !HasFailure(); ++i) {
        const Ring ring = latticeStarRing(dice, dice.between(5, 40));
        SCOPED_TRACE(written(ring.points));
        expectTiling(ring.points, triangulated(ring.points, false), false);
        const Points backward = reversed(ring.points);
        expectTiling(backward, triangulated(backward, true), true);
    }
}

/// Far beyond what the plain rules could do in the time of a test.
TEST(Triangulate2DReference, TilesACombOfManyCorners)
{
    const Ring ring = combRing(50000);
    const MessageCapture capture;
    expectTiling(ring.points, triangulated(ring.points, false), false);
    EXPECT_THAT(capture.messages(), ::testing::IsEmpty());
}

} // namespace
