#include "support/MessageCapture.h"
#include "support/ModelBuilderInspector.h"
#include "support/ModelBuilding.h"
#include "support/QtPrinting.h"
#include "support/RecordingStream.h"
#include "support/ScopedLocaleCodec.h"
#include "support/StreamContents.h"

#include <OrvCore/InstanceData.h>
#include <OrvModel/ModelBuilder.h>

#include <limits>

namespace OrvTest {
namespace {

using Halvard::Orv::InstanceData;
using Halvard::Orv::ModelBuilder;
using Inspector = Halvard::Orv::ModelBuilderInspector;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

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
class RecordedFillingTest : public ::testing::Test
{
protected:
    QSharedPointer<RecordingAllocator> allocator = QSharedPointer<RecordingAllocator>::create();
    ModelBuilder builder{allocator, 0xF0};
    CallLog &log = allocator->log();
};

// Attributes

TEST_F(RecordedFillingTest, AnAttributeGetsItsTwoStreams)
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

TEST(ModelBuilderFillingTest, WhatIsAddedComesAfterTheInitialElements)
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

TEST(ModelBuilderFillingTest, CreatingAnAttributeAgainStartsItAfresh)
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

TEST_F(RecordedFillingTest, ValuesOfTheRightTypeAreAppended)
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

TEST(ModelBuilderFillingTest, ValuesOfAnotherTypeAreIgnoredSilently)
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

TEST(ModelBuilderFillingTest, UnknownNamesAreIgnoredSilently)
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

TEST_F(RecordedFillingTest, IndicesCountsAndFacesAreTakenUnchecked)
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

TEST_F(RecordedFillingTest, GenerateNormalsRemembersTheLastNameAndDoesNothingElse)
{
    log.clear();
    builder.generateNormals(a);
    EXPECT_EQ(Inspector::normalsAttribute(builder), a);
    builder.generateNormals(normalName());
    EXPECT_EQ(Inspector::normalsAttribute(builder), normalName());
    EXPECT_FALSE(builder.hasVertexAttribute(normalName()));
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(RecordedFillingTest, ReservedOperationsTouchNothing)
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

TEST_F(RecordedFillingTest, AGroupKeepsWhatItIsGiven)
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

TEST(ModelBuilderFillingTest, GroupIds)
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

TEST(ModelBuilderFillingTest, CreatingAGroupAgainStartsItAfresh)
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

TEST(ModelBuilderFillingTest, TheObjectWhoseFacesComeFirstNamesTheGroup)
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

TEST(ModelBuilderFillingTest, ObjectNamesAreWarnedOfInTheLocalEncoding)
{
    // "\u00fc" is the one byte FC in Latin 1, which the logger cannot take for UTF-8.
    const ScopedLocaleCodec latin1("ISO-8859-1");
    const MessageCapture messages;
    ModelBuilder builder({}, 0);
    builder.createMaterialGroup(a, InstanceData(), -1, 0);
    const unsigned face = 0;
    builder.addFacesToMaterialGroup(a, 1, &face, QStringLiteral("gr\u00fcn"));
    builder.addFacesToMaterialGroup(a, 1, &face, QStringLiteral("bl\u00fc"));
    EXPECT_THAT(messages.messages(),
                ElementsAre(Message{QtWarningMsg, "adding object 'bl\uFFFD'' to material group for "
                                                  "object 'gr\uFFFDn'"}));
}

} // namespace
} // namespace OrvTest
