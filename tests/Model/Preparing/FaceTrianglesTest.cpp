#include "Preparing/FaceTriangles.h"

#include "support/MessageCapture.h"
#include "support/RandomRings.h"

#include "Preparing/FaceSums.h"
#include "Triangles/FaceTriangulation.h"

#include <gmock/gmock.h>

#include <vector>

using namespace Halvard::Orv;
using namespace OrvTest;

namespace {

constexpr std::uint32_t Seed = 20240423;

CornerCounts countsOf(const std::vector<quint32> &faces)
{
    CornerCounts counts;
    for (const quint32 face : faces)
        counts.append(face);
    return counts;
}

TEST(FaceSumsTest, SmallCases)
{
    const FaceSums none(countsOf({}));
    EXPECT_EQ(none.corners, 0u);
    EXPECT_EQ(none.triangles, 0u);
    EXPECT_FALSE(none.hasLargerThanTriangles);

    const FaceSums some(countsOf({0, 1, 2, 3, 3}));
    EXPECT_EQ(some.corners, 9u);
    EXPECT_EQ(some.triangles, 2u);
    EXPECT_FALSE(some.hasLargerThanTriangles);

    // 254 is the last that is a byte.
    const FaceSums large(countsOf({254, 255, 256, 0xffffffffu}));
    EXPECT_EQ(large.corners, quint64(254) + 255 + 256 + 0xffffffffu);
    EXPECT_EQ(large.triangles, quint64(252) + 253 + 254 + 0xfffffffdu);
    EXPECT_TRUE(large.hasLargerThanTriangles);
}

TEST(FaceSumsTest, EveryPlaceCounts)
{
    for (std::size_t size = 1; size < 70; ++size) {
        for (std::size_t place = 0; place < size; ++place) {
            std::vector<quint32> faces(size, 3);
            faces[place] = 4;
            const FaceSums sums(countsOf(faces));
            EXPECT_EQ(sums.corners, 3 * size + 1);
            EXPECT_EQ(sums.triangles, size + 1);
            EXPECT_TRUE(sums.hasLargerThanTriangles);
        }
    }
}

TEST(FaceSumsTest, LongListsAgainstASumOneByOne)
{
    Dice dice(Seed);
    for (const int size : {2031, 2032, 2033, 4064, 50000}) {
        for (const int largest : {3, 4, 254, 300}) {
            std::vector<quint32> faces;
            quint64 corners = 0;
            quint64 triangles = 0;
            for (int i = 0; i < size; ++i) {
                // Mostly the largest, where sums would run over.
                const auto face =
                    static_cast<quint32>(dice.oneIn(3) ? dice.below(largest + 1) : largest);
                faces.push_back(face);
                corners += face;
                triangles += face < 3 ? 0 : face - 2;
            }
            const FaceSums sums(countsOf(faces));
            EXPECT_EQ(sums.corners, corners);
            EXPECT_EQ(sums.triangles, triangles);
            EXPECT_EQ(sums.hasLargerThanTriangles, largest > 3);
        }
    }
}

/// Cut as one run, faces give what each gives alone.
/// \param positions with a float more, which may be read.
void expectFacesAsOneByOne(const std::vector<quint32> &faces, const std::vector<quint32> &corners,
                           const std::vector<float> &positions)
{
    std::vector<quint32> expected;
    const MessageCapture capture;
    FaceTriangulation triangulation;
    const auto *next = reinterpret_cast<const int *>(corners.data());
    for (const quint32 face : faces) {
        for (const int corner :
             triangulation.triangulate(static_cast<int>(face), next, positions.data()))
            expected.push_back(static_cast<quint32>(next[corner]));
        next += face;
    }
    const std::vector<Message> expectedMessages = capture.messages();

    const CornerCounts counts = countsOf(faces);
    const MessageCapture innerCapture;
    std::vector<quint32> indices(3 * FaceSums(counts).triangles + 1, 12345);
    FaceTriangles triangles(counts, corners.data(), positions.data(), indices.data(), nullptr);
    triangles.addRun({0, static_cast<quint32>(faces.size()), 0, 0});
    EXPECT_EQ(indices.back(), 12345u);
    indices.resize(triangles.size());
    EXPECT_EQ(indices, expected);
    EXPECT_EQ(innerCapture.messages(), expectedMessages);
}

/// A sheet of faces, so many of one kind behind each other that each way through
/// the loop is taken, cut at once and face by face.
TEST(FaceTrianglesTest, FacesOfOneRunAreCutAsOneByOne)
{
    Dice dice(Seed);
    // Far from the origin, rounding decides which way a face runs.
    const double origins[][3] = {{0, 0, 0}, {0, 30000, 0}, {4000, 0, 5000}, {3000, 3000, 3000}};
    for (int round = 0; round < 400; ++round) {
        const double *const origin = origins[round % 4];
        std::vector<float> positions;
        for (int i = 0; i < 3 * 500; ++i)
            positions.push_back(static_cast<float>(origin[i % 3] + dice.real(-1.0, 1.0)));
        positions.push_back(0.0f); // may be read
        std::vector<quint32> faces;
        std::vector<quint32> corners;
        quint32 count = 3;
        const int faceCount = dice.between(1, 200);
        for (int face = 0; face < faceCount; ++face) {
            if (dice.oneIn(6))
                count = static_cast<quint32>(dice.oneIn(5) ? dice.below(8) : dice.between(3, 4));
            faces.push_back(count);
            for (quint32 i = 0; i < count; ++i)
                corners.push_back(static_cast<quint32>(dice.below(500)));
        }

        expectFacesAsOneByOne(faces, corners, positions);
        ASSERT_FALSE(HasFailure()) << "round " << round << " of seed " << Seed;
    }
}

/// Found among 10^8 triangles far from the origin: which way they run is decided by the
/// order in which the products of their corners are summed up.
TEST(FaceTrianglesTest, TrianglesThatTheLastRoundingTurns)
{
    const std::vector<std::vector<float>> triangles = {
        {20000.8359f, 22000.123f, -0.507581174f, 20000.8555f, 22000.1328f, -0.573103845f,
         20000.6289f, 22000.0273f, 0.220058605f},
        {20000.6348f, 22000.2109f, -0.675017059f, 20000.7441f, 21999.2988f, -0.0401335135f,
         20000.6152f, 22000.3945f, -0.801770329f},
        {39999.4414f, 0.980924308f, 36000.1914f, 39999.6328f, -0.514788032f, 35999.582f,
         39999.6758f, -0.827172697f, 35999.4531f},
        {40000.2656f, 0.648958862f, -0.0427357107f, 39999.7578f, -0.595183372f, 0.717670679f,
         40000.2852f, 0.698433578f, -0.0730308071f},
        {80000.1094f, -0.697449923f, -0.938160837f, 80000.2578f, -0.589942098f, -0.402727097f,
         80000.5625f, -0.35471493f, 0.73815757f},
        {80000.2109f, 0.352913201f, 72000.7891f, 80000.1484f, -0.447959691f, 71999.7266f,
         80000.1562f, -0.372436643f, 71999.8203f},
    };
    for (const std::vector<float> &triangle : triangles) {
        std::vector<float> positions = triangle;
        positions.push_back(0.0f); // may be read
        SCOPED_TRACE(positions[0]);
        expectFacesAsOneByOne({3}, {0, 1, 2}, positions);
        expectFacesAsOneByOne({3, 3, 3, 3}, {0, 1, 2, 2, 1, 0, 1, 2, 0, 0, 2, 1}, positions);
        expectFacesAsOneByOne({3, 4, 3}, {0, 1, 2, 0, 1, 2, 2, 2, 1, 0}, positions);
    }
}

} // namespace
