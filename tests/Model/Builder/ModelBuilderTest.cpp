#include "support/MessageCapture.h"
#include "support/ModelBuilderInspector.h"
#include "support/ModelBuilding.h"
#include "support/QtPrinting.h"
#include "support/RecordingStream.h"
#include "support/StreamContents.h"

#include <OrvCore/InstanceData.h>
#include <OrvModel/ModelBuilder.h>

#include <new>
#include <type_traits>

namespace OrvTest {
namespace {

using Halvard::Orv::InstanceData;
using Halvard::Orv::ModelBuilder;
using Halvard::Orv::ModelDataArrayAllocator;
using Halvard::Orv::ModelDataStreamAllocator;
using Inspector = Halvard::Orv::ModelBuilderInspector;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

static_assert(!std::is_polymorphic_v<ModelBuilder>);

const QString a = QStringLiteral("a");
const QString b = QStringLiteral("b");

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

TEST(ModelBuilderTest, ANewBuilderIsEmpty)
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

TEST(ModelBuilderTest, MakesAnArrayAllocatorWhenGivenNone)
{
    ModelBuilder first({}, 0);
    ModelBuilder second({}, 0);
    EXPECT_NE(dynamic_cast<ModelDataArrayAllocator *>(Inspector::allocator(first).data()), nullptr);
    EXPECT_NE(Inspector::allocator(first), Inspector::allocator(second)) << "each has its own";
}

TEST(ModelBuilderTest, SharesTheAllocatorGiven)
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

TEST(ModelBuilderTest, RecordsStartWithNothing)
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

TEST_F(RecordedBuilderTest, MakesTheTwoStreamsInOrder)
{
    EXPECT_THAT(log.lines(), ElementsAre("alloc UINT 0 -> s0", "alloc UINT 0 -> s1"));
    log.clear();

    addFaces(builder, {3});
    EXPECT_THAT(log.changes(), ElementsAre("s0.append 1", "s0.resize 1", "s0.setData 0 1"));
    EXPECT_TRUE(Inspector::gpuIndices(builder)->isEmpty());
}

// The fields go in the reverse of their order: combined indices, attributes,
// corner counts, groups.
TEST_F(RecordedBuilderTest, ReleasesItsStreamsInReverseOrder)
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

TEST_F(RecordedBuilderTest, ClearingReplacesTheStreamsInOrder)
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

TEST_F(RecordedBuilderTest, ClearingKeepsTheAllocatorAndTheMaskOnly)
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

TEST(ModelBuilderTest, AClearedBuilderCanBeFilledAgain)
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

TEST(ModelBuilderTest, QueriesGoByTheExactName)
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

// Validity

TEST(ModelBuilderTest, Validity)
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

TEST_F(RecordedBuilderTest, AskingForValidityChangesNothing)
{
    addGroup(builder, a, {0});
    addFaces(builder, {3});
    addAttribute(builder, vertexName(), 3, {0, 0, 0}, {0, 0, 0});
    log.clear();
    EXPECT_TRUE(builder.isValid());
    EXPECT_THAT(log.changes(), IsEmpty());
}

// Memory runs out

/// Hands out recorded streams until it is told to throw.
class ThrowingAllocator : public RecordingAllocator
{
public:
    explicit ThrowingAllocator(int streams) : _remaining(streams) {}

    Halvard::Orv::ModelDataStream *alloc(unsigned type, unsigned long count) override
    {
        if (_remaining-- == 0)
            throw std::bad_alloc();
        return RecordingAllocator::alloc(type, count);
    }

private:
    int _remaining;
};

TEST(ModelBuilderTest, AConstructorThatThrowsReleasesWhatItHad)
{
    const std::vector<std::vector<std::string>> logs = {
        {}, // the first of two streams is not to be had
        {"alloc UINT 0 -> s0", "s0.delete"},
    };
    for (std::size_t streams = 0; streams < logs.size(); ++streams) {
        auto throwing = QSharedPointer<ThrowingAllocator>::create(static_cast<int>(streams));
        const QWeakPointer<ThrowingAllocator> watched = throwing;
        EXPECT_THROW(ModelBuilder(throwing, 0), std::bad_alloc);
        EXPECT_EQ(throwing->log().lines(), logs[streams]);
        throwing.clear();
        EXPECT_TRUE(watched.isNull()) << "nobody else holds the allocator";
    }
}

TEST(ModelBuilderTest, SurvivesAnAllocatorThatGivesNothing)
{
    // Twelve streams are asked for: two by the constructor, two per attribute, one
    // by the group, then the shared indices, and per attribute one of values and
    // one of welded values.
    for (unsigned long available = 0; available <= 12; ++available) {
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
