// Welding by index tuples and hashes against a map of whole vertices.
#include "Preparing/CornerWelding.h"

#include "support/PlainModelInput.h"
#include "support/RandomModel.h"
#include "support/StreamContents.h"

#include <gmock/gmock.h>

#include <map>

using namespace Halvard::Orv;
using namespace OrvTest;

namespace {

constexpr std::uint32_t Seed = 20240529;

using Bits = std::vector<std::uint32_t>;

struct Welded
{
    std::vector<unsigned> vertexOfCorner;
    std::vector<float> positions;
    std::vector<float> normals;
    std::vector<float> texCoords;
};

/// What a corner selects: zeros where that is nothing.
std::vector<float> valueAt(const PlainAttribute &attribute, std::size_t corner)
{
    const auto components = static_cast<std::size_t>(attribute.components);
    std::vector<float> value(components);
    if (corner >= attribute.indices.size())
        return value;
    const std::size_t index = attribute.indices[corner];
    if (components > 0 && index < attribute.values.size() / components)
        std::copy_n(attribute.values.begin() + static_cast<std::ptrdiff_t>(index * components),
                    value.size(), value.begin());
    return value;
}

void append(std::vector<float> &to, const std::vector<float> &value)
{
    to.insert(to.end(), value.begin(), value.end());
}

Welded plainlyWelded(const PlainModel &model)
{
    Welded welded;
    std::map<Bits, unsigned> known;
    const std::size_t corners = model.cornerCount();
    for (std::size_t corner = 0; corner < corners; ++corner) {
        const std::vector<float> position = valueAt(model.positions(), corner);
        const std::vector<float> normal = valueAt(model.normals(), corner);
        const std::vector<float> texCoord = valueAt(model.texCoords(), corner);
        std::vector<float> vertex = position;
        append(vertex, normal);
        append(vertex, texCoord);
        const auto next = static_cast<unsigned>(known.size());
        const auto [found, isNew] = known.emplace(bitsOf(vertex), next);
        welded.vertexOfCorner.push_back(found->second);
        if (isNew) {
            append(welded.positions, position);
            append(welded.normals, normal);
            append(welded.texCoords, texCoord);
        }
    }
    return welded;
}

template <typename T>
std::vector<T> contents(const GrowArray<T> &array)
{
    return {array.data(), array.data() + array.size()};
}

/// Returns the number of vertices.
std::size_t expectPlainResult(const PlainModel &model)
{
    const Welded expected = plainlyWelded(model);
    OBJGeometry geometry = toGeometry(model);
    const WeldedCorners welded = weldCorners(geometry);
    EXPECT_EQ(contents(welded.vertexOfCorner), expected.vertexOfCorner);
    EXPECT_EQ(welded.vertexCount, expected.positions.size() / 3);
    EXPECT_EQ(bitsOf(contents(welded.positions)), bitsOf(expected.positions));
    EXPECT_EQ(bitsOf(contents(welded.normals)), bitsOf(expected.normals));
    EXPECT_EQ(bitsOf(contents(welded.texCoords)), bitsOf(expected.texCoords));
    EXPECT_TRUE(geometry.positions.values.isEmpty() && geometry.positions.indices.isEmpty());
    EXPECT_TRUE(geometry.normals.values.isEmpty() && geometry.normals.indices.isEmpty());
    EXPECT_TRUE(geometry.texCoords.values.isEmpty() && geometry.texCoords.indices.isEmpty());
    return welded.vertexCount;
}

TEST(CornerWeldingTest, RandomModels)
{
    RecordProperty("seed", static_cast<int>(Seed));
    Dice dice(Seed);
    for (int i = 0; i < 3000; ++i) {
        const PlainModel model = randomModel(dice);
        if (!model.positions().values.empty())
            expectPlainResult(model);
        ASSERT_FALSE(HasFailure()) << "model " << i << " of seed " << Seed;
    }
}

struct Column
{
    std::vector<float> values;
    std::vector<quint32> indices;
};

/// A model of points: welding does not look at faces. Without values there is no attribute.
PlainModel points(const Column &positions, const Column &normals, const Column &texCoords)
{
    PlainModel model;
    model.cornerCounts.assign(positions.indices.size(), 1);
    const auto fill = [](PlainAttribute &attribute, const Column &column) {
        attribute.values = column.values;
        attribute.indices = column.indices;
    };
    fill(model.positions(), positions);
    if (!normals.values.empty())
        fill(model.normals(), normals);
    if (!texCoords.values.empty())
        fill(model.texCoords(), texCoords);
    return model;
}

TEST(CornerWeldingTest, TuplesWithTheSameBytesAreOneVertex)
{
    // Positions 0 and 2 are the same, texture coordinates 1 and 2 are.
    const PlainModel model = points({{1, 2, 3, 4, 5, 6, 1, 2, 3}, {0, 0, 1, 2, 2, 0}}, {},
                                    {{7, 8, 9, 9, 9, 9}, {0, 1, 0, 2, 0, 1}});
    OBJGeometry geometry = toGeometry(model);
    const WeldedCorners welded = weldCorners(geometry);
    EXPECT_THAT(contents(welded.vertexOfCorner), testing::ElementsAre(0, 1, 2, 1, 0, 1));
    EXPECT_THAT(contents(welded.positions), testing::ElementsAre(1, 2, 3, 1, 2, 3, 4, 5, 6));
    EXPECT_THAT(contents(welded.texCoords), testing::ElementsAre(7, 8, 9, 9, 7, 8));
}

TEST(CornerWeldingTest, NothingSelectedIsZerosAndEqualsThem)
{
    // Corner 1 selects zeros, the others nothing: absent, below 0, past the end.
    const PlainModel model =
        points({{1, 1, 1, 0, 0, 0}, {0, 1, 0x7fffffffu, 0xffffffffu, 2}}, {}, {});
    OBJGeometry geometry = toGeometry(model);
    EXPECT_THAT(contents(weldCorners(geometry).vertexOfCorner),
                testing::ElementsAre(0, 1, 1, 1, 1));
}

TEST(CornerWeldingTest, ZerosOfBothSignsStayApart)
{
    expectPlainResult(points({{0.0f, 0, 0, -0.0f, 0, 0}, {0, 1, 0, 1}}, {}, {}));
    const PlainModel model = points({{0.0f, 0, 0, -0.0f, 0, 0}, {0, 1}}, {}, {});
    OBJGeometry geometry = toGeometry(model);
    EXPECT_EQ(weldCorners(geometry).vertexCount, 2u);
}

/// Many tuples, of which those of a few positions fill their chains.
PlainModel crowdedModel(std::uint32_t seed, int positionCount, int otherCount, int corners,
                        bool normals, bool texCoords)
{
    Dice dice(seed);
    PlainModel model;
    const auto fill = [&](PlainAttribute &attribute, int count) {
        for (int i = 0; i < count * attribute.components; ++i)
            attribute.values.push_back(static_cast<float>(dice.below(1 << 20)));
        for (int i = 0; i < corners; ++i)
            attribute.indices.push_back(static_cast<unsigned>(dice.below(count)));
    };
    fill(model.positions(), positionCount);
    if (normals)
        fill(model.normals(), otherCount);
    if (texCoords)
        fill(model.texCoords(), otherCount);
    model.cornerCounts.assign(static_cast<std::size_t>(corners), 1);
    return model;
}

TEST(CornerWeldingTest, FullChainsGoOnInTheHashTable)
{
    for (const int positions : {1, 2, 50}) {
        for (const int others : {15, 16, 17, 18, 3000}) {
            expectPlainResult(crowdedModel(Seed, positions, others, 20000, false, true));
            expectPlainResult(crowdedModel(Seed, positions, others, 20000, true, false));
            expectPlainResult(crowdedModel(Seed, positions, others, 20000, true, true));
        }
    }
}

TEST(CornerWeldingTest, ManyPositionsWithMostlyDifferentBytes)
{
    EXPECT_GT(expectPlainResult(crowdedModel(Seed, 60000, 1, 200000, false, false)), 50000u);
}

/// Index arrays that end at different corners.
TEST(CornerWeldingTest, EveryCombinationOfShortIndices)
{
    const std::vector<float> values = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
    for (std::size_t v = 1; v <= 4; ++v) {
        for (std::size_t vn = 1; vn <= 4; ++vn) {
            for (std::size_t vt = 1; vt <= 4; ++vt) {
                PlainModel model =
                    points({values, {3, 2, 1, 0}}, {values, {0, 0, 1, 1}}, {values, {5, 4, 5, 4}});
                model.positions().indices.resize(v);
                model.normals().indices.resize(vn);
                model.texCoords().indices.resize(vt);
                expectPlainResult(model);
            }
        }
    }
}

} // namespace
