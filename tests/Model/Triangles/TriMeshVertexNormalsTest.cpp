#include "support/PlainGeometry.h"
#include "support/RandomRings.h"
#include "support/StreamContents.h"

#include <OrvModel/TriMeshVertexNormals.h>

#include <cmath>
#include <limits>

using namespace Halvard::Orv;
using namespace OrvTest;

namespace {

constexpr float NaN = std::numeric_limits<float>::quiet_NaN();
constexpr float Sentinel = 12345.0f;

/// The normals for an output that holds something stale, after which nothing may
/// be written.
std::vector<float> normalsOf(const std::vector<float> &positions,
                             const std::vector<unsigned> &indices)
{
    std::vector<float> normals(positions.size() + 3, Sentinel);
    TriMeshVertexNormals(static_cast<int>(positions.size() / 3), static_cast<int>(indices.size()),
                         positions.data(), indices.data(), normals.data());
    for (std::size_t i = positions.size(); i < normals.size(); ++i)
        EXPECT_EQ(normals[i], Sentinel);
    normals.resize(positions.size());
    return normals;
}

/// Coordinates over the length, in double precision and rounded once.
std::vector<float> unit(double x, double y, double z)
{
    const double length = std::sqrt(x * x + y * y + z * z);
    return {static_cast<float>(x / length), static_cast<float>(y / length),
            static_cast<float>(z / length)};
}

/// The normal of one vertex, which all triangles of the mesh use.
std::vector<float> firstNormal(const std::vector<float> &positions,
                               const std::vector<unsigned> &indices)
{
    const std::vector<float> normals = normalsOf(positions, indices);
    return {normals.begin(), normals.begin() + 3};
}

struct MeshCase
{
    const char *name;
    std::vector<float> positions;
    std::vector<unsigned> indices;
    std::vector<float> normals;
};

const MeshCase MeshCases[] = {
    {"one triangle", {0, 0, 0, 1, 0, 0, 0, 1, 0}, {0, 1, 2}, {0, 0, -1, 0, 0, -1, 0, 0, -1}},
    {"one triangle the other way round",
     {0, 0, 0, 1, 0, 0, 0, 1, 0},
     {0, 2, 1},
     {0, 0, 1, 0, 0, 1, 0, 0, 1}},
    {"size does not matter",
     {0, 0, 0, 1000, 0, 0, 0, 0.001f, 0},
     {0, 1, 2},
     {0, 0, -1, 0, 0, -1, 0, 0, -1}},
    {"vertex of no triangle",
     {0, 0, 0, 1, 0, 0, 0, 1, 0, 5, 5, 5},
     {0, 1, 2},
     {0, 0, -1, 0, 0, -1, 0, 0, -1, 0, 0, 0}},
    {"no triangle", {0, 0, 0, 1, 0, 0}, {}, {0, 0, 0, 0, 0, 0}},
    {"no vertex", {}, {}, {}},
    {"first two corners coincide", {0, 0, 0, 0, 0, 0, 1, 0, 0}, {0, 1, 2}, std::vector<float>(9)},
    {"last two corners coincide", {0, 0, 0, 1, 0, 0, 1, 0, 0}, {0, 1, 2}, std::vector<float>(9)},
    {"first and last coincide", {0, 0, 0, 1, 0, 0, 0, 0, 0}, {0, 1, 2}, std::vector<float>(9)},
    {"one corner three times", {1, 2, 3}, {0, 0, 0}, {0, 0, 0}},
    {"upon one line", {0, 0, 0, 1, 0, 0, 2, 0, 0}, {0, 1, 2}, std::vector<float>(9)},
    {"two sides of one triangle cancel out",
     {0, 0, 0, 1, 0, 0, 0, 1, 0},
     {0, 1, 2, 0, 2, 1},
     std::vector<float>(9)},
    // Edges up to 1e-6 have no direction.
    {"edge of 1e-7", {0, 0, 0, 1, 0, 0, 0, 1e-7f, 0}, {0, 1, 2}, std::vector<float>(9)},
    {"edge of 1e-5", {0, 0, 0, 1, 0, 0, 0, 1e-5f, 0}, {0, 1, 2}, {0, 0, -1, 0, 0, -1, 0, 0, -1}},
    // The incomplete last triangle is left out, and so is one with a corner that
    // does not exist.
    {"one index too many",
     {0, 0, 0, 1, 0, 0, 0, 1, 0},
     {0, 1, 2, 0},
     {0, 0, -1, 0, 0, -1, 0, 0, -1}},
    {"two indices too many",
     {0, 0, 0, 1, 0, 0, 0, 1, 0},
     {0, 2, 1, 0, 1},
     {0, 0, 1, 0, 0, 1, 0, 0, 1}},
    {"two indices only", {0, 0, 0, 1, 0, 0, 0, 1, 0}, {0, 1}, std::vector<float>(9)},
    {"index equal to the count",
     {0, 0, 0, 1, 0, 0, 0, 1, 0},
     {0, 1, 3, 0, 1, 2},
     {0, 0, -1, 0, 0, -1, 0, 0, -1}},
    {"largest index first", {0, 0, 0, 1, 0, 0, 0, 1, 0}, {~0u, 1, 2}, std::vector<float>(9)},
    {"largest index second", {0, 0, 0, 1, 0, 0, 0, 1, 0}, {0, ~0u, 2}, std::vector<float>(9)},
};

TEST(TriMeshVertexNormals, GivesOneNormalPerVertex)
{
    for (const MeshCase &row : MeshCases) {
        SCOPED_TRACE(row.name);
        const std::vector<float> normals = normalsOf(row.positions, row.indices);
        // Zero of either sign where one is expected: n and -n may cancel out to both.
        EXPECT_EQ(normals, row.normals);
    }
}

/// There are numbers behind the last vertex, and nobody looks at them.
TEST(TriMeshVertexNormals, LeavesOutTrianglesWithCornersBeyondTheCount)
{
    const std::vector<float> positions{0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1};
    for (const std::vector<unsigned> &triangle :
         {std::vector<unsigned>{0, 1, 3}, {0, 3, 1}, {3, 0, 1}}) {
        std::vector<unsigned> indices{0, 1, 2};
        indices.insert(indices.end(), triangle.begin(), triangle.end());
        std::vector<float> normals(12, Sentinel);
        TriMeshVertexNormals(3, 6, positions.data(), indices.data(), normals.data());
        EXPECT_EQ(normals,
                  (std::vector<float>{0, 0, -1, 0, 0, -1, 0, 0, -1, Sentinel, Sentinel, Sentinel}));
    }
}

/// One index or two at the end are no triangle, whatever follows them in memory.
TEST(TriMeshVertexNormals, LeavesOutWhatIsNoWholeTriangle)
{
    const std::vector<float> positions{0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1};
    const std::vector<unsigned> indices{0, 1, 2, 0, 1, 3};
    for (const int count : {3, 4, 5}) {
        std::vector<float> normals(12, Sentinel);
        TriMeshVertexNormals(4, count, positions.data(), indices.data(), normals.data());
        EXPECT_EQ(normals, (std::vector<float>{0, 0, -1, 0, 0, -1, 0, 0, -1, 0, 0, 0})) << count;
    }
}

/// Vertex 0 is the first corner of all triangles. About it lie (1, 0, 0), (0, 1, 0),
/// (0, 0, 1), and (3, 4, 0), which makes an angle with the x axis whose sine is
/// 4/5. Triangle 0 1 2 gives (0, 0, -1), triangle 0 1 3 (0, 1, 0), triangle 0 1 4
/// (0, 0, -4/5).
const std::vector<float> Corner{0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1, 3, 4, 0};

TEST(TriMeshVertexNormals, WeighsByTheSineAtTheFirstCorner)
{
    EXPECT_THAT(firstNormal(Corner, {0, 1, 2, 0, 1, 3}), areFloats(unit(0, 1, -1)));
    EXPECT_THAT(firstNormal(Corner, {0, 1, 4, 0, 1, 3}), areFloats(unit(0, 1, -0.8f)));
    EXPECT_THAT(firstNormal(Corner, {0, 1, 3, 0, 1, 3, 0, 1, 2}), areFloats(unit(0, 2, -1)));
    // Corner 0 of the same triangle comes second or third: the sine at another
    // corner counts. The sides are 1, 5 and sqrt(2*2 + 4*4): the sine at (1, 0, 0) is
    // 4 / sqrt(20), the one at (3, 4, 0) is 4 / (5 sqrt(20)).
    const auto atOne = static_cast<float>(4 / std::sqrt(20.0));
    const std::vector<float> wide = firstNormal(Corner, {1, 4, 0, 0, 1, 3});
    EXPECT_NEAR(wide[2] / wide[1], -atOne, 1e-6f);
    const std::vector<float> thin = firstNormal(Corner, {4, 0, 1, 0, 1, 3});
    EXPECT_NEAR(thin[2] / thin[1], -atOne / 5, 1e-6f);
}

/// A sliver of angle 2^-20 at its first corner and of a thousand times the area adds
/// a thousandth of a thousandth.
TEST(TriMeshVertexNormals, HardlyCountsSlivers)
{
    const std::vector<float> positions{0, 0, 0, 1, 0, 0, 0, 0, 1, 0x1p30f, 0x1p10f, 0};
    const std::vector<float> normal = firstNormal(positions, {0, 1, 2, 0, 1, 3});
    EXPECT_THAT(normal, areFloats({0, 1, -0x1p-20f}));
    // Nearly straight at its first corner: the same.
    const std::vector<float> straight{0, 0, 0, 1, 0, 0, 0, 0, 1, -0x1p30f, 0x1p10f, 0};
    EXPECT_THAT(firstNormal(straight, {0, 1, 2, 0, 1, 3}), areFloats({0, 1, -0x1p-20f}));
}

TEST(TriMeshVertexNormals, GivesAllCornersTheSame)
{
    const std::vector<float> normals = normalsOf(Corner, {0, 1, 4, 2, 3, 4});
    // Vertices 0 and 1 belong to the first triangle only.
    EXPECT_EQ(normals[2], -1.0f);
    EXPECT_EQ(normals[5], -1.0f);
    // Vertex 4 belongs to both. From 2 to 3 it goes along (0, -1, 1), from 2 to 4 along
    // (3, 3, 0): their unit vectors' cross product, last times first, is
    // (s, s, 0) x (0, -s, s) = (1/2, -1/2, -1/2).
    EXPECT_NEAR(normals[12] / normals[14], 0.5 / -1.3, 1e-6);
    EXPECT_NEAR(normals[13] / normals[14], -0.5 / -1.3, 1e-6);
}

/// A vertex that is not a number spoils the triangles that use it and no others.
TEST(TriMeshVertexNormals, KeepsNaNsToTheirTriangles)
{
    const std::vector<float> positions{0, 0, 0, 1, 0, 0, 0, 1, 0, NaN, 0, 0, 5, 0, 0, 0, 5, 0};
    const std::vector<float> normals = normalsOf(positions, {0, 1, 2, 3, 4, 5});
    EXPECT_EQ(std::vector<float>(normals.begin(), normals.begin() + 9),
              (std::vector<float>{0, 0, -1, 0, 0, -1, 0, 0, -1}));
    for (std::size_t i = 9; i < 18; ++i)
        EXPECT_TRUE(std::isnan(normals[i])) << i;
}

/// One NaN for all: which of two survives an addition is the compiler's choice.
std::vector<float> withOneNaN(std::vector<float> values)
{
    for (float &value : values) {
        if (std::isnan(value))
            value = NaN;
    }
    return values;
}

/// Sums run in the order of the triangles, so that the last bits agree as well.
TEST(TriMeshVertexNormals, AgreesWithThePlainRules)
{
    constexpr std::uint32_t seed = 20240917;
    SCOPED_TRACE("seed " + std::to_string(seed));
    Dice dice(seed);
    for (int i = 0; i < 500 && !HasFailure(); ++i) {
        const int vertexCount = dice.between(3, 60);
        const double scales[] = {1, 1, 1e-6, 1e4, 1e19, 3e38};
        const double scale = scales[dice.below(6)];
        std::vector<float> positions;
        for (int coordinate = 0; coordinate < 3 * vertexCount; ++coordinate)
            positions.push_back(static_cast<float>(dice.real(-scale, scale)));
        std::vector<unsigned> indices;
        for (int corner = dice.below(100) * 3; corner > 0; --corner)
            indices.push_back(static_cast<unsigned>(dice.below(vertexCount)));
        EXPECT_THAT(withOneNaN(normalsOf(positions, indices)),
                    areFloats(withOneNaN(plainVertexNormals(positions, indices))))
            << "mesh " << i;
    }
}

} // namespace
