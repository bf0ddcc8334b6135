#include "support/MessageCapture.h"

#include <OrvModel/Triangulate2D.h>

#include <gmock/gmock.h>

#include <QtGui/QVector2D>

#include <functional>
#include <limits>

using namespace Halvard::Orv;
using namespace OrvTest;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

using Points = std::vector<QVector2D>;
using Triples = std::vector<int>;

constexpr float NaN = std::numeric_limits<float>::quiet_NaN();
constexpr float Infinity = std::numeric_limits<float>::infinity();

const Message TooFew{QtWarningMsg, "Cannot triangulate a polygon with fewer than 3 vertices"};
const Message Stuck{QtWarningMsg, "Unable to triangulate polygon."};

std::vector<float> interleaved(const Points &points)
{
    std::vector<float> numbers;
    for (const QVector2D &point : points) {
        numbers.push_back(point.x());
        numbers.push_back(point.y());
    }
    return numbers;
}

/// The result for a vector that holds something stale beforehand.
Triples triangulated(const Points &points, bool clockwise)
{
    const std::vector<float> numbers = interleaved(points);
    QVector<int> triangles{7, 7, 7, 7, 7};
    Triangulate2D(static_cast<int>(points.size()), numbers.data(), triangles, clockwise);
    return {triangles.begin(), triangles.end()};
}

/// Each triple run the other way around.
Triples backwards(const Triples &triples)
{
    Triples result;
    for (std::size_t t = 0; t < triples.size(); t += 3)
        result.insert(result.end(), {triples[t + 2], triples[t + 1], triples[t]});
    return result;
}

/// Corner 0 of the pentagon lies at the origin, the ring runs counter-clockwise.
///
///             3
///          /     \         cosines: 0, 1: -1/sqrt(5)   2, 4: 0   3: -3/5
///      4             2
///        \          /
///          0 ---- 1
const Points Pentagon{{0, 0}, {2, 0}, {3, 2}, {1, 3}, {-1, 2}};

struct RingCase
{
    const char *name;
    Points points;
    Triples triangles;
    std::vector<Message> messages;
};

