#include "support/MessageCapture.h"
#include "support/ModelBuilderInspector.h"
#include "support/ModelBuilding.h"
#include "support/QtPrinting.h"
#include "support/RecordingStream.h"
#include "support/StreamContents.h"

#include <OrvModel/ModelBuilder.h>

#include <cstddef>

namespace OrvTest {
namespace {

using Halvard::Orv::DrawElementsIndirectCommand;
using Halvard::Orv::ModelBuilder;
using Halvard::Orv::ModelDataArray;
using Halvard::Orv::ModelDataStream;
using Inspector = Halvard::Orv::ModelBuilderInspector;
using StreamPointer = QSharedPointer<ModelDataStream>;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

static_assert(sizeof(DrawElementsIndirectCommand) == 20);
static_assert(offsetof(DrawElementsIndirectCommand, count) == 0);
static_assert(offsetof(DrawElementsIndirectCommand, instanceCount) == 4);
static_assert(offsetof(DrawElementsIndirectCommand, firstIndex) == 8);
static_assert(offsetof(DrawElementsIndirectCommand, baseVertex) == 12);
static_assert(offsetof(DrawElementsIndirectCommand, baseInstance) == 16);

const char tooFewCorners[] = "Cannot triangulate a polygon with fewer than 3 vertices";
const char unclippable[] = "Unable to triangulate polygon.";

/// Corner counts that add up to all corners, in the order of the faces.
QVector<unsigned> offsetsOf(const std::vector<unsigned> &cornerCounts)
{
    QVector<unsigned> offsets;
    unsigned sum = 0;
    for (const unsigned count : cornerCounts) {
        offsets.append(sum);
        sum += count;
    }
    return offsets;
}

DrawElementsIndirectCommand command(unsigned count, unsigned firstIndex)
{
    DrawElementsIndirectCommand made;
    made.count = count;
    made.instanceCount = 1;
    made.firstIndex = firstIndex;
    made.baseVertex = 0;
    made.baseInstance = 0;
    return made;
}

/// Prepares groups of a builder one by one, as the upload does.
///
///     y
///     9 |     3            the house: corners 0 1 2 3 4, not symmetric, so that
///       |                  no two of its corners are equally sharp
///     3 |            2
///     2 | 4                the square: vertices 5 6 7 8, counter-clockwise
///     0 | 0             1
///       +---------------- x      9, 10, 11: on one line with 0 and 1
class MaterialGroupPreparationTest : public ::testing::Test
{
protected:
    const std::vector<float> positionValues = {
        0,  0,  0, 6,  0,  0, 5,  3,  0, 2,  9,  0, 0, 2, 0, // the house
        10, 10, 0, 11, 10, 0, 11, 11, 0, 10, 11, 0,          // the square
        7,  0,  0, 8,  0,  0, 9,  0,  0};
    StreamPointer positions = floatStream(positionValues);

    static const std::vector<unsigned> &square()
    {
        static const std::vector<unsigned> corners = {5, 6, 7, 8};
        return corners;
    }

    void prepare(ModelBuilder &builder, const QString &name, const std::vector<unsigned> &faces,
                 const std::vector<unsigned> &cornerCounts, const std::vector<unsigned> &indices,
                 quint64 flags = 0) const
    {
        Inspector::MaterialGroup group;
        group.faces = uintStream(faces);
        group.flags = flags;
        builder.prepareMaterialGroupForUpload(name, group, positions, uintStream(indices),
                                              offsetsOf(cornerCounts));
    }

