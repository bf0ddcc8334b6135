#include "support/MessageCapture.h"
#include "support/ModelBuilderInspector.h"
#include "support/ModelBuilding.h"
#include "support/QtPrinting.h"
#include "support/RecordingStream.h"
#include "support/StreamContents.h"

#include <OrvModel/ModelBuilder.h>

#include <algorithm>
#include <limits>
#include <random>

namespace OrvTest {
namespace {

using Halvard::Orv::ModelBuilder;
using Inspector = Halvard::Orv::ModelBuilderInspector;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

/// The vertex count before welding, read from the statistics line:
/// "0x... Vertices Map        6 ->        4 d        2 ( 66 %) 4".
int countBeforeWelding(const MessageCapture &messages)
{
    const std::vector<std::string> lines = messages.texts(QtDebugMsg);
    if (lines.size() != 1) {
        ADD_FAILURE() << lines.size() << " statistics lines instead of one";
        return -1;
    }
    const std::string &line = lines.front();
    return std::stoi(line.substr(line.find("Map") + 3));
}

std::vector<unsigned> gpuIndices(const ModelBuilder &builder, const QString &name)
{
    return uints(Inspector::vertexAttribute(builder, name).gpuIndices);
}

std::vector<float> gpuValues(const ModelBuilder &builder, const QString &name)
{
    return floats(Inspector::vertexAttribute(builder, name).gpuValues);
}

/// Both ways of forming GPU vertices, which after welding give the same.
class BothFormsTest : public ::testing::TestWithParam<bool>
{};

INSTANTIATE_TEST_SUITE_P(GPUStreamBuilding, BothFormsTest, ::testing::Values(false, true),
                         [](const auto &form) { return form.param ? "merging" : "perCorner"; });

//   d--c
//   |\ |    written as the triangles (a, b, c) and (a, c, d): the corners of the
//   | \|    diagonal have the same position, texture and normal index both times
//   a--b
TEST(GPUStreamBuildingTest, MergesTheSharedCornersOfAQuad)
{
    const MessageCapture messages;
    ModelBuilder builder({}, 0);
    addFaces(builder, {3, 3});
    const std::vector<unsigned> corners = {0, 1, 2, 0, 2, 3};
    addAttribute(builder, vertexName(), 3, {0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0}, corners);
    addAttribute(builder, texCoordName(), 2, {0, 0, 1, 0, 1, 1, 0, 1}, corners);
    addAttribute(builder, normalName(), 3, {0, 0, 1}, {0, 0, 0, 0, 0, 0});

    builder.buildGPUFriendlyStreams(true);

    EXPECT_EQ(countBeforeWelding(messages), 4);
    EXPECT_THAT(gpuIndices(builder, vertexName()), ElementsAre(0, 1, 2, 0, 2, 3));
    EXPECT_THAT(gpuValues(builder, vertexName()), areFloats({0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0}));
    EXPECT_THAT(gpuValues(builder, texCoordName()), areFloats({0, 0, 1, 0, 1, 1, 0, 1}));
    EXPECT_THAT(gpuValues(builder, normalName()), areFloats({0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 0, 1}));
}

TEST_P(BothFormsTest, OnePositionWithTwoNormalsIsTwoVertices)
{
    const MessageCapture silence;
    ModelBuilder builder({}, 0);
    addFaces(builder, {3});
    addAttribute(builder, vertexName(), 1, {7}, {0, 0, 0});
    addAttribute(builder, normalName(), 1, {1, 2}, {0, 1, 0});

    builder.buildGPUFriendlyStreams(GetParam());

    EXPECT_THAT(gpuIndices(builder, vertexName()), ElementsAre(0, 1, 0));
    EXPECT_THAT(gpuValues(builder, vertexName()), areFloats({7, 7}));
    EXPECT_THAT(gpuValues(builder, normalName()), areFloats({1, 2}));
}

TEST(GPUStreamBuildingTest, WithoutMergingEveryCornerIsAVertex)
{
    const MessageCapture messages;
    ModelBuilder builder({}, 0);
    addFaces(builder, {3, 3, 3});
    addAttribute(builder, vertexName(), 1, {5, 6}, {0, 0, 0, 1, 1, 1, 0, 1, 0});
    builder.buildGPUFriendlyStreams(false);
    // Nine before welding; then all the fives are one, and all the sixes.
    EXPECT_EQ(countBeforeWelding(messages), 9);
    EXPECT_THAT(gpuIndices(builder, vertexName()), ElementsAre(0, 0, 0, 1, 1, 1, 0, 1, 0));
}

TEST(GPUStreamBuildingTest, WithoutMergingDistinctCornersAreNumberedInTheirOrder)
{
    const MessageCapture silence;
    ModelBuilder builder({}, 0);
    addFaces(builder, {3, 3, 3});
    // Nine different values, taken backwards.
    addAttribute(builder, vertexName(), 1, {0, 1, 2, 3, 4, 5, 6, 7, 8},
                 {8, 7, 6, 5, 4, 3, 2, 1, 0});
    builder.buildGPUFriendlyStreams(false);
    EXPECT_THAT(gpuIndices(builder, vertexName()), ElementsAre(0, 1, 2, 3, 4, 5, 6, 7, 8));
    EXPECT_THAT(gpuValues(builder, vertexName()), areFloats({8, 7, 6, 5, 4, 3, 2, 1, 0}));
}

// Corner      0    1    2    3    4    5
// indices    2,0  0,0  2,0  0,1  0,0  2,0
// vertex      0    1    0    2    1    0
TEST_P(BothFormsTest, VerticesAreNumberedByTheirFirstCorner)
{
    const MessageCapture messages;
    ModelBuilder builder({}, 0);
    addFaces(builder, {6});
    addAttribute(builder, vertexName(), 1, {10, 11, 12}, {2, 0, 2, 0, 0, 2});
    addAttribute(builder, normalName(), 1, {-1, -2}, {0, 0, 0, 1, 0, 0});

    builder.buildGPUFriendlyStreams(GetParam());

    EXPECT_EQ(countBeforeWelding(messages), GetParam() ? 3 : 6);
    EXPECT_THAT(gpuIndices(builder, vertexName()), ElementsAre(0, 1, 0, 2, 1, 0));
    EXPECT_THAT(gpuValues(builder, vertexName()), areFloats({12, 10, 10}));
    EXPECT_THAT(gpuValues(builder, normalName()), areFloats({-1, -1, -2}));
}

// Merging looks at indices only; welding, which follows, at bytes.
TEST(GPUStreamBuildingTest, EqualBytesUnderDifferentIndicesAreMergedOnlyByWelding)
{
    const MessageCapture messages;
    ModelBuilder builder({}, 0);
    addFaces(builder, {3});
    addAttribute(builder, vertexName(), 1, {4, 4, 5}, {0, 1, 2});
    builder.buildGPUFriendlyStreams(true);
    EXPECT_EQ(countBeforeWelding(messages), 3);
    EXPECT_THAT(gpuIndices(builder, vertexName()), ElementsAre(0, 0, 1));
}

TEST_P(BothFormsTest, AllAttributesReferToOneIndexStream)
{
    const MessageCapture silence;
    ModelBuilder builder({}, 0);
    addFaces(builder, {3});
    for (const QString &name : {vertexName(), normalName(), texCoordName()})
        addAttribute(builder, name, 1, {1, 2, 3}, {0, 1, 2});
    builder.buildGPUFriendlyStreams(GetParam());

    const auto shared = Inspector::vertexAttribute(builder, vertexName()).gpuIndices;
    ASSERT_TRUE(shared);
    EXPECT_EQ(shared->type(), typeUnsignedInt);
    EXPECT_EQ(Inspector::vertexAttribute(builder, normalName()).gpuIndices, shared);
    EXPECT_EQ(Inspector::vertexAttribute(builder, texCoordName()).gpuIndices, shared);
    EXPECT_NE(Inspector::gpuIndices(builder), shared) << "that one is for the triangles";
}

TEST_P(BothFormsTest, WhatWasAddedStaysAsItWas)
{
    const MessageCapture silence;
    ModelBuilder builder({}, 0);
    addFaces(builder, {3});
    addAttribute(builder, vertexName(), 2, {1, 2, 3, 4}, {1, 0, 1});
    builder.buildGPUFriendlyStreams(GetParam());
    EXPECT_THAT(floats(Inspector::vertexAttribute(builder, vertexName()).values),
                areFloats({1, 2, 3, 4}));
    EXPECT_THAT(uints(Inspector::vertexAttribute(builder, vertexName()).indices),
                ElementsAre(1, 0, 1));
    EXPECT_THAT(uints(Inspector::verticesPerFace(builder)), ElementsAre(3));
}

TEST_P(BothFormsTest, FacesOfNoCornersGiveEmptyStreams)
{
    for (const std::vector<unsigned> &counts :
         {std::vector<unsigned>{}, std::vector<unsigned>{0}, std::vector<unsigned>{0, 0, 0}}) {
        const MessageCapture messages;
        ModelBuilder builder({}, 0);
        addFaces(builder, counts);
        addAttribute(builder, vertexName(), 3, {1, 2, 3}, {0});
        builder.buildGPUFriendlyStreams(GetParam());
        EXPECT_EQ(countBeforeWelding(messages), 0);
        EXPECT_THAT(gpuIndices(builder, vertexName()), IsEmpty());
        EXPECT_THAT(gpuValues(builder, vertexName()), IsEmpty());
    }
}

// 0xFFFFFFFF + 4 = 3 in 32 bits.
TEST_P(BothFormsTest, CornersAreCountedInThirtyTwoBits)
{
    const MessageCapture messages;
    ModelBuilder builder({}, 0);
    addFaces(builder, {0xFFFFFFFF, 4});
    addAttribute(builder, vertexName(), 1, {1, 2, 3}, {0, 1, 2, 0});
    builder.buildGPUFriendlyStreams(GetParam());
    EXPECT_EQ(countBeforeWelding(messages), 3);
    EXPECT_THAT(gpuIndices(builder, vertexName()), ElementsAre(0, 1, 2));
}

TEST_P(BothFormsTest, ValuesKeepTheirTypeAndTheirBytes)
{
    const MessageCapture silence;
    ModelBuilder builder({}, 0);
    addFaces(builder, {3});
    const QString colour = QStringLiteral("colour");
    builder.createVertexAttribute(colour, 4, typeUnsignedByte, 0, 0);
    const unsigned char bytes[] = {1, 2, 3, 4, 250, 251, 252, 253};
    builder.addValuesToVertexAttribute(colour, 8, bytes, typeUnsignedByte);
    const QString precise = QStringLiteral("precise");
    builder.createVertexAttribute(precise, 1, typeDouble, 0, 0);
    const double doubles[] = {0.1, 1e300};
    builder.addValuesToVertexAttribute(precise, 2, doubles, typeDouble);
    const unsigned corners[] = {1, 0, 1};
    builder.addIndicesToVertexAttribute(colour, 3, corners);
    builder.addIndicesToVertexAttribute(precise, 3, corners);

    builder.buildGPUFriendlyStreams(GetParam());

    const auto gpuColour = Inspector::vertexAttribute(builder, colour).gpuValues;
    EXPECT_EQ(gpuColour->type(), typeUnsignedByte);
    EXPECT_THAT(elements<unsigned char>(gpuColour), ElementsAre(250, 251, 252, 253, 1, 2, 3, 4));
    const auto gpuPrecise = Inspector::vertexAttribute(builder, precise).gpuValues;
    EXPECT_EQ(gpuPrecise->type(), typeDouble);
    EXPECT_THAT(elements<double>(gpuPrecise), ElementsAre(1e300, 0.1));
    EXPECT_THAT(gpuIndices(builder, colour), ElementsAre(0, 1, 0));
}

// When nothing is to be done

TEST_P(BothFormsTest, ABuilderWithoutAttributesHasNothingToBuild)
{
    const MessageCapture messages;
    const auto allocator = QSharedPointer<RecordingAllocator>::create();
    ModelBuilder builder(allocator, 0);
    addFaces(builder, {3});
    allocator->log().clear();
    builder.buildGPUFriendlyStreams(GetParam());
    EXPECT_THAT(allocator->log().changes(), IsEmpty());
    EXPECT_THAT(messages.messages(), IsEmpty());
}

TEST_P(BothFormsTest, BuildsOnce)
{
    for (const bool second : {false, true}) {
        const MessageCapture messages;
        const auto allocator = QSharedPointer<RecordingAllocator>::create();
        ModelBuilder builder(allocator, 0);
        addFaces(builder, {3});
        addAttribute(builder, vertexName(), 1, {1, 2}, {0, 1, 0});
        builder.buildGPUFriendlyStreams(GetParam());
        EXPECT_THAT(messages.messages(), SizeIs(1));
        const auto built = Inspector::vertexAttribute(builder, vertexName());
        addFaces(builder, {3});
        allocator->log().clear();

        builder.buildGPUFriendlyStreams(second);

        EXPECT_THAT(allocator->log().changes(), IsEmpty()) << "second form " << second;
        EXPECT_THAT(messages.messages(), SizeIs(1)) << "nothing was welded again";
        EXPECT_EQ(Inspector::vertexAttribute(builder, vertexName()).gpuValues, built.gpuValues);
    }
}

TEST_P(BothFormsTest, OneAttributeStartedAfreshRebuildsAll)
{
    const MessageCapture messages;
    ModelBuilder builder({}, 0);
    addFaces(builder, {3});
    addAttribute(builder, vertexName(), 1, {1, 2}, {0, 1, 0});
    addAttribute(builder, normalName(), 1, {5}, {0, 0, 0});
    builder.buildGPUFriendlyStreams(GetParam());
    EXPECT_THAT(gpuIndices(builder, vertexName()), ElementsAre(0, 1, 0));

    addAttribute(builder, normalName(), 1, {5, 6}, {0, 0, 1});
    builder.buildGPUFriendlyStreams(GetParam());

    EXPECT_THAT(messages.messages(), SizeIs(2));
    EXPECT_THAT(gpuIndices(builder, vertexName()), ElementsAre(0, 1, 2));
    EXPECT_THAT(gpuValues(builder, vertexName()), areFloats({1, 2, 1}));
    EXPECT_THAT(gpuValues(builder, normalName()), areFloats({5, 5, 6}));
}

TEST_P(BothFormsTest, HalfBuiltAttributesAreRebuilt)
{
    for (const bool lacksValues : {false, true}) {
        const MessageCapture messages;
        ModelBuilder builder({}, 0);
        addFaces(builder, {3});
        addAttribute(builder, vertexName(), 1, {1, 2}, {0, 1, 0});
        builder.buildGPUFriendlyStreams(GetParam());
        auto &attribute = Inspector::vertexAttributes(builder)[vertexName()];
        (lacksValues ? attribute.gpuValues : attribute.gpuIndices).clear();
        builder.buildGPUFriendlyStreams(GetParam());
        EXPECT_THAT(messages.messages(), SizeIs(2));
        EXPECT_THAT(gpuValues(builder, vertexName()), areFloats({1, 2}));
        EXPECT_THAT(gpuIndices(builder, vertexName()), ElementsAre(0, 1, 0));
    }
}

// Indices that select nothing

TEST_P(BothFormsTest, AnIndexThatSelectsNothingSelectsZeros)
{
    struct Row
    {
        const char *name;
        unsigned index;
        std::vector<float> selected;
    };
    // Two whole values of two floats, and half of a third.
    const std::vector<float> values = {1, 2, 3, 4, 5};
    const Row rows[] = {
        {"the first value", 0, {1, 2}},
        {"the last value", 1, {3, 4}},
        {"half a value", 2, {0, 0}},
        {"just beyond the values", 3, {0, 0}},
        {"the absent marker", absentIndex, {0, 0}},
        {"minus one", 0xFFFFFFFF, {0, 0}},
        {"most negative", 0x80000000, {0, 0}},
        {"wraps to the first byte when multiplied in 32 bits", 0x20000000, {0, 0}},
    };
    for (const Row &row : rows) {
        const MessageCapture silence;
        ModelBuilder builder(QSharedPointer<RecordingAllocator>::create(), 0);
        addFaces(builder, {3});
        addAttribute(builder, vertexName(), 2, values, {0, row.index, 0});
        builder.buildGPUFriendlyStreams(GetParam());
        const std::vector<unsigned> indices = gpuIndices(builder, vertexName());
        const std::vector<float> gpu = gpuValues(builder, vertexName());
        ASSERT_EQ(indices.size(), 3u) << row.name;
        ASSERT_LE(2 * indices[1] + 2, gpu.size()) << row.name;
        EXPECT_THAT(
            std::vector<float>(gpu.begin() + 2 * indices[1], gpu.begin() + 2 * indices[1] + 2),
            areFloats(row.selected))
            << row.name;
        EXPECT_EQ(indices[0], 0u) << row.name;
        EXPECT_EQ(indices[2], 0u) << row.name;
    }
}

TEST_P(BothFormsTest, AnAttributeWithoutAnyValueIsAllZeros)
{
    const MessageCapture silence;
    ModelBuilder builder({}, 0);
    addFaces(builder, {3});
    addAttribute(builder, vertexName(), 1, {1, 2, 3}, {0, 1, 2});
    addAttribute(builder, normalName(), 2, {}, {0, 0, 0});
    builder.buildGPUFriendlyStreams(GetParam());
    EXPECT_THAT(gpuValues(builder, normalName()), areFloats({0, 0, 0, 0, 0, 0}));
}

// Corner            0  1  2 | 3  4  5
// position indices  0  1  2 | 0  1  2
// normal indices    1  0  - | -  -  -      corner 2 and on have none
TEST_P(BothFormsTest, CornersBeyondAnIndexStreamSelectZeros)
{
    const MessageCapture silence;
    ModelBuilder builder(QSharedPointer<RecordingAllocator>::create(), 0);
    addFaces(builder, {3, 3});
    addAttribute(builder, vertexName(), 1, {10, 11, 12}, {0, 1, 2, 0, 1, 2});
    addAttribute(builder, normalName(), 1, {7, 8}, {1, 0});
    builder.buildGPUFriendlyStreams(GetParam());

    EXPECT_THAT(gpuIndices(builder, vertexName()), ElementsAre(0, 1, 2, 3, 4, 2));
    EXPECT_THAT(gpuValues(builder, vertexName()), areFloats({10, 11, 12, 10, 11}));
    EXPECT_THAT(gpuValues(builder, normalName()), areFloats({8, 7, 0, 0, 0}));
}

TEST_P(BothFormsTest, EntriesBeyondTheCornersAreNotLookedAt)
{
    const MessageCapture silence;
    ModelBuilder builder({}, 0);
    addFaces(builder, {3});
    addAttribute(builder, vertexName(), 1, {1, 2, 3}, {2, 1, 0, 99, 98});
    builder.buildGPUFriendlyStreams(GetParam());
    EXPECT_THAT(gpuIndices(builder, vertexName()), ElementsAre(0, 1, 2));
    EXPECT_THAT(gpuValues(builder, vertexName()), areFloats({3, 2, 1}));
}

// Offsets into a stream are signed 32-bit numbers.
TEST_P(BothFormsTest, WhatHasMoreElementsThanOffsetsReachIsNotBuilt)
{
    struct Row
    {
        const char *name;
        unsigned corners;
        int components;
        bool isTried;
    };
    const Row rows[] = {
        {"2^31 - 2^15 elements", 1u << 15, (1 << 16) - 1, true},
        {"2^31 elements", 1u << 15, 1 << 16, false},
        {"2^32 elements", 1u << 16, 1 << 16, false},
    };
    for (const Row &row : rows) {
        const auto allocator = QSharedPointer<RecordingAllocator>::create();
        ModelBuilder builder(allocator, 0);
        addFaces(builder, {row.corners});
        addAttribute(builder, vertexName(), row.components, {}, {});
        allocator->failAfter(0);
        allocator->log().clear();
        builder.buildGPUFriendlyStreams(GetParam());
        EXPECT_EQ(!allocator->log().changes().empty(), row.isTried) << row.name;
        EXPECT_FALSE(Inspector::vertexAttribute(builder, vertexName()).gpuIndices) << row.name;
    }
}

// Only a want of memory leaves an attribute without a stream of values.
TEST_P(BothFormsTest, AnAttributeWithoutAValueStreamBecomesFloatsOfZero)
{
    const MessageCapture silence;
    ModelBuilder builder({}, 0);
    addFaces(builder, {3});
    addAttribute(builder, vertexName(), 1, {1, 2, 3}, {0, 1, 2});
    addAttribute(builder, normalName(), 2, {4, 5}, {0, 0, 0});
    Inspector::vertexAttributes(builder)[normalName()].values.clear();
    builder.buildGPUFriendlyStreams(GetParam());
    const auto normals = Inspector::vertexAttribute(builder, normalName()).gpuValues;
    ASSERT_TRUE(normals);
    EXPECT_EQ(normals->type(), typeFloat);
    EXPECT_THAT(floats(normals), areFloats({0, 0, 0, 0, 0, 0}));
}

TEST_P(BothFormsTest, AnAttributeOfLessThanNoComponentsHasNoValues)
{
    const MessageCapture silence;
    ModelBuilder builder({}, 0);
    addFaces(builder, {3});
    addAttribute(builder, vertexName(), 1, {1, 2, 3}, {0, 1, 2});
    addAttribute(builder, normalName(), -1, {4, 5}, {0, 0, 0});
    builder.buildGPUFriendlyStreams(GetParam());
    EXPECT_TRUE(Inspector::vertexAttribute(builder, vertexName()).gpuIndices);
    EXPECT_THAT(gpuValues(builder, normalName()), IsEmpty());
}

// A slower truth

struct SlowVertices
{
    std::vector<std::vector<float>> vertices; // the attributes' values, one after the other
    std::vector<unsigned> indices;
};

/// Every corner's bytes, looked up among those of all corners before it.
SlowVertices slowBuild(const std::vector<std::vector<float>> &values,
                       const std::vector<std::vector<unsigned>> &indices, std::size_t cornerCount)
{
    SlowVertices result;
    for (std::size_t corner = 0; corner < cornerCount; ++corner) {
        std::vector<float> vertex;
        for (std::size_t attribute = 0; attribute < values.size(); ++attribute) {
            const std::size_t components = attribute + 1;
            for (std::size_t i = 0; i < components; ++i)
                vertex.push_back(values[attribute][indices[attribute][corner] * components + i]);
        }
        std::size_t number = 0;
        while (number < result.vertices.size() && bitsOf(result.vertices[number]) != bitsOf(vertex))
            ++number;
        if (number == result.vertices.size())
            result.vertices.push_back(vertex);
        result.indices.push_back(static_cast<unsigned>(number));
    }
    return result;
}

TEST_P(BothFormsTest, AgreesWithASlowSearch)
{
    const unsigned seed = 20240607;
    SCOPED_TRACE(::testing::Message() << "seed " << seed);
    std::mt19937 generator(seed);
    const auto random = [&generator] { return static_cast<unsigned>(generator()); };
    const QString names[] = {vertexName(), texCoordName(), normalName()};
    // Few different values, so that bytes repeat under different indices too.
    const float pool[] = {0.0f, -0.0f, 1.0f, std::numeric_limits<float>::quiet_NaN()};
    for (int round = 0; round < 50; ++round) {
        const MessageCapture silence;
        const std::size_t cornerCount = 3 * (1 + random() % 40);
        std::vector<std::vector<float>> values(3);
        std::vector<std::vector<unsigned>> indices(3);
        ModelBuilder builder({}, 0);
        addFaces(builder, std::vector<unsigned>(cornerCount / 3, 3));
        for (std::size_t attribute = 0; attribute < 3; ++attribute) {
            const unsigned valueCount = 1 + random() % 8;
            for (std::size_t i = 0; i < valueCount * (attribute + 1); ++i)
                values[attribute].push_back(pool[random() % 4]);
            for (std::size_t i = 0; i < cornerCount; ++i)
                indices[attribute].push_back(random() % valueCount);
            addAttribute(builder, names[attribute], static_cast<int>(attribute) + 1,
                         values[attribute], indices[attribute]);
        }

        builder.buildGPUFriendlyStreams(GetParam());

        const SlowVertices truth = slowBuild(values, indices, cornerCount);
        ASSERT_EQ(gpuIndices(builder, vertexName()), truth.indices) << "round " << round;
        std::size_t offset = 0;
        for (std::size_t attribute = 0; attribute < 3; ++attribute) {
            std::vector<float> expected;
            for (const std::vector<float> &vertex : truth.vertices) {
                const auto begin = vertex.begin() + static_cast<std::ptrdiff_t>(offset);
                expected.insert(expected.end(), begin,
                                begin + static_cast<std::ptrdiff_t>(attribute + 1));
            }
            ASSERT_THAT(gpuValues(builder, names[attribute]), areFloats(expected))
                << "round " << round << ", attribute " << attribute;
            offset += attribute + 1;
        }
    }
}

} // namespace
} // namespace OrvTest