const RingCase RingCases[] = {
    // 2 and 4 tie with cosine 0: 2 goes. In 0 1 3 4 corner 1 (1/sqrt(10) = .32) is
    // sharper than 3 (1/sqrt(50) = .14), 4 (0) and 0 (-.45).
    {"convex pentagon", Pentagon, {1, 2, 3, 0, 1, 3, 4, 0, 3}, {}},

    //     5 -- 4         Eight times -s = -1/sqrt(2). 0 goes first; then the angle at
    //   6        3       one of its neighbours is always the sharpest:
    //   7        2       1 (-.32), 2 and 7 tie (0), 3 (.45) before 7 (.32), and
    //     0 -- 1         4 and 7 tie (s).
    {"octagon, all corners alike",
     {{1, 0}, {2, 0}, {3, 1}, {3, 2}, {2, 3}, {1, 3}, {0, 2}, {0, 1}},
     {7, 0, 1, 7, 1, 2, 7, 2, 3, 7, 3, 4, 7, 4, 5, 7, 5, 6},
     {}},

    //   4 -- 3           Ears 0, 2, 3, 4 tie with cosine 0, and 0 goes. Then 4 has
    //   |    |           1/sqrt(5), more than 2 and 3 (0) and 1 (-1/sqrt(5)).
    //   0-1--2
    {"straight corner at 1",
     {{0, 0}, {1, 0}, {2, 0}, {2, 2}, {0, 2}},
     {4, 0, 1, 3, 4, 1, 3, 1, 2},
     {}},

    // The same square from its straight corner on. Not 0, which comes first, but 1
    // is clipped; then 2 has 1/sqrt(5).
    {"straight corner at 0",
     {{1, 0}, {2, 0}, {2, 2}, {0, 2}, {0, 0}},
     {0, 1, 2, 0, 2, 3, 4, 0, 3},
     {}},

    //   5 -- 4           0, 1, 2, 4, 5 have cosine 0, but 3 lies exactly upon the
    //   |    |           edge from 1 to 5, so that 0 is no ear, and 1 goes first.
    //   |    3 -- 2      2 (2/sqrt(5) = .89) follows, and with it the edge 2-0 below
    //   |         |      3. Now 0 is an ear (.71), sharper than 4 and 5 (0).
    //   0 ------- 1
    {"ear blocked by a corner on its edge",
     {{0, 0}, {2, 0}, {2, 1}, {1, 1}, {1, 2}, {0, 2}},
     {0, 1, 2, 0, 2, 3, 5, 0, 3, 5, 3, 4},
     {}},

    //   4 ------ 3       1 and 2 are one point. Neither has an angle, but both lie
    //   |        |       upon the ears 0 and 3 without blocking them. 0 goes, then
    //   |        |       4 (.71), and what remains is flat: the last triangle is
    //   0 ------ 1,2     not tested.
    {"coincident corners",
     {{0, 0}, {2, 0}, {2, 0}, {2, 2}, {0, 2}},
     {4, 0, 1, 3, 4, 1, 3, 1, 2},
     {}},

    // 1 to 4 as in the pentagon. 0 has no place, takes its neighbours' angles with
    // it, but blocks no ear: 2 goes, then 3.
    {"corner that is not a number",
     {{NaN, 0}, {2, 0}, {3, 2}, {1, 3}, {-1, 2}},
     {1, 2, 3, 1, 3, 4, 4, 0, 1},
     {}},

    // 3 lies infinitely far, so that 2, 3 and 4 have no angle. 0 and 1 tie; then 1
    // has 1/sqrt(65).
    {"corner at infinity",
     {{0, 0}, {2, 0}, {3, 2}, {1, Infinity}, {-1, 2}},
     {4, 0, 1, 4, 1, 2, 4, 2, 3},
     {}},

    // 1, 2 and 3 lie upon the axis, 4 so little above it that the cosine at 3 is
    // exactly -1 while the sine is 2^-13: the only ear, and as blunt as can be.
    // Then 2 is one for the same reason.
    {"only ear with cosine -1",
     {{NaN, 0}, {-2, 0}, {-1, 0}, {0, 0}, {1, 0x1p-13f}},
     {2, 3, 4, 1, 2, 4, 4, 0, 1},
     {}},

    //   1 ---------- 2   A square run clockwise, with a dent at 4 that looks convex:
    //   |            |   it is clipped, and then nothing is left that looks so.
    //   |    .4.     |
    //   0 '      ' - 3
    {"stuck after one triangle", {{0, 0}, {0, 4}, {4, 4}, {4, 0}, {2, 1}}, {}, {Stuck}},

    //   4        2       0 and 3 are one point, a reflex corner twice. 1 goes, which
    //   | \ 0,3/ |       leaves 2 flat; 4 goes, which leaves 5 flat, and 0 and 3 see
    //   | /    \ |       their neighbours in one direction or in opposite ones.
    //   5        1
    {"stuck after two triangles",
     {{0, 0}, {2, -1}, {2, 1}, {0, 0}, {-2, 1}, {-2, -1}},
     {},
     {Stuck}},

    {"all upon one line", {{0, 0}, {1, 0}, {2, 0}, {3, 0}, {4, 0}}, {}, {Stuck}},
    {"all in one point", {{1, 1}, {1, 1}, {1, 1}, {1, 1}, {1, 1}}, {}, {Stuck}},
    {"nothing but NaN", {{NaN, NaN}, {NaN, NaN}, {NaN, NaN}, {NaN, NaN}, {NaN, NaN}}, {}, {Stuck}},
    {"pentagon run clockwise", {{-1, 2}, {1, 3}, {3, 2}, {2, 0}, {0, 0}}, {}, {Stuck}},
};

struct Turn
{
    const char *name;
    bool mirrored;
    std::function<QVector2D(QVector2D)> apply;
};

/// Everything that moves points without rounding. A mirrored ring is told to run
/// clockwise; its ears come in the same order, their corners in the opposite one.
const Turn Turns[] = {
    {"as it is", false, [](QVector2D p) { return p; }},
    {"a quarter turn", false, [](QVector2D p) { return QVector2D(-p.y(), p.x()); }},
    {"half a turn", false, [](QVector2D p) { return QVector2D(-p.x(), -p.y()); }},
    {"three quarters", false, [](QVector2D p) { return QVector2D(p.y(), -p.x()); }},
    {"1024 times larger", false, [](QVector2D p) { return 1024.0f * p; }},
    {"1024 times smaller", false, [](QVector2D p) { return p / 1024.0f; }},
    {"mirrored left to right", true, [](QVector2D p) { return QVector2D(-p.x(), p.y()); }},
    {"mirrored top to bottom", true, [](QVector2D p) { return QVector2D(p.x(), -p.y()); }},
    {"mirrored at the diagonal", true, [](QVector2D p) { return QVector2D(p.y(), p.x()); }},
};

TEST(Triangulate2D, CutsFiveAndMoreCorners)
{
    for (const RingCase &row : RingCases) {
        for (const Turn &turn : Turns) {
            SCOPED_TRACE(std::string(row.name) + ", " + turn.name);
            Points points;
            for (const QVector2D &point : row.points)
                points.push_back(turn.apply(point));
            const MessageCapture capture;
            const Triples triangles = triangulated(points, turn.mirrored);
            EXPECT_EQ(triangles, turn.mirrored ? backwards(row.triangles) : row.triangles);
            EXPECT_EQ(capture.messages(), row.messages);
        }
    }
}