    MessageCapture messages;
    const QString a = QStringLiteral("a");
    const QString b = QStringLiteral("b");
};

// Corner 3 of the house is the sharpest (cosine 0.74), then, without it, corner 1
// (0.32); 4, 0 and 2 are left. A square is always cut from its corner 1 to its
// corner 3:
//   8--7
//   |\ |
//   | \|
//   5--6
TEST_F(MaterialGroupPreparationTest, FacesBecomeTriangles)
{
    struct Row
    {
        const char *name;
        std::vector<unsigned> cornerCounts;
        std::vector<unsigned> indices;
        std::vector<unsigned> faces;
        std::vector<unsigned> triangles;
        std::vector<std::string> warnings;
    };
    const Row rows[] = {
        {"a triangle", {3}, {7, 8, 5}, {0}, {7, 8, 5}, {}},
        {"a square", {4}, square(), {0}, {5, 6, 8, 6, 7, 8}, {}},
        {"a house", {5}, {0, 1, 2, 3, 4}, {0}, {2, 3, 4, 0, 1, 2, 4, 0, 2}, {}},
        {"faces in the order of the group",
         {3, 4, 3},
         {0, 1, 2, 5, 6, 7, 8, 2, 3, 4},
         {2, 0, 1},
         {2, 3, 4, 0, 1, 2, 5, 6, 8, 6, 7, 8},
         {}},
        {"faces of other groups are left out",
         {3, 4, 3},
         {0, 1, 2, 5, 6, 7, 8, 2, 3, 4},
         {1},
         {5, 6, 8, 6, 7, 8},
         {}},
        {"a face twice", {3}, {0, 1, 2}, {0, 0}, {0, 1, 2, 0, 1, 2}, {}},
        {"a face of no corners", {0}, {}, {0}, {}, {tooFewCorners}},
        {"a face of no corners behind all the others",
         {3, 0},
         {0, 1, 2},
         {1, 0},
         {0, 1, 2},
         {tooFewCorners}},
        {"a face of one corner", {1}, {0}, {0}, {}, {tooFewCorners}},
        {"a face of two corners", {2}, {0, 1}, {0}, {}, {tooFewCorners}},
        {"five corners on a line", {5}, {0, 1, 9, 10, 11}, {0}, {}, {unclippable}},
        {"four corners on a line are a fixed case",
         {4},
         {0, 1, 9, 10},
         {0},
         {0, 1, 10, 1, 9, 10},
         {}},
        {"a failing face between others",
         {3, 5, 3},
         {0, 1, 2, 0, 1, 9, 10, 11, 2, 3, 4},
         {0, 1, 2},
         {0, 1, 2, 2, 3, 4},
         {unclippable}},
    };
    for (const Row &row : rows) {
        messages.clear();
        ModelBuilder builder({}, 0);
        addFaces(builder, row.cornerCounts);
        prepare(builder, a, row.faces, row.cornerCounts, row.indices);
        EXPECT_THAT(uints(Inspector::gpuIndices(builder)), ElementsAreArray(row.triangles))
            << row.name;
        EXPECT_THAT(Inspector::drawCommands(builder).value(0),
                    ElementsAre(command(static_cast<unsigned>(row.triangles.size()), 0)))
            << row.name;
        EXPECT_EQ(messages.texts(QtWarningMsg), row.warnings) << row.name;
        EXPECT_EQ(messages.messages().size(), row.warnings.size()) << row.name;
    }
}

TEST_F(MaterialGroupPreparationTest, OneSquareGivesOneCommandOfSixIndices)
{
    ModelBuilder builder({}, 0);
    addFaces(builder, {4});
    prepare(builder, a, {0}, {4}, square());

    const auto commands = Inspector::drawCommands(builder).value(0);
    ASSERT_EQ(commands.size(), 1);
    EXPECT_EQ(commands[0].count, 6u);
    EXPECT_EQ(commands[0].instanceCount, 1u);
    EXPECT_EQ(commands[0].firstIndex, 0u);
    EXPECT_EQ(commands[0].baseVertex, 0);
    EXPECT_EQ(commands[0].baseInstance, 0u);
    EXPECT_THAT(Inspector::drawCommandGroups(builder).value(0), ElementsAre(a));
    EXPECT_EQ(Inspector::gpuIndices(builder)->size(), 6u);
}

TEST_F(MaterialGroupPreparationTest, TheSecondGroupsRunFollowsTheFirst)
{
    ModelBuilder builder({}, 0);
    const std::vector<unsigned> counts = {4, 3};
    addFaces(builder, counts);
    const std::vector<unsigned> indices = {5, 6, 7, 8, 0, 1, 2};
    prepare(builder, a, {0}, counts, indices);
    prepare(builder, b, {1}, counts, indices);

    EXPECT_THAT(Inspector::drawCommands(builder).value(0),
                ElementsAre(command(6, 0), command(3, 6)));
    EXPECT_THAT(Inspector::drawCommandGroups(builder).value(0), ElementsAre(a, b));
    EXPECT_THAT(uints(Inspector::gpuIndices(builder)), ElementsAre(5, 6, 8, 6, 7, 8, 0, 1, 2));
}

TEST_F(MaterialGroupPreparationTest, PreparingTwiceAddsASecondRun)
{
    ModelBuilder builder({}, 0);
    addFaces(builder, {3});
    prepare(builder, a, {0}, {3}, {0, 1, 2});
    prepare(builder, a, {0}, {3}, {0, 1, 2});
    EXPECT_THAT(Inspector::drawCommands(builder).value(0),
                ElementsAre(command(3, 0), command(3, 3)));
    EXPECT_THAT(Inspector::drawCommandGroups(builder).value(0), ElementsAre(a, a));
    EXPECT_THAT(uints(Inspector::gpuIndices(builder)), ElementsAre(0, 1, 2, 0, 1, 2));
}

TEST_F(MaterialGroupPreparationTest, AGroupWithoutFacesGetsACommandOfNothing)
{
    ModelBuilder builder({}, 0);
    const std::vector<unsigned> counts = {3};
    addFaces(builder, counts);
    prepare(builder, a, {}, counts, {0, 1, 2});
    EXPECT_THAT(Inspector::drawCommands(builder).value(0), ElementsAre(command(0, 0)));
    EXPECT_THAT(Inspector::drawCommandGroups(builder).value(0), ElementsAre(a));
    EXPECT_TRUE(Inspector::gpuIndices(builder)->isEmpty());

    prepare(builder, b, {0}, counts, {0, 1, 2});
    prepare(builder, a, {}, counts, {0, 1, 2});
    EXPECT_THAT(Inspector::drawCommands(builder).value(0),
                ElementsAre(command(0, 0), command(3, 0), command(0, 3)));
}

// Keys

TEST_F(MaterialGroupPreparationTest, MaskedFlagsAreTheKey)
{
    struct Row
    {
        const char *name;
        quint64 mask;
        quint64 firstFlags;
        quint64 secondFlags;
        std::vector<quint64> keys;
    };
    const Row rows[] = {
        {"a mask of nothing puts all into one", 0, 1, 0xFFFFFFFFFFFFFFFFu, {0}},
        {"the flags differ only in bits that the mask clears", 0xF0, 0x3A, 0x35, {0x30}},
        {"the flags differ in a bit of the mask", 0xF0, 0x30, 0x50, {0x30, 0x50}},
        {"the highest bit", 0x8000000000000000u, 0x8000000000000001u, 1, {0, 0x8000000000000000u}},
        {"a full mask, equal flags", ~quint64(0), 9, 9, {9}},
    };
    for (const Row &row : rows) {
        ModelBuilder builder({}, row.mask);
        addFaces(builder, {3});
        prepare(builder, a, {0}, {3}, {0, 1, 2}, row.firstFlags);
        prepare(builder, b, {0}, {3}, {0, 1, 2}, row.secondFlags);

        std::vector<quint64> keys;
        for (const quint64 key : Inspector::drawCommands(builder).keys())
            keys.push_back(key);
        std::sort(keys.begin(), keys.end());
        EXPECT_EQ(keys, row.keys) << row.name;
        EXPECT_EQ(Inspector::drawCommandGroups(builder).size(),
                  Inspector::drawCommands(builder).size())
            << row.name << ": the two tables are kept in step";

        const quint64 first = row.firstFlags & row.mask;
        const quint64 second = row.secondFlags & row.mask;
        if (first == second) {
            EXPECT_THAT(Inspector::drawCommands(builder).value(first),
                        ElementsAre(command(3, 0), command(3, 3)))
                << row.name;
            EXPECT_THAT(Inspector::drawCommandGroups(builder).value(first), ElementsAre(a, b))
                << row.name;
        } else {
            EXPECT_THAT(Inspector::drawCommands(builder).value(first), ElementsAre(command(3, 0)))
                << row.name;
            EXPECT_THAT(Inspector::drawCommands(builder).value(second), ElementsAre(command(3, 3)))
                << row.name;
            EXPECT_THAT(Inspector::drawCommandGroups(builder).value(first), ElementsAre(a))
                << row.name;
            EXPECT_THAT(Inspector::drawCommandGroups(builder).value(second), ElementsAre(b))
                << row.name;
        }
    }
}

TEST_F(MaterialGroupPreparationTest, ANewKeyReplacesNamesLeftUnderIt)
{
    ModelBuilder builder({}, 0);
    addFaces(builder, {3});
    Inspector::drawCommandGroups(builder)[0].append(QStringLiteral("left over"));
    prepare(builder, a, {0}, {3}, {0, 1, 2});
    EXPECT_THAT(Inspector::drawCommandGroups(builder).value(0), ElementsAre(a));
}

// The combined index stream

TEST_F(MaterialGroupPreparationTest, AnEmptyIndexStreamIsReplacedByAFreshOne)
{
    const auto allocator = QSharedPointer<RecordingAllocator>::create();
    ModelBuilder builder(allocator, 0); // s0, s1
    addFaces(builder, {3});
    Inspector::gpuIndices(builder)->setType(typeUnsignedShort);
    allocator->log().clear();

    prepare(builder, a, {0}, {3}, {0, 1, 2});

    EXPECT_THAT(allocator->log().changes(),
                ElementsAre("alloc UINT 0 -> s2", "s1.delete", "s2.append 3", "s2.resize 3",
                            "s2.setData 0 3"));
    EXPECT_EQ(Inspector::gpuIndices(builder)->type(), typeUnsignedInt);
    EXPECT_THAT(uints(Inspector::gpuIndices(builder)), ElementsAre(0, 1, 2));
}

TEST_F(MaterialGroupPreparationTest, AnIndexStreamInUseIsAppendedTo)
{
    const auto allocator = QSharedPointer<RecordingAllocator>::create();
    ModelBuilder builder(allocator, 0);
    addFaces(builder, {3});
    const StreamPointer inUse = Inspector::gpuIndices(builder);
    const unsigned before[] = {70, 71};
    inUse->append(2, before);
    allocator->log().clear();

    prepare(builder, a, {0}, {3}, {0, 1, 2});

    EXPECT_THAT(allocator->log().changes(),
                ElementsAre("s1.append 3", "s1.resize 5", "s1.setData 2 3"));
    EXPECT_EQ(Inspector::gpuIndices(builder), inUse);
    EXPECT_THAT(uints(inUse), ElementsAre(70, 71, 0, 1, 2));
    EXPECT_THAT(Inspector::drawCommands(builder).value(0), ElementsAre(command(3, 2)));
}

TEST_F(MaterialGroupPreparationTest, NothingElseOfTheBuilderChanges)
{
    ModelBuilder builder({}, 0);
    addFaces(builder, {3});
    addAttribute(builder, vertexName(), 3, {0, 0, 0}, {0, 0, 0});
    prepare(builder, a, {0}, {3}, {0, 1, 2});
    EXPECT_FALSE(builder.hasMaterialGroup(a));
    EXPECT_THAT(uints(Inspector::verticesPerFace(builder)), ElementsAre(3));
    EXPECT_FALSE(Inspector::vertexAttribute(builder, vertexName()).gpuValues);
    EXPECT_EQ(floats(positions), positionValues);
}

// Storage of the application's own

TEST_F(MaterialGroupPreparationTest, ReadsForeignStreamsThroughTheListedOperationsOnly)
{
    const auto allocator = QSharedPointer<RecordingAllocator>::create();
    ModelBuilder builder(allocator, 0); // s0, s1
    addFaces(builder, {4});
    const auto recorded = [&](const StreamPointer &source) {
        const StreamPointer copy(allocator->alloc(source->type(), source->size()));
        copy->setData(0, source->size(), source->data(0));
        return copy;
    };
    positions = recorded(positions);
    Inspector::MaterialGroup group;
    group.faces = recorded(uintStream({0}));
    const StreamPointer indices = recorded(uintStream(square()));
    allocator->log().clear();

    builder.prepareMaterialGroupForUpload(a, group, positions, indices, {0});

    // The append of the base asks for size and calls resize and setData itself.
    EXPECT_THAT(allocator->log().operations(),
                ElementsAre("alloc", "append", "data", "delete", "isEmpty", "resize", "setData",
                            "size", "type"));
    EXPECT_THAT(uints(Inspector::gpuIndices(builder)), ElementsAre(5, 6, 8, 6, 7, 8));
}

// Assertions

TEST_F(MaterialGroupPreparationTest, CornerCountsOfAnotherTypeAreReportedAndReadAsThirtyTwoBits)
{
    struct Row
    {
        const char *name;
        unsigned type;
        const char *report;
    };
    const Row rows[] = {
        {"signed", typeInt,
         "[ModelBuilder:926] [ !! ] Assertion 'GL_UNSIGNED_INT == _verticesPerFace->type()' "
         "failed: Wrong Face type 0x1404, needs to be 0x1405"},
        {"float", typeFloat,
         "[ModelBuilder:926] [ !! ] Assertion 'GL_UNSIGNED_INT == _verticesPerFace->type()' "
         "failed: Wrong Face type 0x1406, needs to be 0x1405"},
        {"a letter in the number", typeDouble,
         "[ModelBuilder:926] [ !! ] Assertion 'GL_UNSIGNED_INT == _verticesPerFace->type()' "
         "failed: Wrong Face type 0x140A, needs to be 0x1405"},
    };
    for (const Row &row : rows) {
        messages.clear();
        ModelBuilder builder({}, 0);
        const StreamPointer counts = QSharedPointer<ModelDataArray>::create(row.type, 1ul);
        const unsigned four = 4;
        std::memcpy(counts->data(0), &four, sizeof four);
        Inspector::verticesPerFace(builder) = counts;

        prepare(builder, a, {0}, {4}, square());

        EXPECT_THAT(messages.messages(), ElementsAre(Message{QtCriticalMsg, row.report}))
            << row.name;
        EXPECT_THAT(Inspector::drawCommands(builder).value(0), ElementsAre(command(6, 0)))
            << row.name;
    }
}

TEST_F(MaterialGroupPreparationTest, NarrowCornerCountsAreReportedAndNeverReadBeyondTheirEnd)
{
    ModelBuilder builder({}, 0);
    RecordingAllocator allocator;
    const StreamPointer counts(allocator.alloc(typeUnsignedShort, 1));
    Inspector::verticesPerFace(builder) = counts;
    prepare(builder, a, {0}, {4}, square());
    EXPECT_THAT(
        messages.messages(),
        ElementsAre(Message{
            QtCriticalMsg,
            "[ModelBuilder:926] [ !! ] Assertion 'GL_UNSIGNED_INT == _verticesPerFace->type()' "
            "failed: Wrong Face type 0x1403, needs to be 0x1405"}));
    EXPECT_THAT(Inspector::drawCommands(builder).value(0), ElementsAre(command(0, 0)));
}

// Numbers that cannot be trusted

/// Leaves zeros in the memory behind the last element: read as counts or vertex
/// numbers they would be sound, and give warnings or triangles.
void hideZerosBehind(const StreamPointer &stream)
{
    const unsigned long size = stream->size();
    const unsigned zeros[8] = {};
    stream->append(8, zeros);
    stream->resize(size);
}

TEST_F(MaterialGroupPreparationTest, WhatDoesNotExistGivesNoTriangle)
{
    struct Row
    {
        const char *name;
        std::vector<unsigned> cornerCounts;
        QVector<unsigned> offsets;
        std::vector<unsigned> indices;
        unsigned face;
    };
    // Face 0 is a sound triangle in every row; the face of the row comes first.
    const Row rows[] = {
        {"the first face beyond the last", {3}, {0}, {0, 1, 2}, 1},
        {"the highest face number", {3}, {0}, {0, 1, 2}, 0xFFFFFFFF},
        {"the absent marker", {3}, {0}, {0, 1, 2}, absentIndex},
        {"a face without a corner count", {3}, {0, 0}, {0, 1, 2}, 1},
        {"a face without an offset", {3, 3}, {0}, {0, 1, 2, 2, 3, 4}, 1},
        {"corners that reach beyond the indices", {3, 4}, {0, 3}, {0, 1, 2, 2, 3, 4}, 1},
        {"corners that begin beyond the indices", {3, 3}, {0, 7}, {0, 1, 2, 2, 3, 4}, 1},
        {"an offset and a count whose sum wraps", {3, 4}, {0, 0xFFFFFFFD}, {0, 1, 2}, 1},
        {"a count that is negative when signed", {3, 0x80000000}, {0, 3}, {0, 1, 2}, 1},
        {"the highest count", {3, 0xFFFFFFFF}, {0, 3}, {0, 1, 2}, 1},
        {"the first vertex beyond the last", {3, 3}, {0, 3}, {0, 1, 2, 0, 1, 12}, 1},
        {"the highest vertex number", {3, 3}, {0, 3}, {0, 1, 2, 0, 1, 0xFFFFFFFF}, 1},
    };
    for (const Row &row : rows) {
        messages.clear();
        ModelBuilder builder({}, 0);
        addFaces(builder, row.cornerCounts);
        hideZerosBehind(Inspector::verticesPerFace(builder));
        Inspector::MaterialGroup group;
        group.faces = uintStream({row.face, 0});
        const StreamPointer indices = uintStream(row.indices);
        hideZerosBehind(indices);
        QVector<unsigned> offsets = row.offsets;
        offsets.append(3); // stays in memory, where a sound second face would have it
        offsets.removeLast();
        builder.prepareMaterialGroupForUpload(a, group, positions, indices, offsets);
        EXPECT_THAT(uints(Inspector::gpuIndices(builder)), ElementsAre(0, 1, 2)) << row.name;
        EXPECT_THAT(Inspector::drawCommands(builder).value(0), ElementsAre(command(3, 0)))
            << row.name;
        EXPECT_THAT(messages.messages(), IsEmpty()) << row.name;
    }
}

TEST_F(MaterialGroupPreparationTest, StreamsThatCannotBeHadGiveNoCommand)
{
    const auto allocator = QSharedPointer<RecordingAllocator>::create();
    ModelBuilder builder(allocator, 0);
    addFaces(builder, {3});
    allocator->failAfter(0);
    prepare(builder, a, {0}, {3}, {0, 1, 2});
    EXPECT_TRUE(Inspector::drawCommands(builder).isEmpty());
    EXPECT_TRUE(Inspector::drawCommandGroups(builder).isEmpty());
}

} // namespace
} // namespace OrvTest
