#include "Fast/FaceTriangles.h"
#include "Fast/FaceSums.h"

#include "FaceTriangulation.h"

#include "support/MessageCapture.h"
#include "support/RandomRings.h"

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

TEST(FaceSumsTest, smallCases)
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

TEST(FaceSumsTest, everyPlaceCounts)
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

TEST(FaceSumsTest, longListsAgainstASumOneByOne)
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

/// A sheet of faces, so many of one kind behind each other that each way through
/// the loop is taken, cut at once and face by face.
TEST(FaceTrianglesTest, facesOfOneRunAreCutAsOneByOne)
{
    Dice dice(Seed);
    for (int round = 0; round < 300; ++round) {
        // Far from the origin, rounding decides which way a face runs.
        const double distance = round % 2 == 0 ? 0.0 : 30000.0;
        std::vector<float> positions;
        for (int i = 0; i < 3 * 500; ++i)
            positions.push_back(
                static_cast<float>((i % 3 == 1 ? distance : 0.0) + dice.real(-1.0, 1.0)));
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
        triangles.addRun({0, static_cast<quint32>(faceCount), 0, 0});
        EXPECT_EQ(indices.back(), 12345u);
        indices.resize(triangles.size());
        EXPECT_EQ(indices, expected);
        EXPECT_EQ(innerCapture.messages(), expectedMessages);
        ASSERT_FALSE(HasFailure()) << "round " << round << " of seed " << Seed;
    }
}

} // namespace