/// The pentagon backwards: corner 4 - i stands at position i. 4 and 2 tie again,
/// and now 4 has the lower position, 0; then 0 (.32), at position 4, is the sharpest.
TEST(Triangulate2D, CutsAClockwisePentagonCounterClockwise)
{
    const MessageCapture capture;
    const Points points(Pentagon.rbegin(), Pentagon.rend());
    EXPECT_THAT(triangulated(points, true), ElementsAre(1, 0, 4, 1, 4, 3, 2, 1, 3));
    EXPECT_THAT(capture.messages(), IsEmpty());
}

/// The unit direction of (40, 1) has squares that add up to 1 + 2^-23 in single
/// precision, so the cosine at 3 comes out below -1; 4 lies 2^-21 above the line
/// of 1, 2 and 3. It is an ear all the same, and there is no other.
TEST(Triangulate2D, TakesAnEarWhoseCosineIsBelowMinusOne)
{
    const Points points{{NaN, 0}, {-80, -2}, {-40, -1}, {0, 0}, {40, 0x1.000008p+0f}};
    QVector<Vertex> corners(5, Vertex{0, 0, 0.0f, 0.0f, true, false});
    corners[3].next = 4;
    corners[3].prev = 2;
    UpdateVertex(corners, points.data(), 3);
    ASSERT_EQ(corners[3].cosAngle, -0x1.000002p+0f);

    EXPECT_THAT(triangulated(points, false), ElementsAre(2, 3, 4, 1, 2, 4, 4, 0, 1));
}

struct TableCase
{
    const char *name;
    Points points;
};

const TableCase ThreeCorners[] = {
    {"counter-clockwise", {{0, 0}, {1, 0}, {0, 1}}},
    {"clockwise", {{0, 0}, {0, 1}, {1, 0}}},
    {"upon one line", {{0, 0}, {1, 1}, {2, 2}}},
    {"in one point", {{5, 5}, {5, 5}, {5, 5}}},
    {"not numbers", {{NaN, NaN}, {NaN, NaN}, {NaN, NaN}}},
    {"infinite", {{Infinity, 0}, {0, Infinity}, {-Infinity, 0}}},
};

TEST(Triangulate2D, GivesThreeCornersAsTheyAre)
{
    for (const TableCase &row : ThreeCorners) {
        SCOPED_TRACE(row.name);
        const MessageCapture capture;
        EXPECT_THAT(triangulated(row.points, false), ElementsAre(0, 1, 2));
        EXPECT_THAT(triangulated(row.points, true), ElementsAre(0, 2, 1));
        EXPECT_THAT(capture.messages(), IsEmpty());
    }
}

const TableCase FourCorners[] = {
    {"square", {{0, 0}, {1, 0}, {1, 1}, {0, 1}}},
    {"square run clockwise", {{0, 0}, {0, 1}, {1, 1}, {1, 0}}},
    {"concave at 0", {{1, 1}, {4, 0}, {4, 4}, {0, 4}}},
    {"concave at 1", {{0, 0}, {2, 1}, {4, 0}, {2, 4}}},
    {"concave at 2", {{0, 0}, {4, 0}, {1, 1}, {0, 4}}},
    {"concave at 3", {{0, 0}, {4, 0}, {2, 4}, {2, 1}}},
    {"crossing itself", {{0, 0}, {1, 1}, {1, 0}, {0, 1}}},
    {"upon one line", {{0, 0}, {1, 0}, {2, 0}, {3, 0}}},
    {"in one point", {{5, 5}, {5, 5}, {5, 5}, {5, 5}}},
    {"not numbers", {{NaN, NaN}, {NaN, NaN}, {NaN, NaN}, {NaN, NaN}}},
};

TEST(Triangulate2D, SplitsFourCornersFromOneToThree)
{
    for (const TableCase &row : FourCorners) {
        SCOPED_TRACE(row.name);
        const MessageCapture capture;
        EXPECT_THAT(triangulated(row.points, false), ElementsAre(0, 1, 3, 1, 2, 3));
        EXPECT_THAT(triangulated(row.points, true), ElementsAre(0, 3, 1, 1, 3, 2));
        EXPECT_THAT(capture.messages(), IsEmpty());
    }
}

