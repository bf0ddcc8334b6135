// The loader's own way from a file's arrays to the GPU's against the builder's.
#include "Preparing/GeometryPreparing.h"

#include "support/PlainModel.h"

#include "support/MessageCapture.h"
#include "support/ModelBuilderInspector.h"
#include "support/ModelBuilding.h"
#include "support/PlainGeometry.h"
#include "support/StreamContents.h"

#include <OrvModel/TriMeshVertexNormals.h>

#include "Reports/LoadReport.h"

#include <gmock/gmock.h>

#include <limits>
#include <map>

using namespace Halvard::Orv;
using namespace OrvTest;

namespace {

constexpr std::uint32_t Seed = 20240611;

using Bits = std::vector<std::uint32_t>;

/// What goes to the GPU, and what was said on the way.
struct Outcome
{
    std::map<std::string, Bits> attributes;
    Bits indices;
    /// Group, first index and count of each command.
    std::vector<std::tuple<std::string, unsigned, unsigned>> commands;
    std::vector<Message> messages;
};

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
Outcome byBuilder(const PlainModel &model, ModelBuilder &builder)
{
    Outcome outcome;
    const MessageCapture capture;
    if (!builder.isValid() || !builder.hasVertexAttribute(vertexName()))
        return outcome;
    builder.buildGPUFriendlyStreams(false);
    using Inspector = ModelBuilderInspector;
    const Inspector::VertexAttribute positions = Inspector::vertexAttribute(builder, vertexName());
    const auto groups = Inspector::materialGroups(builder);
    for (auto it = groups.cbegin(); it != groups.cend(); ++it) {
        if (!it->faces->isEmpty())
            builder.prepareMaterialGroupForUpload(it.key(), it.value(), positions.gpuValues,
                                                  positions.gpuIndices, faceOffsets(model));
    }
    const auto attributes = Inspector::vertexAttributes(builder);
    for (auto it = attributes.cbegin(); it != attributes.cend(); ++it)
        outcome.attributes[it.key().toStdString()] = bitsOf(floats(it->gpuValues));
    outcome.indices = uints(Inspector::gpuIndices(builder));
    if (!Inspector::normalsAttribute(builder).isNull()) {
        std::vector<float> normals(positions.gpuValues->size());
        TriMeshVertexNormals(static_cast<int>(normals.size() / 3),
                             static_cast<int>(outcome.indices.size()),
                             static_cast<const float *>(positions.gpuValues->data(0)),
                             outcome.indices.data(), normals.data());
        outcome.attributes["va_Normal"] = bitsOf(normals);
    }
    const auto commands = Inspector::drawCommands(builder).value(0);
    const auto names = Inspector::drawCommandGroups(builder).value(0);
    for (int i = 0; i < commands.size(); ++i)
        outcome.commands.emplace_back(names.at(i).toStdString(), commands.at(i).firstIndex,
                                      commands.at(i).count);
    outcome.messages = capture.messages();
    return outcome;
}

/// \param textBytes what the file is said to have: normals are made beside the triangles
///        where they fit, and after them where they do not.
Outcome byArrays(const PlainModel &model, const ModelBuilder &builder, const QStringList &groups,
                 std::size_t textBytes)
{
    Outcome outcome;
    const MessageCapture capture;
    OBJGeometry geometry = toGeometry(model);
    geometry.textBytes = textBytes;
    const PreparedGeometry prepared = prepareGeometry(std::move(geometry), groups, &builder);
    outcome.messages = capture.messages();
    if (prepared.isEmpty())
        return outcome;
    for (const PreparedGeometry::Attribute &attribute : prepared.attributes) {
        EXPECT_EQ(attribute.values->type(), typeFloat);
        EXPECT_EQ(attribute.components, attribute.name == texCoordName() ? 2 : 3);
        outcome.attributes[attribute.name.toStdString()] = bitsOf(floats(attribute.values));
    }
    EXPECT_EQ(prepared.indices->type(), typeUnsignedInt);
    outcome.indices = uints(prepared.indices);
    for (const PreparedGeometry::Command &command : prepared.commands)
        outcome.commands.emplace_back(command.group.toStdString(), command.firstIndex,
                                      command.count);
    return outcome;
}

/// Both paths give the same. Returns what that is.
Outcome expectSame(const PlainModel &model)
{
    ModelBuilder builder({}, 0);
    pour(model, builder);
    const QStringList groups = ModelBuilderInspector::materialGroups(builder).keys();
    const Outcome expected = byBuilder(model, builder);
    for (const std::size_t textBytes : {std::size_t(0), std::numeric_limits<std::size_t>::max()}) {
        const Outcome outcome = byArrays(model, builder, groups, textBytes);
        EXPECT_EQ(outcome.attributes, expected.attributes);
        EXPECT_EQ(outcome.indices, expected.indices);
        EXPECT_EQ(outcome.commands, expected.commands);
        EXPECT_EQ(outcome.messages, expected.messages);
    }
    return expected;
}

PlainModel meshOf(std::vector<float> positions, std::vector<unsigned> indices,
                  std::vector<unsigned> cornerCounts)
{
    PlainModel model;
    model.positions = {std::move(positions), std::move(indices)};
    model.groupOfFace.assign(cornerCounts.size(), 0);
    model.cornerCounts = std::move(cornerCounts);
    model.groups = {QStringLiteral("<default>")};
    return model;
}

TEST(PrepareGeometryTest, randomModelsGiveTheSameByBothRoads)
{
    RecordProperty("seed", static_cast<int>(Seed));
    Dice dice(Seed);
    std::map<std::string, int> seen;
    for (int i = 0; i < 4000; ++i) {
        const PlainModel model = randomModel(dice);
        const Outcome outcome = expectSame(model);
        if (HasFailure())
            FAIL() << "model " << i << " of seed " << Seed;
        if (outcome.attributes.empty()) {
            ++seen["not drawable"];
            continue;
        }
        ++seen[outcome.indices.empty() ? "no triangles" : "triangles"];
        ++seen[outcome.commands.size() > 1 ? "several commands" : "one command"];
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

TEST(PrepareGeometryTest, quadWithSharedPositions)
{
    // 3 --- 2      5 repeats 1
    // |     | \    f 0 1 2 3
    // 0 --- 1  4   f 5 4 2
    const PlainModel model = meshOf({0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0, 2, 0, 0, 1, 0, 0},
                                    {0, 1, 2, 3, 5, 4, 2}, {4, 3});
    const Outcome outcome = expectSame(model);
    EXPECT_THAT(outcome.indices, testing::ElementsAre(0, 1, 3, 1, 2, 3, 1, 4, 2));
    EXPECT_EQ(outcome.attributes.at("va_Vertex").size(), 15u);
    EXPECT_EQ(outcome.attributes.count("va_TexCoord"), 0u);
}

TEST(PrepareGeometryTest, trianglesThatTakeThePlaceOfTheirCorners)
{
    // Groups in file order, with faces of no triangle and of no group between.
    PlainModel model = meshOf({0, 0, 0, 1, 0, 0, 0, 1, 0, 1, 1, 0},
                              {0, 1, 2, 3, 2, 1, 0, 1, 1, 3, 2, 0, 3, 1}, {});
    model.cornerCounts = {3, 1, 3, 2, 3, 2};
    model.groupOfFace = {0, 0, -1, 0, 0, 0};
    const Outcome outcome = expectSame(model);
    EXPECT_EQ(outcome.indices.size(), 6u);
}

TEST(PrepareGeometryTest, facesFarFromTheOriginAreTurnedOverAlike)
{
    // So far out that the normal of most faces is rounding: about half of them are
    // turned over.
    Dice dice(Seed);
    PlainModel model;
    model.groups = {QStringLiteral("<default>")};
    for (int face = 0; face < 3000; ++face) {
        const unsigned count = dice.oneIn(2) ? 3 : 4;
        model.cornerCounts.push_back(count);
        model.groupOfFace.push_back(0);
        const double turn = dice.real(0.0, 6.28);
        for (unsigned i = 0; i < count; ++i) {
            model.positions.indices.push_back(
                static_cast<unsigned>(model.positions.values.size() / 3));
            const double angle = turn + 6.283 * i / count;
            model.positions.values.push_back(
                static_cast<float>(5000 + face + 0.01 * std::cos(angle)));
            model.positions.values.push_back(static_cast<float>(7000 + 0.01 * std::sin(angle)));
            model.positions.values.push_back(static_cast<float>(9000 + 0.003 * std::sin(angle)));
        }
    }
    const Outcome outcome = expectSame(model);
    ASSERT_EQ(outcome.messages.size(), 1u);
    unsigned turned = 0;
    std::size_t entry = 0;
    unsigned corner = 0;
    for (const unsigned count : model.cornerCounts) {
        if (outcome.indices[entry] == corner && outcome.indices[entry + 1] != corner + 1)
            ++turned;
        entry += 3 * (count - 2);
        corner += count;
    }
    EXPECT_GT(turned, 300u);
}

TEST(PrepareGeometryTest, onePositionWithManyTextureCoordinates)
{
    // All corners lie on one position: a chain per position alone would take the
    // square of their number.
    constexpr unsigned Count = 300000;
    PlainModel model;
    model.groups = {QStringLiteral("<default>")};
    model.positions.values = {0, 0, 0};
    Dice dice(Seed);
    for (unsigned i = 0; i < Count; ++i) {
        model.texCoords.values.push_back(static_cast<float>(i));
        model.texCoords.values.push_back(1.0f);
    }
    for (unsigned corner = 0; corner < 2 * Count; ++corner) {
        model.positions.indices.push_back(0);
        model.texCoords.indices.push_back(static_cast<unsigned>(dice.below(Count)));
    }
    model.cornerCounts.assign(2 * Count / 3, 3);
    model.groupOfFace.assign(2 * Count / 3, 0);
    const Outcome outcome = expectSame(model);
    EXPECT_EQ(outcome.indices.size(), 2 * Count);
}

TEST(PrepareGeometryTest, reportsItsStagesAndVertices)
{
    PlainModel model = meshOf({0, 0, 0, 1, 0, 0, 0, 1, 0}, {0, 1, 2, 2, 1, 0}, {3, 3});
    LoadReport report;
    const MessageCapture capture;
    {
        const ScopedLoadReport scope(report);
        prepareGeometry(toGeometry(model), {QStringLiteral("<default>")}, nullptr);
    }
    EXPECT_EQ(report.gpuVerticesBeforeWelding, 6);
    EXPECT_EQ(report.gpuVertices, 3);
    EXPECT_GT(report.stages.weld, 0);
    EXPECT_GT(report.stages.triangulate, 0);
    EXPECT_GT(report.stages.normals, 0);
}

TEST(PrepareGeometryTest, groupsThatAreNotAskedForGiveNothing)
{
    PlainModel model = meshOf({0, 0, 0, 1, 0, 0, 0, 1, 0}, {0, 1, 2, 2, 1, 0}, {3, 3});
    model.groups.push_back(QStringLiteral("other"));
    model.groupOfFace = {0, 1};
    const MessageCapture capture;
    const PreparedGeometry prepared = prepareGeometry(
        toGeometry(model), {QStringLiteral("nobody's"), QStringLiteral("other")}, nullptr);
    ASSERT_EQ(prepared.commands.size(), 1);
    EXPECT_EQ(prepared.commands.first().group, QStringLiteral("other"));
    EXPECT_THAT(uints(prepared.indices), testing::ElementsAre(2, 1, 0));
}

TEST(PrepareGeometryTest, moreCornersThanCountedGiveNothing)
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
