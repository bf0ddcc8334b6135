// The loader's own way from a file's arrays to the GPU's against the builder's.
#include "Preparing/GeometryPreparing.h"

#include "support/BuilderContents.h"
#include "support/ModelBuilderInspector.h"
#include "support/ModelBuilding.h"
#include "support/ModelDifferences.h"
#include "support/PlainModelInput.h"
#include "support/RandomModel.h"
#include "support/StreamContents.h"

#include "Reports/CurrentReport.h"
#include <OrvModel/TriMeshVertexNormals.h>

#include <gmock/gmock.h>

#include <limits>
#include <map>
#include <numeric>

using namespace Halvard::Orv;
using namespace OrvTest;

namespace {

using ::testing::IsEmpty;

constexpr std::uint32_t Seed = 20240611;

QVector<unsigned> faceOffsets(const PlainModel &model)
{
    QVector<unsigned> offsets;
    unsigned offset = 0;
    for (const unsigned count : model.cornerCounts) {
        offsets.append(offset);
        offset += count;
    }
    return offsets;
}

/// The steps of ModelBuilder::upload() up to the first that needs OpenGL.
UploadedModel byBuilder(const PlainModel &model, ModelBuilder &builder)
{
    UploadedModel outcome;
    const MessageCapture capture;
    if (!builder.isValid() || !builder.hasVertexAttribute(vertexName()))
        return outcome;
    builder.buildGPUFriendlyStreams(false);
    using Inspector = ModelBuilderInspector;
    const Inspector::VertexAttribute positions = Inspector::vertexAttribute(builder, vertexName());
    for (const auto &[name, group] : Inspector::materialGroups(builder)) {
        if (!group.faces->isEmpty())
            builder.prepareMaterialGroupForUpload(name, group, positions.gpuValues,
                                                  positions.gpuIndices, faceOffsets(model));
    }
    Bundle bundle = preparedBundle(builder);
    if (!Inspector::normalsAttribute(builder).isNull()) {
        std::vector<float> normals(positions.gpuValues->size());
        TriMeshVertexNormals(static_cast<int>(normals.size() / 3),
                             static_cast<int>(bundle.indices.size()),
                             static_cast<const float *>(positions.gpuValues->data(0)),
                             bundle.indices.data(), normals.data());
        bundle.attributes[normalName()] = {3, typeFloat, normals};
    }
    outcome.bundles.push_back(bundle);
    outcome.messages = withoutAddresses(capture.messages());
    return outcome;
}

/// \param textBytes what the file is said to have: normals are made beside the triangles
///        where they fit, and after them where they do not.
UploadedModel byArrays(const PlainModel &model, const ModelBuilder &builder,
                       const QStringList &groups, std::size_t textBytes)
{
    UploadedModel outcome;
    const MessageCapture capture;
    OBJGeometry geometry = toGeometry(model);
    geometry.textBytes = textBytes;
    const PreparedGeometry prepared = prepareGeometry(std::move(geometry), groups, &builder);
    outcome.messages = withoutAddresses(capture.messages());
    if (!prepared.isEmpty())
        outcome.bundles.push_back(preparedBundle(prepared));
    return outcome;
}

/// Both paths give the same. Returns what that is.
UploadedModel expectSame(const PlainModel &model)
{
    ModelBuilder builder({}, 0);
    readInto(builder, model);
    const QStringList groups = ModelBuilderInspector::materialGroups(builder).names();
    const UploadedModel expected = byBuilder(model, builder);
    for (const std::size_t textBytes : {std::size_t(0), std::numeric_limits<std::size_t>::max()})
        EXPECT_THAT(differences(expected, byArrays(model, builder, groups, textBytes)), IsEmpty());
    return expected;
}

/// A mesh whose faces are all in one group.
PlainModel meshOf(std::vector<float> positions, std::vector<unsigned> indices,
                  std::vector<unsigned> cornerCounts)
{
    PlainModel model;
    model.positions() = {3, std::move(positions), std::move(indices)};
    model.groups = {{QStringLiteral("<default>"), {}, std::vector<quint32>(cornerCounts.size())}};
    std::iota(model.groups[0].faces.begin(), model.groups[0].faces.end(), 0u);
    model.cornerCounts = std::move(cornerCounts);
    return model;
}

TEST(GeometryPreparingTest, RandomModelsGiveTheSameByBothPaths)
{
    RecordProperty("seed", static_cast<int>(Seed));
    Dice dice(Seed);
    std::map<std::string, int> seen;
    for (int i = 0; i < 4000; ++i) {
        const PlainModel model = randomModel(dice);
        const UploadedModel outcome = expectSame(model);
        if (HasFailure())
            FAIL() << "model " << i << " of seed " << Seed;
        if (outcome.bundles.empty()) {
            ++seen["not drawable"];
            continue;
        }
        ++seen[outcome.bundle().indices.empty() ? "no triangles" : "triangles"];
        ++seen[outcome.bundle().commands.size() > 1 ? "several commands" : "one command"];
        for (const Message &message : outcome.messages)
            ++seen[message.text.find("Map") == std::string::npos ? message.text : "map"];
    }
    // Nothing of what is compared may be missing from the models.
    EXPECT_GT(seen["not drawable"], 100);
    EXPECT_GT(seen["no triangles"], 10);
    EXPECT_GT(seen["triangles"], 1000);
    EXPECT_GT(seen["several commands"], 1000);
    EXPECT_GT(seen["map"], 1000);
    EXPECT_GT(seen["Unable to triangulate polygon."], 1000);
    EXPECT_GT(seen["Cannot triangulate a polygon with fewer than 3 vertices"], 1000);
}

TEST(GeometryPreparingTest, QuadWithSharedPositions)
{
    // 3 --- 2      5 repeats 1
    // |     | \    f 0 1 2 3
    // 0 --- 1  4   f 5 4 2
    const PlainModel model = meshOf({0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0, 2, 0, 0, 1, 0, 0},
                                    {0, 1, 2, 3, 5, 4, 2}, {4, 3});
    const UploadedModel outcome = expectSame(model);
    EXPECT_THAT(outcome.bundle().indices, testing::ElementsAre(0, 1, 3, 1, 2, 3, 1, 4, 2));
    EXPECT_EQ(outcome.bundle().values("va_Vertex").size(), 15u);
    EXPECT_EQ(outcome.bundle().attributes.size(), 2u) << "no texture coordinates";
}

TEST(GeometryPreparingTest, TrianglesThatTakeThePlaceOfTheirCorners)
{
    // Groups in file order, with faces of no triangle and of no group between.
    PlainModel model = meshOf({0, 0, 0, 1, 0, 0, 0, 1, 0, 1, 1, 0},
                              {0, 1, 2, 3, 2, 1, 0, 1, 1, 3, 2, 0, 3, 1}, {});
    model.cornerCounts = {3, 1, 3, 2, 3, 2};
    model.groups[0].faces = {0, 1, 3, 4, 5};
    const UploadedModel outcome = expectSame(model);
    EXPECT_EQ(outcome.bundle().indices.size(), 6u);
}

TEST(GeometryPreparingTest, FacesFarFromTheOriginAreTurnedOverAlike)
{
    // So far out that the normal of most faces is rounding: about half of them are
    // turned over.
    Dice dice(Seed);
    PlainModel model;
    model.groups = {{QStringLiteral("<default>"), {}, {}}};
    PlainAttribute &positions = model.positions();
    for (unsigned face = 0; face < 3000; ++face) {
        const unsigned count = dice.oneIn(2) ? 3 : 4;
        model.cornerCounts.push_back(count);
        model.groups[0].faces.push_back(face);
        const double turn = dice.real(0.0, 6.28);
        for (unsigned i = 0; i < count; ++i) {
            positions.indices.push_back(static_cast<unsigned>(positions.values.size() / 3));
            const double angle = turn + 6.283 * i / count;
            positions.values.push_back(static_cast<float>(5000 + face + 0.01 * std::cos(angle)));
            positions.values.push_back(static_cast<float>(7000 + 0.01 * std::sin(angle)));
            positions.values.push_back(static_cast<float>(9000 + 0.003 * std::sin(angle)));
        }
    }
    const UploadedModel outcome = expectSame(model);
    ASSERT_EQ(outcome.messages.size(), 1u);
    unsigned turned = 0;
    std::size_t entry = 0;
    unsigned corner = 0;
    for (const unsigned count : model.cornerCounts) {
        if (outcome.bundle().indices[entry] == corner &&
            outcome.bundle().indices[entry + 1] != corner + 1)
            ++turned;
        entry += 3 * (count - 2);
        corner += count;
    }
    EXPECT_GT(turned, 300u);
}

TEST(GeometryPreparingTest, OnePositionWithManyTextureCoordinates)
{
    // All corners lie on one position: a chain per position alone would take the
    // square of their number.
    constexpr unsigned Count = 300000;
    PlainModel model = meshOf({0, 0, 0}, std::vector<unsigned>(2 * Count),
                              std::vector<unsigned>(2 * Count / 3, 3));
    Dice dice(Seed);
    PlainAttribute &texCoords = model.texCoords();
    for (unsigned i = 0; i < Count; ++i) {
        texCoords.values.push_back(static_cast<float>(i));
        texCoords.values.push_back(1.0f);
    }
    for (unsigned corner = 0; corner < 2 * Count; ++corner)
        texCoords.indices.push_back(static_cast<unsigned>(dice.below(Count)));
    const UploadedModel outcome = expectSame(model);
    EXPECT_EQ(outcome.bundle().indices.size(), 2 * Count);
}

TEST(GeometryPreparingTest, ReportsItsStagesAndVertices)
{
    PlainModel model = meshOf({0, 0, 0, 1, 0, 0, 0, 1, 0}, {0, 1, 2, 2, 1, 0}, {3, 3});
    PreparationReport report;
    const MessageCapture capture;
    {
        const ScopedReport scope(report);
        prepareGeometry(toGeometry(model), {QStringLiteral("<default>")}, nullptr);
    }
    EXPECT_EQ(report.verticesBeforeWelding, 6u);
    EXPECT_EQ(report.vertices, 3u);
    EXPECT_GT(report.stages.weld, 0);
    EXPECT_GT(report.stages.triangulate, 0);
    EXPECT_GT(report.stages.normals, 0);
}

TEST(GeometryPreparingTest, GroupsThatAreNotAskedForGiveNothing)
{
    PlainModel model = meshOf({0, 0, 0, 1, 0, 0, 0, 1, 0}, {0, 1, 2, 2, 1, 0}, {3, 3});
    model.groups[0].faces = {0};
    model.groups.push_back({QStringLiteral("other"), {}, {1}});
    const MessageCapture capture;
    const PreparedGeometry prepared = prepareGeometry(
        toGeometry(model), {QStringLiteral("nobody's"), QStringLiteral("other")}, nullptr);
    ASSERT_EQ(prepared.commands.size(), 1);
    EXPECT_EQ(prepared.commands.first().group, QStringLiteral("other"));
    EXPECT_THAT(uints(prepared.indices), testing::ElementsAre(2, 1, 0));
}

TEST(GeometryPreparingTest, MoreCornersThanCountedGiveNothing)
{
    PlainModel model = meshOf({0, 0, 0, 1, 0, 0, 0, 1, 0}, {0, 1, 2}, {3});
    OBJGeometry geometry = toGeometry(model);
    geometry.cornerCounts.append(0xfffffffdu); // the sum wraps around to 0
    geometry.cornerCount = 0;
    const MessageCapture capture;
    EXPECT_TRUE(
        prepareGeometry(std::move(geometry), {QStringLiteral("<default>")}, nullptr).isEmpty());
    EXPECT_TRUE(capture.messages().empty());
}

} // namespace
