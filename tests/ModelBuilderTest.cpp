#include "support/MessageCapture.h"
#include "support/ModelBuilderInspector.h"
#include "support/ModelBuilding.h"
#include "support/QtPrinting.h"
#include "support/RecordingStream.h"
#include "support/StreamContents.h"

#include <OrvModel/ModelBuilder.h>

#include <OrvCore/InstanceData.h>

#include <limits>
#include <type_traits>

namespace OrvTest {
namespace {

using Halvard::Orv::InstanceData;
using Halvard::Orv::ModelBuilder;
using Halvard::Orv::ModelDataArrayAllocator;
using Halvard::Orv::ModelDataStream;
using Halvard::Orv::ModelDataStreamAllocator;
using Inspector = Halvard::Orv::ModelBuilderInspector;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

static_assert(!std::is_polymorphic_v<ModelBuilder>);

const QString a = QStringLiteral("a");
const QString b = QStringLiteral("b");

InstanceData recordWithNs(float ns)
{
    InstanceData record(QStringLiteral("OBJMaterial"));
    record.set(QStringLiteral("Ns"), &ns, sizeof ns);
    return record;
}

/// A builder over recorded streams: s0 holds the corner counts of the faces, s1
/// the combined indices.
class RecordedBuilderTest : public ::testing::Test
{
protected:
    QSharedPointer<RecordingAllocator> allocator = QSharedPointer<RecordingAllocator>::create();
    ModelBuilder builder{allocator, 0xF0};
    CallLog &log = allocator->log();
};

// Construction and end

TEST(ModelBuilderTest, aNewBuilderIsEmpty)
{
    ModelBuilder builder({}, 0x8000000000000001u);

    EXPECT_EQ(Inspector::flagsMask(builder), 0x8000000000000001u);
    EXPECT_TRUE(Inspector::materialGroups(builder).isEmpty());
    EXPECT_TRUE(Inspector::vertexAttributes(builder).isEmpty());
    EXPECT_TRUE(Inspector::drawCommands(builder).isEmpty());
    EXPECT_TRUE(Inspector::drawCommandGroups(builder).isEmpty());
    EXPECT_TRUE(Inspector::normalsAttribute(builder).isNull());
    for (const auto &stream :
         {Inspector::verticesPerFace(builder), Inspector::gpuIndices(builder)}) {
        ASSERT_TRUE(stream);
        EXPECT_EQ(stream->type(), typeUnsignedInt);
        EXPECT_TRUE(stream->isEmpty());
    }
}

TEST(ModelBuilderTest, makesAnArrayAllocatorWhenGivenNone)
{
    ModelBuilder first({}, 0);
    ModelBuilder second({}, 0);
    EXPECT_NE(dynamic_cast<ModelDataArrayAllocator *>(Inspector::allocator(first).data()), nullptr);
    EXPECT_NE(Inspector::allocator(first), Inspector::allocator(second)) << "each has its own";
}

TEST(ModelBuilderTest, sharesTheAllocatorGiven)
{
    QSharedPointer<ModelDataStreamAllocator> allocator(new ModelDataArrayAllocator);
    const QWeakPointer<ModelDataStreamAllocator> observer = allocator;
    {
        ModelBuilder builder(allocator, 0);
        EXPECT_EQ(Inspector::allocator(builder), allocator);
        allocator.clear();
        EXPECT_TRUE(observer) << "the builder keeps it";
    }
    EXPECT_FALSE(observer);
}

TEST(ModelBuilderTest, recordsStartWithNothing)
{
    const Inspector::MaterialGroup group;
    EXPECT_TRUE(group.instanceData.members().isEmpty());
    EXPECT_EQ(group.id, 0);
    EXPECT_FALSE(group.faces);
    EXPECT_EQ(group.flags, 0u);
    EXPECT_TRUE(group.objectName.isNull());

    const Inspector::VertexAttribute attribute;
    EXPECT_FALSE(attribute.values || attribute.indices);
    EXPECT_FALSE(attribute.gpuValues || attribute.gpuIndices);
    EXPECT_EQ(attribute.components, 0);
}

TEST_F(RecordedBuilderTest, makesTheTwoStreamsInOrder)
{
    EXPECT_THAT(log.lines(), ElementsAre("alloc UINT 0 -> s0", "alloc UINT 0 -> s1"));
    log.clear();

    addFaces(builder, {3});
    EXPECT_THAT(log.changes(), ElementsAre("s0.append 1", "s0.resize 1", "s0.setData 0 1"));
    EXPECT_TRUE(Inspector::gpuIndices(builder)->isEmpty());
}

// The fields go in the reverse of their order: combined indices, attributes,
// corner counts, groups.
TEST_F(RecordedBuilderTest, releasesItsStreamsInReverseOrder)
{
    const auto ownAllocator = QSharedPointer<RecordingAllocator>::create();
    {
        ModelBuilder shortLived(ownAllocator, 0);
        addGroup(shortLived, a, {});                       // s2
        addAttribute(shortLived, vertexName(), 3, {}, {}); // s3, s4
        ownAllocator->log().clear();
    }
    EXPECT_THAT(ownAllocator->log().lines(),
                ElementsAre("s1.delete", "s4.delete", "s3.delete", "s0.delete", "s2.delete"));
}

// Clearing

TEST_F(RecordedBuilderTest, clearingReplacesTheStreamsInOrder)
{
    addGroup(builder, a, {});                       // s2
    addAttribute(builder, vertexName(), 3, {}, {}); // s3, s4
    log.clear();

    builder.clear();

    EXPECT_THAT(log.lines(), ElementsAre("s2.delete",                         // the group
                                         "alloc UINT 0 -> s5", "s0.delete",   // corner counts
                                         "s4.delete", "s3.delete",            // the attribute
                                         "alloc UINT 0 -> s6", "s1.delete")); // combined indices
}

TEST_F(RecordedBuilderTest, clearingKeepsTheAllocatorAndTheMaskOnly)
{
    addGroup(builder, a, {0});
    addFaces(builder, {3});
    addAttribute(builder, vertexName(), 3, {0, 0, 0}, {0, 0, 0});
    builder.generateNormals(normalName());
    const unsigned index = 7;
    Inspector::gpuIndices(builder)->append(1, &index);
    Inspector::drawCommands(builder)[5].append(Inspector::Commands::value_type());
    Inspector::drawCommandGroups(builder)[5].append(a);

    builder.clear();

    EXPECT_EQ(Inspector::allocator(builder), allocator);
    EXPECT_EQ(Inspector::flagsMask(builder), 0xF0u);
    EXPECT_TRUE(Inspector::materialGroups(builder).isEmpty());
    EXPECT_TRUE(Inspector::vertexAttributes(builder).isEmpty());
    EXPECT_TRUE(Inspector::drawCommands(builder).isEmpty());
    EXPECT_TRUE(Inspector::drawCommandGroups(builder).isEmpty());
    EXPECT_TRUE(Inspector::normalsAttribute(builder).isNull());
    EXPECT_EQ(Inspector::verticesPerFace(builder)->type(), typeUnsignedInt);
    EXPECT_TRUE(Inspector::verticesPerFace(builder)->isEmpty());
    EXPECT_EQ(Inspector::gpuIndices(builder)->type(), typeUnsignedInt);
    EXPECT_TRUE(Inspector::gpuIndices(builder)->isEmpty());
    EXPECT_FALSE(builder.isValid());
}

TEST(ModelBuilderTest, aClearedBuilderCanBeFilledAgain)
{
    ModelBuilder builder({}, 0);
    addGroup(builder, a, {0});
    addGroup(builder, b, {});
    builder.clear();
    addGroup(builder, b, {0});
    EXPECT_EQ(builder.materialGroupId(b), 0) << "ids start over";
    EXPECT_FALSE(builder.hasMaterialGroup(a));
}

// Queries

TEST(ModelBuilderTest, queriesGoByTheExactName)
{
    ModelBuilder builder({}, 0);
    builder.createMaterialGroup(QStringLiteral("Red"), InstanceData(), 7, 0x123456789ABCDEFu);
    builder.createVertexAttribute(vertexName(), 3, typeFloat, 0, 0);

    struct Row
    {
        const char *name;
        QString asked;
        bool isGroup;
    };
    const Row rows[] = {
        {"as created", QStringLiteral("Red"), true},
        {"other case", QStringLiteral("red"), false},
        {"with a blank", QStringLiteral("Red "), false},
        {"empty", QLatin1String(""), false},
        {"null", QString(), false},
    };
    for (const Row &row : rows) {
        EXPECT_EQ(builder.hasMaterialGroup(row.asked), row.isGroup) << row.name;
        EXPECT_EQ(builder.materialGroupId(row.asked), row.isGroup ? 7 : -1) << row.name;
        EXPECT_EQ(builder.materialGroupFlags(row.asked), row.isGroup ? 0x123456789ABCDEFu : 0u)
            << row.name;
        EXPECT_FALSE(builder.hasVertexAttribute(row.asked)) << row.name;
    }
    EXPECT_TRUE(builder.hasVertexAttribute(vertexName()));
    EXPECT_FALSE(builder.hasVertexAttribute(QStringLiteral("va_vertex")));
    EXPECT_EQ(Inspector::materialGroups(builder).size(), 1) << "asking inserts nothing";
    EXPECT_EQ(Inspector::vertexAttributes(builder).size(), 1) << "asking inserts nothing";
}

// Attributes

TEST_F(RecordedBuilderTest, anAttributeGetsItsTwoStreams)
{
    log.clear();
    builder.createVertexAttribute(vertexName(), 3, typeDouble, 6, 2);

    EXPECT_THAT(log.lines(), ElementsAre("alloc DOUBLE 6 -> s2", "alloc UINT 2 -> s3"));
    const auto attribute = Inspector::vertexAttribute(builder, vertexName());
    EXPECT_EQ(attribute.components, 3);
    EXPECT_EQ(attribute.values->size(), 6u);
    EXPECT_EQ(attribute.indices->size(), 2u);
    EXPECT_FALSE(attribute.gpuValues);
    EXPECT_FALSE(attribute.gpuIndices);
}

TEST(ModelBuilderTest, whatIsAddedComesAfterTheInitialElements)
{
    ModelBuilder builder({}, 0);
    builder.createVertexAttribute(vertexName(), 1, typeFloat, 2, 1);
    const float value = 5;
    builder.addValuesToVertexAttribute(vertexName(), 1, &value, typeFloat);
    const unsigned index = 2;
    builder.addIndicesToVertexAttribute(vertexName(), 1, &index);

    const auto attribute = Inspector::vertexAttribute(builder, vertexName());
    ASSERT_EQ(attribute.values->size(), 3u);
    EXPECT_EQ(floats(attribute.values)[2], 5.0f);
    ASSERT_EQ(attribute.indices->size(), 2u);
    EXPECT_EQ(uints(attribute.indices)[1], 2u);
}

TEST(ModelBuilderTest, creatingAnAttributeAgainStartsItAfresh)
{
    ModelBuilder builder({}, 0);
    addFaces(builder, {3});
    addAttribute(builder, vertexName(), 1, {1, 2, 3}, {0, 1, 2});
    addAttribute(builder, normalName(), 1, {4, 5, 6}, {0, 1, 2});
    {
        const MessageCapture silence;
        builder.buildGPUFriendlyStreams(false);
    }
    ASSERT_TRUE(Inspector::vertexAttribute(builder, vertexName()).gpuValues);

    builder.createVertexAttribute(vertexName(), 2, typeUnsignedByte, 0, 0);

    const auto fresh = Inspector::vertexAttribute(builder, vertexName());
    EXPECT_EQ(fresh.components, 2);
    EXPECT_EQ(fresh.values->type(), typeUnsignedByte);
    EXPECT_TRUE(fresh.values->isEmpty());
    EXPECT_TRUE(fresh.indices->isEmpty());
    EXPECT_FALSE(fresh.gpuValues);
    EXPECT_FALSE(fresh.gpuIndices);
    const auto other = Inspector::vertexAttribute(builder, normalName());
    EXPECT_TRUE(other.gpuValues && other.gpuIndices) << "the other attribute is left alone";
}

TEST_F(RecordedBuilderTest, valuesOfTheRightTypeAreAppended)
{
    builder.createVertexAttribute(vertexName(), 3, typeFloat, 0, 0); // s2, s3
    log.clear();
    const float values[] = {1, -0.0f, std::numeric_limits<float>::quiet_NaN(), 4};

    // Four scalars: one value and a third of the next.
    builder.addValuesToVertexAttribute(vertexName(), 4, values, typeFloat);

    EXPECT_THAT(log.changes(), ElementsAre("s2.append 4", "s2.resize 4", "s2.setData 0 4"));
    EXPECT_THAT(floats(Inspector::vertexAttribute(builder, vertexName()).values),
                areFloats({values[0], values[1], values[2], values[3]}));
}

TEST(ModelBuilderTest, valuesOfAnotherTypeAreIgnoredSilently)
{
    struct Row
    {
        const char *name;
        unsigned streamType;
        unsigned givenType;
    };
    const Row rows[] = {
        {"floats for bytes", typeUnsignedByte, typeFloat},
        {"bytes for floats", typeFloat, typeUnsignedByte},
        {"unsigned for floats of the same size", typeFloat, typeUnsignedInt},
        {"no type at all", typeFloat, 0},
    };
    for (const Row &row : rows) {
        const MessageCapture messages;
        ModelBuilder builder({}, 0);
        builder.createVertexAttribute(vertexName(), 4, row.streamType, 0, 0);
        const float values[] = {1, 2, 3, 4};
        builder.addValuesToVertexAttribute(vertexName(), 4, values, row.givenType);
        EXPECT_TRUE(Inspector::vertexAttribute(builder, vertexName()).values->isEmpty())
            << row.name;
        EXPECT_THAT(messages.messages(), IsEmpty()) << row.name;
    }
}

TEST(ModelBuilderTest, unknownNamesAreIgnoredSilently)
{
    const MessageCapture messages;
    ModelBuilder builder({}, 0);
    const float value = 1;
    const unsigned index = 0;
    builder.addValuesToVertexAttribute(vertexName(), 1, &value, typeFloat);
    builder.addIndicesToVertexAttribute(vertexName(), 1, &index);
    builder.addFacesToMaterialGroup(a, 1, &index, b);
    EXPECT_TRUE(Inspector::vertexAttributes(builder).isEmpty());
    EXPECT_TRUE(Inspector::materialGroups(builder).isEmpty());
    EXPECT_THAT(messages.messages(), IsEmpty());
}

TEST_F(RecordedBuilderTest, indicesCountsAndFacesAreTakenUnchecked)
{
    builder.createVertexAttribute(vertexName(), 3, typeFloat, 0, 0); // s2, s3
    builder.createMaterialGroup(a, InstanceData(), -1, 0);           // s4
    log.clear();
    const unsigned wild[] = {0, absentIndex, 0xFFFFFFFF};

    builder.addIndicesToVertexAttribute(vertexName(), 3, wild);
    builder.addVertexCountsToFaces(3, wild);
    builder.addFacesToMaterialGroup(a, 3, wild, QString());

    EXPECT_THAT(log.changes(), ElementsAre("s3.append 3", "s3.resize 3", "s3.setData 0 3", //
                                           "s0.append 3", "s0.resize 3", "s0.setData 0 3", //
                                           "s4.append 3", "s4.resize 3", "s4.setData 0 3"));
    EXPECT_THAT(uints(Inspector::vertexAttribute(builder, vertexName()).indices),
                ElementsAre(0u, 0x7fffffffu, 0xffffffffu));
    EXPECT_THAT(uints(Inspector::verticesPerFace(builder)),
                ElementsAre(0u, 0x7fffffffu, 0xffffffffu));
    EXPECT_THAT(uints(Inspector::materialGroup(builder, a).faces),
                ElementsAre(0u, 0x7fffffffu, 0xffffffffu));
}

TEST_F(RecordedBuilderTest, generateNormalsRemembersTheLastNameAndDoesNothingElse)
{
    log.clear();
    builder.generateNormals(a);
    EXPECT_EQ(Inspector::normalsAttribute(builder), a);
    builder.generateNormals(normalName());
    EXPECT_EQ(Inspector::normalsAttribute(builder), normalName());
    EXPECT_FALSE(builder.hasVertexAttribute(normalName()));
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(RecordedBuilderTest, reservedOperationsTouchNothing)
{
    const MessageCapture messages;
    builder.removeUnusedVertices();
    builder.removeDuplicateVertices();

    // Value 1 is a duplicate of value 0, value 2 is unused.
    addFaces(builder, {3});
    addAttribute(builder, vertexName(), 1, {5, 5, 9}, {0, 1, 0});
    addGroup(builder, a, {0});
    log.clear();
    builder.removeUnusedVertices();
    builder.removeDuplicateVertices();

    EXPECT_THAT(log.lines(), IsEmpty());
    EXPECT_THAT(messages.messages(), IsEmpty());
    const auto attribute = Inspector::vertexAttribute(builder, vertexName());
    EXPECT_THAT(floats(attribute.values), areFloats({5, 5, 9}));
    EXPECT_THAT(uints(attribute.indices), ElementsAre(0, 1, 0));
}

// Material groups

TEST_F(RecordedBuilderTest, aGroupKeepsWhatItIsGiven)
{
    log.clear();
    builder.createMaterialGroup(a, recordWithNs(12), 7, 0xFFFFFFFF00000001u);

    EXPECT_THAT(log.lines(), ElementsAre("alloc UINT 0 -> s2"));
    const auto group = Inspector::materialGroup(builder, a);
    EXPECT_EQ(group.instanceData.name(), QStringLiteral("OBJMaterial"));
    EXPECT_EQ(group.instanceData.value(QStringLiteral("Ns")), QByteArray::fromHex("00004041"));
    EXPECT_EQ(group.id, 7);
    EXPECT_EQ(group.flags, 0xFFFFFFFF00000001u) << "the mask is applied later, when batching";
    EXPECT_TRUE(group.objectName.isNull());
    EXPECT_TRUE(group.faces->isEmpty());
}

TEST(ModelBuilderTest, groupIds)
{
    struct Creation
    {
        QString name;
        int id;
    };
    struct Row
    {
        const char *name;
        std::vector<Creation> creations;
        std::vector<int> idsAfterEach;
    };
    const QString c = QStringLiteral("c");
    const Row rows[] = {
        {"default ids count up", {{a, -1}, {b, -1}, {c, -1}}, {0, 1, 2}},
        {"an explicit id is kept and counts as one group", {{a, 7}, {b, -1}, {c, -1}}, {7, 1, 2}},
        {"zero is explicit", {{a, -1}, {b, 0}}, {0, 0}},
        {"any negative id is the default", {{a, std::numeric_limits<int>::min()}, {b, -2}}, {0, 1}},
        {"created again: the number of groups there are", {{a, -1}, {b, -1}, {a, -1}}, {0, 1, 2}},
        {"the only group created again", {{a, -1}, {a, -1}}, {0, 1}},
        {"created again with an explicit id", {{a, -1}, {a, 9}}, {0, 9}},
        {"the largest id", {{a, std::numeric_limits<int>::max()}}, {2147483647}},
    };
    for (const Row &row : rows) {
        ASSERT_EQ(row.creations.size(), row.idsAfterEach.size()) << row.name;
        ModelBuilder builder({}, 0);
        for (std::size_t i = 0; i < row.creations.size(); ++i) {
            const Creation &creation = row.creations[i];
            builder.createMaterialGroup(creation.name, InstanceData(), creation.id, 0);
            EXPECT_EQ(builder.materialGroupId(creation.name), row.idsAfterEach[i])
                << row.name << ", creation " << i;
        }
    }
}

TEST(ModelBuilderTest, creatingAGroupAgainStartsItAfresh)
{
    const MessageCapture messages;
    ModelBuilder builder({}, 0);
    builder.createMaterialGroup(a, recordWithNs(1), -1, 1);
    const unsigned face = 4;
    builder.addFacesToMaterialGroup(a, 1, &face, QStringLiteral("first object"));

    builder.createMaterialGroup(a, InstanceData(QStringLiteral("Other")), 5, 2);

    auto group = Inspector::materialGroup(builder, a);
    EXPECT_TRUE(group.faces->isEmpty());
    EXPECT_TRUE(group.objectName.isNull());
    EXPECT_EQ(group.flags, 2u);
    EXPECT_EQ(group.instanceData.name(), QStringLiteral("Other"));
    EXPECT_TRUE(group.instanceData.members().isEmpty());

    // The name is forgotten: another object is no surprise.
    builder.addFacesToMaterialGroup(a, 1, &face, QStringLiteral("second object"));
    EXPECT_THAT(messages.messages(), IsEmpty());
    EXPECT_EQ(Inspector::materialGroup(builder, a).objectName, QStringLiteral("second object"));
}

TEST(ModelBuilderTest, theObjectWhoseFacesComeFirstNamesTheGroup)
{
    const QString null;
    const QString empty = QLatin1String("");
    struct Row
    {
        const char *name;
        QStringList objects;
        QString stored;
        std::vector<std::string> warnings;
    };
    const Row rows[] = {
        {"one object", {a}, a, {}},
        {"the same object again", {a, a}, a, {}},
        {"a second object", {a, b}, a, {"adding object 'b'' to material group for object 'a'"}},
        {"every addition of another object warns",
         {a, b, a, b},
         a,
         {"adding object 'b'' to material group for object 'a'",
          "adding object 'b'' to material group for object 'a'"}},
        {"names differ by case",
         {a, QStringLiteral("A")},
         a,
         {"adding object 'A'' to material group for object 'a'"}},
        {"never named", {null, null}, null, {}},
        {"named only later", {null, a}, a, {}},
        {"named first, then not",
         {a, null},
         a,
         {"adding object ''' to material group for object 'a'"}},
        {"empty is a name",
         {empty, a},
         empty,
         {"adding object 'a'' to material group for object ''"}},
        {"null and empty are the same object", {empty, null}, empty, {}},
        {"a name that looks like a format",
         {QStringLiteral("%s%n"), QStringLiteral("100%d")},
         QStringLiteral("%s%n"),
         {"adding object '100%d'' to material group for object '%s%n'"}},
    };
    for (const Row &row : rows) {
        const MessageCapture messages;
        ModelBuilder builder({}, 0);
        builder.createMaterialGroup(QStringLiteral("group"), InstanceData(), -1, 0);
        std::vector<unsigned> faces;
        for (const QString &object : row.objects) {
            faces.push_back(static_cast<unsigned>(faces.size()) + 10);
            builder.addFacesToMaterialGroup(QStringLiteral("group"), 1, &faces.back(), object);
        }
        const auto group = Inspector::materialGroup(builder, QStringLiteral("group"));
        EXPECT_EQ(group.objectName, row.stored) << row.name;
        EXPECT_EQ(group.objectName.isNull(), row.stored.isNull()) << row.name;
        EXPECT_EQ(messages.texts(QtWarningMsg), row.warnings) << row.name;
        EXPECT_EQ(messages.messages().size(), row.warnings.size()) << row.name;
        EXPECT_EQ(uints(group.faces), faces) << row.name << ": the faces are added all the same";
    }
}

// Validity

TEST(ModelBuilderTest, validity)
{
    struct Row
    {
        const char *name;
        void (*change)(ModelBuilder &);
        bool valid;
    };
    // Each row starts from one triangle in one group.
    const Row rows[] = {
        {"one triangle", [](ModelBuilder &) {}, true},
        {"nothing", [](ModelBuilder &builder) { builder.clear(); }, false},
        {"no group", [](ModelBuilder &builder) { Inspector::materialGroups(builder).clear(); },
         false},
        {"a group without faces",
         [](ModelBuilder &builder) { builder.createMaterialGroup(a, InstanceData(), -1, 0); },
         true},
        {"no face", [](ModelBuilder &builder) { Inspector::verticesPerFace(builder)->resize(0); },
         false},
        {"a face of no corners",
         [](ModelBuilder &builder) {
             const unsigned none = 0;
             Inspector::verticesPerFace(builder)->setData(0, 1, &none);
         },
         true},
        {"no attribute",
         [](ModelBuilder &builder) { Inspector::vertexAttributes(builder).clear(); }, false},
        {"an attribute without values",
         [](ModelBuilder &builder) {
             builder.createVertexAttribute(vertexName(), 3, typeFloat, 0, 3);
         },
         false},
        {"an attribute without indices",
         [](ModelBuilder &builder) {
             builder.createVertexAttribute(vertexName(), 3, typeFloat, 9, 0);
         },
         false},
        {"its only attribute has no value stream",
         [](ModelBuilder &builder) {
             Inspector::vertexAttributes(builder)[vertexName()].values.clear();
         },
         true},
        {"its only attribute has no value stream and no indices",
         [](ModelBuilder &builder) {
             auto &attribute = Inspector::vertexAttributes(builder)[vertexName()];
             attribute.values.clear();
             attribute.indices->resize(0);
         },
         true},
        {"a second attribute without values",
         [](ModelBuilder &builder) {
             addAttribute(builder, normalName(), 3, {}, {0, 0, 0});
         },
         false},
        {"a second attribute without indices",
         [](ModelBuilder &builder) {
             addAttribute(builder, normalName(), 3, {0, 0, 1}, {});
         },
         false},
        {"one attribute without a value stream does not excuse the other",
         [](ModelBuilder &builder) {
             addAttribute(builder, normalName(), 3, {0, 0, 1}, {});
             Inspector::vertexAttributes(builder)[vertexName()].values.clear();
         },
         false},
        {"counts, indices and face numbers that fit nothing",
         [](ModelBuilder &builder) {
             addFaces(builder, {0xFFFFFFFF});
             addAttribute(builder, normalName(), 3, {0}, {99});
             addGroup(builder, b, {1000000});
         },
         true},
    };
    for (const Row &row : rows) {
        ModelBuilder builder({}, 0);
        addGroup(builder, a, {0});
        addFaces(builder, {3});
        addAttribute(builder, vertexName(), 3, {0, 0, 0, 1, 0, 0, 0, 1, 0}, {0, 1, 2});
        row.change(builder);
        const MessageCapture messages;
        EXPECT_EQ(builder.isValid(), row.valid) << row.name;
        EXPECT_THAT(messages.messages(), IsEmpty()) << row.name;
    }
}

TEST_F(RecordedBuilderTest, askingForValidityChangesNothing)
{
    addGroup(builder, a, {0});
    addFaces(builder, {3});
    addAttribute(builder, vertexName(), 3, {0, 0, 0}, {0, 0, 0});
    log.clear();
    EXPECT_TRUE(builder.isValid());
    EXPECT_THAT(log.changes(), IsEmpty());
}

// Memory runs out

TEST(ModelBuilderTest, survivesAnAllocatorThatGivesNothing)
{
    // Nine streams are asked for: two by the constructor, two per attribute, one
    // for the group, and by building one of indices and one of values.
    for (unsigned long available = 0; available < 10; ++available) {
        const MessageCapture silence;
        const auto allocator = QSharedPointer<RecordingAllocator>::create();
        allocator->failAfter(available);
        ModelBuilder builder(allocator, 0);
        addFaces(builder, {3});
        addAttribute(builder, vertexName(), 3, {0, 0, 0, 1, 0, 0, 0, 1, 0}, {0, 1, 2});
        addAttribute(builder, normalName(), 3, {0, 0, 1}, {0, 0, 0});
        addGroup(builder, a, {0});
        builder.isValid();
        builder.buildGPUFriendlyStreams(available % 2 == 0);
        builder.optimizeGPUStreams();
        builder.clear();
        EXPECT_FALSE(builder.isValid()) << available;
    }
}

} // namespace
} // namespace OrvTest
