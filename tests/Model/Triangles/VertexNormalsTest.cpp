// Normals in lanes against QVector3D, bit by bit.
#include "support/PlainGeometry.h"
#include "support/RandomRings.h"
#include "support/StreamContents.h"

#include "Lanes/UnitVectors.h"
#include "Triangles/VertexNormalSums.h"
#include <OrvModel/TriMeshVertexNormals.h>

#include <gmock/gmock.h>

#include <QtGui/QVector3D>

#include <array>
#include <cmath>
#include <cstring>
#include <limits>

using namespace Halvard::Orv;
using namespace OrvTest;

namespace {

constexpr std::uint32_t Seed = 20240718;

float floatOf(std::uint32_t bits)
{
    float value;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

constexpr float Inf = std::numeric_limits<float>::infinity();
constexpr float NaN = std::numeric_limits<float>::quiet_NaN();
constexpr float Max = std::numeric_limits<float>::max();

const float Specials[] = {0.0f,
                          -0.0f,
                          1.0f,
                          -1.0f,
                          Inf,
                          -Inf,
                          NaN,
                          Max,
                          -Max,
                          0x1p-126f,
                          0x1p-149f,
                          -0x1p-149f,
                          1e-6f,
                          1.1e-6f,
                          0.9e-6f,
                          1e-20f,
                          1.0f - 0x1p-24f,
                          1.0f + 0x1p-23f,
                          1e19f,
                          3e-39f};
constexpr int SpecialCount = sizeof Specials / sizeof Specials[0];

/// A number of any kind: special, any bits, or near 1.
float anyNumber(Dice &dice)
{
    switch (dice.below(4)) {
    case 0:
        return Specials[dice.below(SpecialCount)];
    case 1:
        return floatOf(dice.bits());
    case 2: {
        const double scale = std::pow(10.0, dice.real(-44.0, 38.0));
        return static_cast<float>(scale * dice.real(-1.0, 1.0));
    }
    default:
        return static_cast<float>(dice.real(-1.0, 1.0));
    }
}

std::vector<float> lane(const Points4 &points, unsigned i)
{
    return {points.x[i], points.y[i], points.z[i]};
}

bool isAnyNaN(const std::vector<float> &values)
{
    return std::any_of(values.begin(), values.end(), [](float value) { return std::isnan(value); });
}

/// The same bits, or NaNs in the same places: their bits are not promised.
void expectSame(const std::vector<float> &values, const std::vector<float> &expected,
                const std::vector<float> &of)
{
    ASSERT_EQ(values.size(), expected.size());
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (std::isnan(expected[i]))
            EXPECT_TRUE(std::isnan(values[i])) << testing::PrintToString(of);
        else
            EXPECT_EQ(bitsOf({values[i]}), bitsOf({expected[i]})) << testing::PrintToString(of);
    }
}

std::vector<float> floatsOf(const QVector3D &vector)
{
    return {vector.x(), vector.y(), vector.z()};
}

TEST(UnitVectorsTest, AreThoseOfQVector3D)
{
    RecordProperty("seed", static_cast<int>(Seed));
    Dice dice(Seed);
    int nulls = 0;
    int numbers = 0;
    for (int round = 0; round < 200000; ++round) {
        std::vector<float> vectors[4];
        Points4 points = {};
        for (unsigned i = 0; i < 4; ++i) {
            vectors[i] = {anyNumber(dice), anyNumber(dice), anyNumber(dice)};
            points.x[i] = vectors[i][0];
            points.y[i] = vectors[i][1];
            points.z[i] = vectors[i][2];
        }
        const Points4 normalized = unit<NullVectors::BecomeZero>(points);
        const Points4 inPlace = unit<NullVectors::Stay>(points);
        for (unsigned i = 0; i < 4; ++i) {
            QVector3D vector(vectors[i][0], vectors[i][1], vectors[i][2]);
            const QVector3D expected = vector.normalized();
            expectSame(lane(normalized, i), floatsOf(expected), vectors[i]);
            vector.normalize();
            expectSame(lane(inPlace, i), floatsOf(vector), vectors[i]);
            ++(expected == QVector3D() ? nulls : numbers);
        }
        ASSERT_FALSE(HasFailure()) << "round " << round << " of seed " << Seed;
    }
    EXPECT_GT(nulls, 1000);
    EXPECT_GT(numbers, 10000);
}

/// Vectors about the two limits of QVector3D: squared lengths of 1e-12 and 1.
TEST(UnitVectorsTest, LimitsOfQVector3D)
{
    Dice dice(Seed);
    int unchanged = 0;
    for (int round = 0; round < 400000; ++round) {
        const double length = dice.oneIn(2) ? 1e-6 * (1.0 + 1e-7 * dice.between(-20, 20))
                                            : 1.0 + 1e-13 * dice.between(-20, 20);
        const double z = dice.real(-1.0, 1.0);
        const double angle = dice.real(0.0, 6.283);
        const double r = std::sqrt(1.0 - z * z);
        QVector3D vector(static_cast<float>(length * r * std::cos(angle)),
                         static_cast<float>(length * r * std::sin(angle)),
                         static_cast<float>(length * z));
        const Points4 points = {Float4{} + vector.x(), Float4{} + vector.y(),
                                Float4{} + vector.z()};
        expectSame(lane(unit<NullVectors::BecomeZero>(points), 2), floatsOf(vector.normalized()),
                   floatsOf(vector));
        const QVector3D before = vector;
        vector.normalize();
        expectSame(lane(unit<NullVectors::Stay>(points), 1), floatsOf(vector), floatsOf(before));
        unchanged += bitsOf(floatsOf(vector)) == bitsOf(floatsOf(before)) ? 1 : 0;
        ASSERT_FALSE(HasFailure()) << "round " << round << " of seed " << Seed;
    }
    EXPECT_GT(unchanged, 1000);
}

// The squares, (1 - 5.05e-9) * 1e-12 and 5.05e-21, make exactly the double 1e-12, which
// still counts as zero.
TEST(UnitVectorsTest, TheLimitItselfIsZero)
{
    const QVector3D vector(0x1.0c6f7ap-20f, 0x1.38866p-34f, 0.0f);
    ASSERT_EQ(vector.normalized(), QVector3D());
    const Points4 points = {Float4{} + vector.x(), Float4{} + vector.y(), Float4{}};
    expectSame(lane(unit<NullVectors::BecomeZero>(points), 0), {0.0f, 0.0f, 0.0f},
               floatsOf(vector));
    expectSame(lane(unit<NullVectors::Stay>(points), 3), floatsOf(vector), floatsOf(vector));
}

struct Mesh
{
    std::vector<float> positions;
    std::vector<unsigned> indices;
};

Mesh randomMesh(Dice &dice, bool hasOddNumbers)
{
    Mesh mesh;
    const int vertices = dice.between(1, 30);
    const double scale = std::pow(10.0, dice.real(-5.0, 5.0));
    for (int i = 0; i < 3 * vertices; ++i)
        mesh.positions.push_back(hasOddNumbers && dice.oneIn(5)
                                     ? anyNumber(dice)
                                     : static_cast<float>(scale * dice.real(-1.0, 1.0)));
    const int triangles = dice.between(0, 40);
    for (int i = 0; i < 3 * triangles; ++i)
        mesh.indices.push_back(static_cast<unsigned>(dice.below(vertices)));
    return mesh;
}

std::vector<float> normalsOf(const Mesh &mesh)
{
    std::vector<float> normals(mesh.positions.size(), 77.0f);
    TriMeshVertexNormals(static_cast<int>(normals.size() / 3),
                         static_cast<int>(mesh.indices.size()), mesh.positions.data(),
                         mesh.indices.data(), normals.data());
    return normals;
}

TEST(VertexNormalSumsTest, RandomMeshesAreThoseOfQVector3D)
{
    Dice dice(Seed);
    for (int i = 0; i < 20000; ++i) {
        const Mesh mesh = randomMesh(dice, false);
        EXPECT_THAT(normalsOf(mesh), SameFloats(plainVertexNormals(mesh.positions, mesh.indices)));
        ASSERT_FALSE(HasFailure()) << "mesh " << i << " of seed " << Seed;
    }
}

TEST(VertexNormalSumsTest, NumbersThatAreNoneStayAmongTheirVertices)
{
    Dice dice(Seed);
    int meshesWithNaN = 0;
    for (int i = 0; i < 20000; ++i) {
        const Mesh mesh = randomMesh(dice, true);
        const std::vector<float> normals = normalsOf(mesh);
        expectSame(normals, plainVertexNormals(mesh.positions, mesh.indices), mesh.positions);
        meshesWithNaN += isAnyNaN(normals) ? 1 : 0;
        ASSERT_FALSE(HasFailure()) << "mesh " << i << " of seed " << Seed;
    }
    EXPECT_GT(meshesWithNaN, 1000);
}

/// Triangles that come in pieces of any size count on from one another.
TEST(VertexNormalSumsTest, PiecesGiveTheSameAsTheWhole)
{
    Dice dice(Seed);
    for (int i = 0; i < 3000; ++i) {
        Mesh mesh = randomMesh(dice, dice.oneIn(3));
        for (unsigned &index : mesh.indices) {
            if (dice.oneIn(100))
                index = dice.bits();
        }
        const std::vector<float> whole = normalsOf(mesh);
        std::vector<float> normals(mesh.positions.size());
        VertexNormalSums sums(static_cast<quint32>(normals.size() / 3), mesh.positions.data(),
                              normals.data());
        for (std::size_t first = 0; first < mesh.indices.size();) {
            const std::size_t rest = (mesh.indices.size() - first) / 3;
            const auto triangles =
                static_cast<std::size_t>(dice.between(0, static_cast<int>(rest)));
            sums.add(mesh.indices.data() + first, 3 * triangles);
            first += 3 * triangles;
        }
        sums.normalize();
        EXPECT_THAT(normals, SameFloats(whole));
        ASSERT_FALSE(HasFailure()) << "mesh " << i << " of seed " << Seed;
    }
}

/// Exactly as much is read and written as there is, which address sanitizers see.
TEST(VertexNormalSumsTest, EndsWithTheLastVertex)
{
    for (unsigned vertices = 1; vertices < 14; ++vertices) {
        Mesh mesh;
        for (unsigned i = 0; i < 3 * vertices; ++i)
            mesh.positions.push_back(static_cast<float>(i * i % 17));
        for (unsigned i = 0; i < 12 * 5; ++i)
            mesh.indices.push_back((i * 7 + vertices - 1) % vertices);
        mesh.positions.shrink_to_fit();
        EXPECT_THAT(normalsOf(mesh), SameFloats(plainVertexNormals(mesh.positions, mesh.indices)));
    }
}

} // namespace
