#include "Triangles/Ears/LineSearch.h"

#include "support/NearCorners.h"
#include "support/RandomRings.h"
#include "support/RingRecipes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>

using namespace Halvard::Orv;
using namespace OrvTest;

namespace {

constexpr std::uint32_t Seed = 20261122;

CornerTriangle anyTriangle(Dice &dice, const std::vector<QVector2D> &points)
{
    const auto any = [&] {
        return points[static_cast<std::size_t>(dice.below(static_cast<int>(points.size())))];
    };
    if (dice.oneIn(2))
        return CornerTriangle(any(), any(), any());
    const auto count = static_cast<int>(points.size());
    const int corner = dice.below(count);
    const auto at = [&](int i) { return points[static_cast<std::size_t>(i % count)]; };
    return CornerTriangle(at(corner), at(corner + 1), at(corner + count - 1));
}

void noteLines(LineSearch &search, Dice &dice, const std::vector<QVector2D> &points)
{
    for (int i = 0; i < 64; ++i)
        search.note(anyTriangle(dice, points), LineSearch::ManySteps);
}

/// It need not find what is near a corner, and all that it finds has to block.
TEST(LineSearch, FindsABlockerWhereALoopDoesWhileSitesGo)
{
    SCOPED_TRACE("seed " + std::to_string(Seed));
    Dice dice(Seed);
    LineSearch search;
    int found = 0;
    int notFound = 0;
    const std::vector<RingFamily> &families = hostileRings();
    for (int round = 0; round < 150 && !HasFailure(); ++round) {
        const auto family = static_cast<std::size_t>(round) % families.size();
        const RingRecipe recipe =
            dice.oneIn(2) ? anyRecipe(dice) : variationOf(families[family].recipe, dice);
        SCOPED_TRACE(written(recipe));
        const std::vector<QVector2D> points = ringOf(recipe, dice.between(300, 1500), dice);
        const int count = static_cast<int>(points.size());
        search.reset(count, count);
        noteLines(search, dice, points);
        std::vector<int> sites(points.size());
        std::iota(sites.begin(), sites.end(), 0);
        search.place(sites, points);
        for (int i = 0; i < 100 && sites.size() > 10 && !HasFailure(); ++i) {
            for (int gone = dice.below(6); gone > 0; --gone) {
                const auto at = dice.below(static_cast<int>(sites.size()));
                search.remove(sites[static_cast<std::size_t>(at)]);
                sites.erase(sites.begin() + at);
            }
            const CornerTriangle triangle = anyTriangle(dice, points);
            const auto at = [&](int site) { return points[static_cast<std::size_t>(site)]; };
            const bool isBlocked = std::any_of(sites.begin(), sites.end(), [&](int site) {
                return triangle.isBlockedBy(at(site)) && !isNearACorner(at(site), triangle);
            });
            const int blocker = search.blocker(triangle, TriangleReach(triangle));
            if (blocker == NoSite) {
                EXPECT_FALSE(isBlocked);
                ++notFound;
            } else {
                EXPECT_TRUE(triangle.isBlockedBy(at(blocker)));
                EXPECT_TRUE(std::binary_search(sites.begin(), sites.end(), blocker)) << "gone";
                ++found;
            }
        }
    }
    EXPECT_GT(found, 2000);
    EXPECT_GT(notFound, 2000);
}

TEST(LineSearch, IsWorthItAfterSomeLongSearchesThatTookTheTimeOfPlacing)
{
    const CornerTriangle triangle({0, 0}, {1, 0}, {0, 1});
    constexpr int Sites = 1000;
    LineSearch search;
    search.reset(Sites, Sites);
    EXPECT_FALSE(search.isWorthIt());
    search.note(triangle, 100 * Sites);
    EXPECT_FALSE(search.isWorthIt()) << "one search tells nothing of the others";

    search.reset(Sites, Sites);
    for (int i = 0; i < 16; ++i)
        search.note(triangle, 100);
    EXPECT_FALSE(search.isWorthIt()) << "they took less time than placing would";
    search.note(triangle, 4 * Sites);
    EXPECT_TRUE(search.isWorthIt());
}

/// Edges up to 1e-6 long have no direction.
TEST(LineSearch, LearnsNothingFromTrianglesWithoutDirection)
{
    LineSearch search;
    search.reset(300, 300);
    for (int i = 0; i < 100; ++i)
        search.note(CornerTriangle({0, 0}, {1e-7f, 0}, {0, 1e-7f}), 1000);
    EXPECT_FALSE(search.isWorthIt());
}

TEST(LineSearch, PlacesAnewOnceOtherSearchesHaveTakenLong)
{
    SCOPED_TRACE("seed " + std::to_string(Seed));
    Dice dice(Seed);
    RingRecipe recipe;
    recipe.shape = RingRecipe::Square;
    const std::vector<QVector2D> points = ringOf(recipe, 1000, dice);
    std::vector<int> sites(points.size());
    std::iota(sites.begin(), sites.end(), 0);
    LineSearch search;
    search.reset(1000, 1000);
    noteLines(search, dice, points);
    EXPECT_TRUE(search.isDue()) << "for the first time";
    search.place(sites, points);
    EXPECT_FALSE(search.isDue());

    // Around all points, which are then removed, so that nothing is found and all is searched.
    const CornerTriangle around({-9, -9}, {9, -9}, {0, 20});
    for (const int site : sites)
        search.remove(site);
    for (int i = 0; i < 100; ++i)
        EXPECT_EQ(search.blocker(around, TriangleReach(around)), NoSite);
    EXPECT_FALSE(search.isDue()) << "the sample is the same";
    noteLines(search, dice, points);
    noteLines(search, dice, points);
    EXPECT_TRUE(search.isDue());
    search.place(sites, points);
    EXPECT_FALSE(search.isDue());
    noteLines(search, dice, points);
    EXPECT_FALSE(search.isDue()) << "nothing was spent";
}

} // namespace