TEST(Triangulate2D, RefusesFewerThanThreeCorners)
{
    const float points[] = {0, 0, 1, 0};
    for (const int count : {2, 1, 0, -1, std::numeric_limits<int>::min()}) {
        for (const bool clockwise : {false, true}) {
            SCOPED_TRACE(count);
            const MessageCapture capture;
            QVector<int> triangles{1, 2, 3};
            Triangulate2D(count, points, triangles, clockwise);
            EXPECT_THAT(triangles, IsEmpty());
            EXPECT_THAT(capture.messages(), ElementsAre(TooFew));
        }
    }
}

TEST(Triangulate2D, KeepsTheCapacityOfTheResult)
{
    const MessageCapture capture;
    const std::vector<float> good = interleaved(Pentagon);
    const std::vector<float> flat{0, 0, 1, 0, 2, 0, 3, 0, 4, 0};
    QVector<int> triangles(64, 7);
    triangles.reserve(100);
    const int *const memory = triangles.constData();
    for (const auto &[count, points] : {std::pair(5, good), std::pair(5, flat), std::pair(2, good),
                                        std::pair(3, good), std::pair(4, good)}) {
        Triangulate2D(count, points.data(), triangles, false);
        EXPECT_EQ(triangles.capacity(), 100);
        EXPECT_EQ(triangles.constData(), memory);
    }
}

TEST(Triangulate2D, LeavesACopyOfTheResultAlone)
{
    const std::vector<float> points = interleaved(Pentagon);
    QVector<int> triangles{1, 2, 3};
    const QVector<int> copy = triangles;
    Triangulate2D(5, points.data(), triangles, false);
    EXPECT_THAT(copy, ElementsAre(1, 2, 3));
    EXPECT_EQ(triangles.size(), 9);
}

struct DegenerateCase
{
    const char *name;
    std::vector<unsigned> indices;
    int start;
    int expected;
};

// Point 3 lies upon the line from 0 to 1, and 6 upon 0. The edges 0-8 and 0-4 make
// an angle of 0.004, 0-8 and 0-5 one of 0.005: 1 - cos is 8.0e-6 and 12.5e-6, on both
// sides of 1e-5. All other angles of those two triangles are nearly right.
const float DegeneratePoints[] = {0, 0,    1, 0, 0, 1,   2,   0,    1000,
                                  4, 1000, 5, 0, 0, NaN, NaN, 1000, 0};

const DegenerateCase DegenerateCases[] = {
    {"sound triangle", {0, 1, 2}, 0, -1},
    {"sound triangle run clockwise", {0, 2, 1}, 0, -1},
    {"no triangle", {}, 0, -1},
    {"upon one line, middle corner second", {0, 1, 3}, 0, 0},
    {"upon one line, middle corner third", {0, 3, 1}, 0, 0},
    {"upon one line, middle corner first", {1, 0, 3}, 0, 0},
    {"first and second corner coincide", {0, 6, 2}, 0, 0},
    {"second and third corner coincide", {2, 0, 6}, 0, 0},
    {"third and first corner coincide", {0, 2, 6}, 0, 0},
    {"first and second the same index", {0, 0, 2}, 0, 0},
    {"all corners coincide", {0, 6, 0}, 0, -1},
    {"angle of 0.004 at the first corner", {0, 8, 4}, 0, 0},
    {"angle of 0.004 at the second corner", {4, 0, 8}, 0, 0},
    {"angle of 0.004 at the third corner", {8, 4, 0}, 0, 0},
    {"angle of 0.005 at the first corner", {0, 8, 5}, 0, -1},
    {"angle of 0.005 at the second corner", {5, 0, 8}, 0, -1},
    {"angle of 0.005 at the third corner", {8, 5, 0}, 0, -1},
    {"not a number", {0, 1, 7}, 0, -1},
    {"second of three", {0, 1, 2, 0, 1, 3, 0, 1, 3}, 0, 3},
    {"start upon it", {0, 1, 2, 0, 1, 3, 0, 1, 3}, 3, 3},
    {"start behind the first", {0, 1, 3, 0, 1, 3, 0, 1, 2}, 3, 3},
    {"start behind the last", {0, 1, 3, 0, 1, 3, 0, 1, 2}, 6, -1},
    {"start at the end", {0, 1, 3}, 3, -1},
    {"start beyond the end", {0, 1, 3}, 6, -1},
    {"start within the triangles' steps", {2, 0, 1, 3, 2, 1}, 1, 1},
    {"incomplete last triangle", {0, 1, 2, 0, 3}, 0, -1},
};

TEST(FindDegenerateTriangle, GivesTheFirstEntry)
{
    for (const DegenerateCase &row : DegenerateCases) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(FindDegenerateTriangle(static_cast<int>(row.indices.size()), row.indices.data(),
                                         DegeneratePoints, row.start),
                  row.expected);
    }
}

} // namespace
