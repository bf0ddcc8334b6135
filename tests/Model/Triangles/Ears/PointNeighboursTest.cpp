#include "Triangles/Ears/PointNeighbours.h"

#include "support/RandomRings.h"
#include "support/RingRecipes.h"

#include <gmock/gmock.h>

#include <cmath>
#include <numeric>
#include <set>

using namespace Halvard::Orv;
using namespace OrvTest;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

using Points = std::vector<QVector2D>;

constexpr std::uint32_t Seed = 20261122;

std::vector<int> allNumbers(const Points &points)
{
    std::vector<int> numbers(points.size());
    std::iota(numbers.begin(), numbers.end(), 0);
    return numbers;
}

bool isFinite(const Points &points)
{
    return std::all_of(points.begin(), points.end(), [](QVector2D point) {
        return std::isfinite(point.x()) && std::isfinite(point.y());
    });
}

bool areSame(QVector2D first, QVector2D second)
{
    return first.x() == second.x() && first.y() == second.y();
}

/// So near that an edge from the one to the other has no direction.
bool areNear(QVector2D first, QVector2D second)
{
    const double x = static_cast<double>(first.x()) - static_cast<double>(second.x());
    const double y = static_cast<double>(first.y()) - static_cast<double>(second.y());
    return std::hypot(x, y) <= 1.000001e-6;
}

std::vector<int> firstOfEachPoint(const Points &points)
{
    std::vector<int> firsts(points.size(), -1);
    PointNeighbours(points.data(), allNumbers(points)).forEachPoint([&](int number, int first) {
        firsts[static_cast<std::size_t>(number)] = first;
    });
    return firsts;
}

std::vector<int> withNeighbours(const Points &points)
{
    return PointNeighbours(points.data(), allNumbers(points)).pointsWithNeighbours();
}

TEST(PointNeighbours, TellsTheFirstCornerAtEachPoint)
{
    const Points points{{0, 0}, {1, 0}, {0, 0}, {1, 1}, {-0.0f, 0}, {1, 0}, {0, 1}};
    EXPECT_THAT(firstOfEachPoint(points), ElementsAre(0, 1, 0, 3, 0, 1, 6));
}

TEST(PointNeighbours, FindsBothOfTwoPointsThatAreNear)
{
    const struct
    {
        const char *name;
        Points points;
        std::vector<int> expected;
    } cases[] = {
        {"apart", {{0, 0}, {1, 0}, {2, 0}}, {}},
        {"the same", {{0, 0}, {1, 0}, {0, 0}}, {}},
        {"near along x", {{0, 0}, {1, 0}, {9e-7f, 0}}, {0, 2}},
        {"near along y", {{1, 0}, {0, 5}, {0, 5 - 0x1p-20f}}, {1, 2}},
        {"not near", {{0, 0}, {1, 0}, {2e-6f, 0}}, {}},
        {"the same place along the direction of sorting",
         {{0, 0}, {0.59444776f, -0.80412737f}, {1.18889552f, -1.60825474f}},
         {}},
        {"each point once", {{0, 0}, {0, 0}, {5e-7f, 0}, {5e-7f, 0}}, {0, 2}},
    };
    for (const auto &row : cases)
        EXPECT_EQ(withNeighbours(row.points), row.expected) << row.name;
}

/// Doubles about 1e11 are 1.5e-5 apart: along the direction of sorting, neighbours come to
/// the same one or to the next.
TEST(PointNeighbours, FindsNeighboursFarOut)
{
    constexpr float Step = 9e-7f;
    for (int i = 0; i < 100; ++i) {
        const float y = static_cast<float>(i) * Step;
        const Points points{{1e11f, y}, {1e11f, y + Step}, {0, 0}};
        EXPECT_THAT(withNeighbours(points), ElementsAre(0, 1)) << i;
    }
}

/// Across the direction of sorting, hundreds come to about the same place, the two of a pair
/// far from each other.
TEST(PointNeighbours, FindsNeighboursAcrossTheDirectionOfSorting)
{
    Points points;
    for (int i = 0; i < 200; ++i) {
        const auto x = static_cast<float>(-0.59444776 * i / 200);
        const auto y = static_cast<float>(0.80412737 * i / 200);
        points.emplace_back(x, y);
        points.emplace_back(x + 6e-7f, y);
    }
    EXPECT_EQ(withNeighbours(points), allNumbers(points));
}

/// There may be more: where very many are about as far along the direction of sorting, not
/// all are looked at.
TEST(PointNeighbours, MissesNoneThatIsNear)
{
    SCOPED_TRACE("seed " + std::to_string(Seed));
    Dice dice(Seed);
    int near = 0;
    int pointsFound = 0;
    int pointsAsked = 0;
    for (int round = 0; round < 300 && !HasFailure(); ++round) {
        const int count = dice.between(5, 300);
        const RingRecipe recipe = anyRecipe(dice);
        const Points points =
            round % 2 == 0 ? ringOf(recipe, count, dice) : anyRing(dice, count).points;
        if (!isFinite(points))
            continue;
        const std::vector<int> firsts = firstOfEachPoint(points);
        const std::vector<int> found = withNeighbours(points);
        const std::set<int> isFound(found.begin(), found.end());
        pointsFound += static_cast<int>(found.size());
        pointsAsked += count;
        for (std::size_t i = 0; i < points.size(); ++i) {
            EXPECT_TRUE(areSame(points[static_cast<std::size_t>(firsts[i])], points[i]));
            for (std::size_t j = 0; j < i; ++j) {
                EXPECT_EQ(firsts[i] == firsts[j], areSame(points[i], points[j]));
                if (areSame(points[i], points[j]) || !areNear(points[i], points[j]))
                    continue;
                ++near;
                EXPECT_EQ(isFound.count(firsts[i]), 1u) << written(recipe);
                EXPECT_EQ(isFound.count(firsts[j]), 1u) << written(recipe);
            }
        }
    }
    EXPECT_GT(near, 10000);
    EXPECT_LT(pointsFound, pointsAsked / 2) << "nearly all are taken for neighbours";
}

/// Otherwise these would be searched twice.
TEST(PointNeighbours, FindsNoneInOrdinaryRings)
{
    Dice dice(Seed);
    constexpr int Count = 20000;
    EXPECT_THAT(withNeighbours(combRing(Count / 2).points), IsEmpty());
    EXPECT_THAT(withNeighbours(spiralRing(Count).points), IsEmpty());
    EXPECT_THAT(withNeighbours(windingRing(dice, Count).points), IsEmpty());
    EXPECT_THAT(withNeighbours(convexRing(dice, 1000).points), IsEmpty());
}

} // namespace
