// The winding test on four faces at once against the defined path, FaceTriangulation.
#include "Triangles/Winding.h"

#include "support/RandomRings.h"

#include "Triangles/FaceTriangulation.h"

#include <gmock/gmock.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <vector>

using namespace Halvard::Orv;
using namespace OrvTest;

namespace {

constexpr std::uint32_t Seed = 20241103;
constexpr int Lanes = 4;

using Point = std::array<float, 3>;
/// A triangle has its last corner twice.
using Face = std::array<Point, 4>;

/// Whether the defined path turns the face over.
bool isTurnedOver(const Face &face, int count)
{
    static FaceTriangulation triangulation;
    const int indices[4] = {0, 1, 2, 3};
    const QVector<int> &triangles = triangulation.triangulate(count, indices, face[0].data());
    return triangles.at(1) != 1;
}

Points4 corner(const Face (&faces)[Lanes], std::size_t i)
{
    Points4 points = {};
    for (std::size_t lane = 0; lane < Lanes; ++lane) {
        points.x[lane] = faces[lane][i][0];
        points.y[lane] = faces[lane][i][1];
        points.z[lane] = faces[lane][i][2];
    }
    return points;
}

struct Tally
{
    int alongside = 0;
    int turnedOver = 0;
    int undecided = 0;
};

/// Looks at four faces of `count` corners and compares all that is decided.
void compare(const Face (&faces)[Lanes], int count, Tally &tally)
{
    std::vector<Windings> all = {
        quadWindings(corner(faces, 0), corner(faces, 1), corner(faces, 2), corner(faces, 3))};
    if (count == 3)
        all.push_back(triangleWindings(corner(faces, 0), corner(faces, 1), corner(faces, 2)));
    for (const Windings &windings : all) {
        for (unsigned lane = 0; lane < Lanes; ++lane) {
            const bool clockwise = (windings.clockwise >> lane & 1u) != 0;
            if ((windings.undecided >> lane & 1u) != 0) {
                ++tally.undecided;
                EXPECT_FALSE(clockwise);
                continue;
            }
            ++(clockwise ? tally.turnedOver : tally.alongside);
            EXPECT_EQ(clockwise, isTurnedOver(faces[lane], count))
                << count << " corners, seed " << Seed << ": "
                << testing::PrintToString(faces[lane]);
        }
    }
}

Point point(const std::array<double, 3> &coordinates)
{
    return {static_cast<float>(coordinates[0]), static_cast<float>(coordinates[1]),
            static_cast<float>(coordinates[2])};
}

/// Coordinates up to 1, times a factor of the face, about a centre.
Face scatteredFace(Dice &dice, double scale, double offset)
{
    const double centre[3] = {offset * dice.real(-1, 1), offset * dice.real(-1, 1),
                              offset * dice.real(-1, 1)};
    Face face;
    for (Point &corner : face) {
        for (std::size_t axis = 0; axis < 3; ++axis)
            corner[axis] = static_cast<float>(centre[axis] + scale * dice.real(-1, 1));
    }
    return face;
}

/// A convex quad in a plane, or nearly so.
Face planeFace(Dice &dice, double scale, double offset)
{
    const Point u = point({dice.real(-1, 1), dice.real(-1, 1), dice.real(-1, 1)});
    const Point v = point({dice.real(-1, 1), dice.real(-1, 1), dice.real(-1, 1)});
    const double turn = dice.real(0, 6.28);
    Face face;
    for (std::size_t i = 0; i < 4; ++i) {
        const double angle = turn + 1.5 * static_cast<double>(i);
        for (std::size_t axis = 0; axis < 3; ++axis)
            face[i][axis] = static_cast<float>(
                offset + scale * (std::cos(angle) * static_cast<double>(u[axis]) +
                                  std::sin(angle) * static_cast<double>(v[axis])));
    }
    return face;
}

/// Corners along a line, off it by next to nothing.
Face sliver(Dice &dice, double offset)
{
    const double width = std::pow(10.0, dice.real(-9, -1));
    const Face ends = scatteredFace(dice, 1.0, offset);
    Face face;
    for (Point &corner : face) {
        const double t = dice.real(0, 1);
        for (std::size_t axis = 0; axis < 3; ++axis) {
            const double along = static_cast<double>(ends[0][axis]) * (1.0 - t) +
                                 static_cast<double>(ends[1][axis]) * t;
            corner[axis] = static_cast<float>(along + width * dice.real(-1, 1));
        }
    }
    return face;
}

/// A parallelogram with its diagonals for edges, whose two halves cancel out but
/// for next to nothing.
Face bowTie(Dice &dice, double offset)
{
    const Face sides = scatteredFace(dice, 1.0, 0.0);
    const double off = std::pow(10.0, dice.real(-8, 0));
    Face face;
    for (std::size_t axis = 0; axis < 3; ++axis) {
        const auto u = static_cast<double>(sides[0][axis]);
        const auto v = static_cast<double>(sides[1][axis]);
        face[0][axis] = static_cast<float>(offset);
        face[1][axis] = static_cast<float>(offset + u);
        face[2][axis] = static_cast<float>(offset + v);
        face[3][axis] = static_cast<float>(offset + u + v + off * dice.real(-1, 1));
    }
    return face;
}

Face latticeFace(Dice &dice)
{
    Face face;
    for (Point &corner : face)
        corner = {static_cast<float>(dice.below(3)), static_cast<float>(dice.below(3)),
                  static_cast<float>(dice.below(2))};
    return face;
}

/// Any floats at all, by their bits.
Face bitFace(Dice &dice)
{
    Face face;
    const std::uint32_t sameExponent = static_cast<std::uint32_t>(dice.below(256)) << 23;
    const bool alike = dice.oneIn(2);
    for (Point &corner : face) {
        for (float &coordinate : corner) {
            std::uint32_t bits = dice.bits();
            if (alike)
                bits = (bits & 0x807fffffu) | sameExponent;
            std::memcpy(&coordinate, &bits, sizeof coordinate);
        }
    }
    return face;
}

struct FaceKind
{
    const char *name;
    Face (*make)(Dice &dice);
    /// Whether some of these faces are too close to call, and some turned over.
    bool hasDoubts;
    bool isTurnedOver;
};

Face farFace(Dice &dice, Face (*make)(Dice &, double, double))
{
    const double scale = std::pow(10.0, dice.real(-4, 1));
    return make(dice, scale, std::pow(10.0, dice.real(0, 6)));
}

Face faceOfAnySize(Dice &dice)
{
    const double scale = std::pow(10.0, dice.real(-20, 20));
    return planeFace(dice, scale, scale * dice.real(-10, 10));
}

const FaceKind FaceKinds[] = {
    {"scattered", [](Dice &dice) { return scatteredFace(dice, 1.0, 1.0); }, false, false},
    {"in a plane", [](Dice &dice) { return planeFace(dice, 1.0, 1.0); }, false, false},
    {"scattered, far away", [](Dice &dice) { return farFace(dice, scatteredFace); }, true, true},
    {"in a plane, far away", [](Dice &dice) { return farFace(dice, planeFace); }, true, true},
    {"sliver", [](Dice &dice) { return sliver(dice, 1.0); }, true, false},
    {"sliver, far away", [](Dice &dice) { return sliver(dice, 1000.0); }, true, true},
    {"bow tie", [](Dice &dice) { return bowTie(dice, 1.0); }, true, false},
    {"bow tie, far away", [](Dice &dice) { return bowTie(dice, 100.0); }, true, true},
    {"on a lattice", latticeFace, false, false},
    {"any bits", bitFace, true, false},
    // The sum of cross products is about 1e-6 long.
    {"near the null limit",
     [](Dice &dice) { return planeFace(dice, std::pow(10.0, dice.real(-3.6, -2.6)), 0.0); }, true,
     false},
    {"of any size", faceOfAnySize, true, false},
};
constexpr int FaceKindCount = sizeof FaceKinds / sizeof FaceKinds[0];

/// A round looks at four faces.
constexpr int RoundsPerKind = 30000;

class WindingKindTest : public testing::TestWithParam<int>
{};

TEST_P(WindingKindTest, WhatIsDecidedIsAsDefined)
{
    const FaceKind &kind = FaceKinds[GetParam()];
    SCOPED_TRACE(kind.name);
    Dice dice(Seed + static_cast<std::uint32_t>(GetParam()));
    Tally tally;
    for (int round = 0; round < 2 * RoundsPerKind && !HasFailure(); ++round) {
        const int count = 3 + round % 2;
        Face faces[Lanes];
        for (Face &face : faces) {
            face = kind.make(dice);
            if (dice.oneIn(20))
                face[static_cast<std::size_t>(dice.below(3))] = face[2];
            if (count == 3)
                face[3] = face[2];
        }
        compare(faces, count, tally);
    }
    EXPECT_GT(tally.alongside, RoundsPerKind);
    EXPECT_GT(tally.undecided, kind.hasDoubts ? 50 : -1);
    EXPECT_GT(tally.turnedOver, kind.isTurnedOver ? 300 : -1);
}

INSTANTIATE_TEST_SUITE_P(All, WindingKindTest, testing::Range(0, FaceKindCount));

/// Faces that do need to be turned over occur, and are found without the defined path.
TEST(WindingTest, FacesFarAwayAreTurnedOver)
{
    Dice dice(Seed);
    Tally tally;
    for (int round = 0; round < 10000; ++round) {
        Face faces[Lanes];
        for (Face &face : faces)
            face = planeFace(dice, 0.01, 10000.0);
        compare(faces, 4, tally);
    }
    EXPECT_GT(tally.turnedOver, 5000);
    EXPECT_GT(tally.alongside, 5000);
}

struct CertainCase
{
    const char *name;
    Face face;
    bool isDecided;
};

constexpr float Inf = std::numeric_limits<float>::infinity();
constexpr float NaN = std::numeric_limits<float>::quiet_NaN();

const CertainCase CertainCases[] = {
    {"unit square", {{{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}}}, true},
    {"one point", {{{2, 2, 2}, {2, 2, 2}, {2, 2, 2}, {2, 2, 2}}}, true},
    {"a line through the origin", {{{1, 1, 1}, {2, 2, 2}, {3, 3, 3}, {4, 4, 4}}}, true},
    {"a line beside the origin", {{{1, 1, 1}, {2, 1, 1}, {3, 1, 1}, {4, 1, 1}}}, true},
    {"flat bow tie", {{{0, 0, 1}, {1, 1, 1}, {1, 0, 1}, {0, 1, 1}}}, true},
    {"infinite corner", {{{0, 0, 0}, {1, 0, 0}, {1, Inf, 0}, {0, 1, 0}}}, false},
    {"corner that is no number", {{{0, 0, 0}, {1, 0, 0}, {1, NaN, 0}, {0, 1, 0}}}, false},
    {"squares beyond float", {{{0, 0, 0}, {1e20f, 0, 0}, {1e20f, 1e20f, 0}, {0, 1e20f, 0}}}, false},
    {"tiny", {{{0, 0, 0}, {1e-5f, 0, 0}, {1e-5f, 1e-5f, 0}, {0, 1e-5f, 0}}}, true},
};

TEST(WindingTest, CertainCases)
{
    for (const CertainCase &row : CertainCases) {
        SCOPED_TRACE(row.name);
        const Face faces[Lanes] = {row.face, row.face, row.face, row.face};
        Tally tally;
        compare(faces, 4, tally);
        EXPECT_EQ(tally.undecided == 0, row.isDecided);
    }
}

} // namespace
