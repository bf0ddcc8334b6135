#include "support/MessageCapture.h"
#include "support/ModelBuilderInspector.h"
#include "support/ModelBuilding.h"
#include "support/QtPrinting.h"
#include "support/RecordingStream.h"
#include "support/StreamContents.h"

#include <OrvModel/ModelBuilder.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <utility>

namespace OrvTest {
namespace {

using Halvard::Orv::ModelBuilder;
using Halvard::Orv::ModelDataArray;
using Halvard::Orv::ModelDataStream;
using Inspector = Halvard::Orv::ModelBuilderInspector;
using StreamPointer = QSharedPointer<ModelDataStream>;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

const float quietNaN = std::numeric_limits<float>::quiet_NaN();

/// Gives the builder an attribute with nothing but its GPU streams.
void setGPUStreams(ModelBuilder &builder, const QString &name, int components,
                   const StreamPointer &values, const StreamPointer &indices)
{
    auto &attribute = Inspector::vertexAttributes(builder)[name];
    attribute.components = components;
    attribute.gpuValues = values;
    attribute.gpuIndices = indices;
}

std::vector<float> gpuValues(const ModelBuilder &builder, const QString &name)
{
    return floats(Inspector::vertexAttribute(builder, name).gpuValues);
}

/// The statistics line of this builder: its address, then `rest`.
std::string statistics(const ModelBuilder &builder, const char *rest)
{
    return QString::asprintf("%p", static_cast<const void *>(&builder)).toStdString() + rest;
}

class GPUStreamOptimisationTest : public ::testing::Test
{
protected:
    MessageCapture messages;
    ModelBuilder builder{{}, 0};
};

// old vertex   0 1 2 3 4 5
// bytes        A B C C B D
// new vertex   0 1 2 2 1 3
TEST_F(GPUStreamOptimisationTest, WeldsInOrderOfFirstAppearance)
{
    const StreamPointer indices = uintStream({0, 1, 2, 3, 4, 5, 5, 3, 0});
    setGPUStreams(builder, vertexName(), 1, floatStream({10, 20, 30, 30, 20, 40}), indices);

    builder.optimizeGPUStreams();

    EXPECT_THAT(uints(indices), ElementsAre(0, 1, 2, 2, 1, 3, 3, 2, 0));
    EXPECT_THAT(gpuValues(builder, vertexName()), areFloats({10, 20, 30, 40}));
    EXPECT_EQ(Inspector::vertexAttribute(builder, vertexName()).gpuIndices, indices)
        << "renumbered in place";
}

TEST_F(GPUStreamOptimisationTest, TwoEqualVerticesBecomeOne)
{
    const StreamPointer indices = uintStream({2, 1, 0});
    setGPUStreams(builder, vertexName(), 3, floatStream({1, 2, 3, 4, 5, 6, 1, 2, 3}), indices);
    setGPUStreams(builder, texCoordName(), 2, floatStream({7, 8, 9, 9, 7, 8}), indices);

    builder.optimizeGPUStreams();

    EXPECT_THAT(uints(indices), ElementsAre(0, 1, 0));
    EXPECT_THAT(gpuValues(builder, vertexName()), areFloats({1, 2, 3, 4, 5, 6}));
    EXPECT_THAT(gpuValues(builder, texCoordName()), areFloats({7, 8, 9, 9}));
    EXPECT_THAT(messages.messages(),
                ElementsAre(Message{QtDebugMsg, statistics(builder, " Vertices Map        3 ->"
                                                                    "        2 d        1"
                                                                    " ( 66 %) 4")}));
}

TEST_F(GPUStreamOptimisationTest, VerticesThatDifferInOneAttributeStayApart)
{
    const StreamPointer indices = uintStream({0, 1});
    setGPUStreams(builder, vertexName(), 3, floatStream({1, 2, 3, 1, 2, 3}), indices);
    setGPUStreams(builder, normalName(), 3, floatStream({0, 0, 1, 0, 1, 0}), indices);
    builder.optimizeGPUStreams();
    EXPECT_THAT(uints(indices), ElementsAre(0, 1));
    EXPECT_THAT(gpuValues(builder, vertexName()), areFloats({1, 2, 3, 1, 2, 3}));
    EXPECT_THAT(gpuValues(builder, normalName()), areFloats({0, 0, 1, 0, 1, 0}));
}

// The same two bytes, but in another order: as a sum or a set they are equal.
TEST_F(GPUStreamOptimisationTest, ValuesOfTwoAttributesAreNotInterchangeable)
{
    const StreamPointer indices = uintStream({0, 1});
    const StreamPointer first = QSharedPointer<ModelDataArray>::create(typeUnsignedByte, 2ul);
    const StreamPointer second = QSharedPointer<ModelDataArray>::create(typeUnsignedByte, 2ul);
    const unsigned char bytes[] = {1, 2, 2, 1};
    first->setData(0, 2, bytes);
    second->setData(0, 2, bytes + 2);
    setGPUStreams(builder, vertexName(), 1, first, indices);
    setGPUStreams(builder, normalName(), 1, second, indices);
    builder.optimizeGPUStreams();
    EXPECT_THAT(uints(indices), ElementsAre(0, 1)) << "(1, 2) and (2, 1)";
}

TEST_F(GPUStreamOptimisationTest, BytesAreComparedWithoutTolerance)
{
    struct Row
    {
        const char *name;
        float first;
        float second;
        bool same;
    };
    const Row rows[] = {
        {"equal", 0.1f, 0.1f, true},
        {"one bit apart", 1.0f, 0x1.000002p0f, false},
        {"zeros of both signs", 0.0f, -0.0f, false},
        {"the same NaN", quietNaN, quietNaN, true},
        {"NaNs of both signs", quietNaN, -quietNaN, false},
        {"infinity", INFINITY, INFINITY, true},
        {"smallest denormal and zero", 0x1p-149f, 0.0f, false},
    };
    for (const Row &row : rows) {
        const StreamPointer indices = uintStream({0, 1});
        setGPUStreams(builder, vertexName(), 1, floatStream({row.first, row.second}), indices);
        builder.optimizeGPUStreams();
        EXPECT_EQ(uints(indices)[1], row.same ? 0u : 1u) << row.name;
        EXPECT_EQ(gpuValues(builder, vertexName()).size(), row.same ? 1u : 2u) << row.name;
    }
}

TEST_F(GPUStreamOptimisationTest, WithoutDuplicatesNothingMoves)
{
    const StreamPointer indices = uintStream({2, 0, 1, 1});
    setGPUStreams(builder, vertexName(), 2, floatStream({5, 6, 3, 4, 1, 2}), indices);

    builder.optimizeGPUStreams();

    EXPECT_THAT(uints(indices), ElementsAre(2, 0, 1, 1));
    EXPECT_THAT(gpuValues(builder, vertexName()), areFloats({5, 6, 3, 4, 1, 2}));
    EXPECT_THAT(messages.messages(),
                ElementsAre(Message{QtDebugMsg, statistics(builder, " Vertices Map        3 ->"
                                                                    "        3 d        0"
                                                                    " (100 %) 4")}));
}

TEST_F(GPUStreamOptimisationTest, StatisticsAreTruncatedAndPadded)
{
    struct Row
    {
        const char *name;
        unsigned vertices;
        unsigned different;
        const char *line;
    };
    const Row rows[] = {
        {"two of three: 66.67", 3, 2, " Vertices Map        3 ->        2 d        1 ( 66 %) 4"},
        {"one of 101: 0.99", 101, 1, " Vertices Map      101 ->        1 d      100 (  0 %) 4"},
        {"199 of 200: 99.5", 200, 199, " Vertices Map      200 ->      199 d        1 ( 99 %) 4"},
        {"none", 0, 0, " Vertices Map        0 ->        0 d        0 (  0 %) 4"},
        {"many vertices, few different ones: 0.81", 123456, 1000,
         " Vertices Map   123456 ->     1000 d   122456 (  0 %) 4"},
    };
    for (const Row &row : rows) {
        messages.clear();
        std::vector<float> values(row.vertices);
        for (unsigned i = 0; i < row.vertices; ++i)
            values[i] = static_cast<float>(i % row.different);
        setGPUStreams(builder, vertexName(), 1, floatStream(values), uintStream({}));
        builder.optimizeGPUStreams();
        EXPECT_THAT(messages.messages(),
                    ElementsAre(Message{QtDebugMsg, statistics(builder, row.line)}))
            << row.name;
    }
}

TEST_F(GPUStreamOptimisationTest, EmptyStreamsStayEmptyAndAreReplaced)
{
    const StreamPointer indices = uintStream({});
    const StreamPointer values = floatStream({});
    setGPUStreams(builder, vertexName(), 3, values, indices);
    builder.optimizeGPUStreams();
    EXPECT_THAT(uints(indices), IsEmpty());
    EXPECT_THAT(gpuValues(builder, vertexName()), IsEmpty());
    EXPECT_NE(Inspector::vertexAttribute(builder, vertexName()).gpuValues, values);
}

TEST_F(GPUStreamOptimisationTest, TypesOfTheValuesAreKept)
{
    const StreamPointer indices = uintStream({0, 1, 2});
    const StreamPointer bytes = QSharedPointer<ModelDataArray>::create(typeUnsignedByte, 6ul);
    const unsigned char byteValues[] = {1, 2, 3, 4, 1, 2};
    bytes->setData(0, 6, byteValues);
    const StreamPointer doubles = QSharedPointer<ModelDataArray>::create(typeDouble, 3ul);
    const double doubleValues[] = {0.5, 0.25, 0.5};
    doubles->setData(0, 3, doubleValues);
    setGPUStreams(builder, vertexName(), 2, bytes, indices);
    setGPUStreams(builder, normalName(), 1, doubles, indices);

    builder.optimizeGPUStreams();

    EXPECT_THAT(uints(indices), ElementsAre(0, 1, 0));
    const auto newBytes = Inspector::vertexAttribute(builder, vertexName()).gpuValues;
    EXPECT_EQ(newBytes->type(), typeUnsignedByte);
    EXPECT_THAT(elements<unsigned char>(newBytes), ElementsAre(1, 2, 3, 4));
    const auto newDoubles = Inspector::vertexAttribute(builder, normalName()).gpuValues;
    EXPECT_EQ(newDoubles->type(), typeDouble);
    EXPECT_THAT(elements<double>(newDoubles), ElementsAre(0.5, 0.25));
}

TEST_F(GPUStreamOptimisationTest, EveryAttributeEndsWithTheIndicesOfTheLastOne)
{
    // Equal contents in streams of their own.
    for (const QString &name : {vertexName(), normalName(), texCoordName()})
        setGPUStreams(builder, name, 1, floatStream({1, 1}), uintStream({0, 1}));
    StreamPointer last;
    for (const auto &attribute : qAsConst(Inspector::vertexAttributes(builder)))
        last = attribute.gpuIndices;

    builder.optimizeGPUStreams();

    EXPECT_THAT(uints(last), ElementsAre(0, 0));
    for (const QString &name : {vertexName(), normalName(), texCoordName()})
        EXPECT_EQ(Inspector::vertexAttribute(builder, name).gpuIndices, last);
}

// Nothing to weld

TEST_F(GPUStreamOptimisationTest, WithoutAnAttributeNothingHappens)
{
    builder.optimizeGPUStreams();
    EXPECT_THAT(messages.messages(), IsEmpty());
}

TEST_F(GPUStreamOptimisationTest, AnUnbuiltAttributeStopsTheWelding)
{
    const StreamPointer values = floatStream({1, 1});
    const StreamPointer indices = uintStream({0, 1});
    // Each of the two in turn, since the table's order decides which one is seen first.
    for (const auto &[built, unbuilt] :
         {std::pair(vertexName(), normalName()), std::pair(normalName(), vertexName())}) {
        for (const bool lacksValues : {false, true}) {
            setGPUStreams(builder, built, 1, values, indices);
            setGPUStreams(builder, unbuilt, 1, lacksValues ? StreamPointer() : floatStream({1, 1}),
                          lacksValues ? indices : StreamPointer());
            builder.optimizeGPUStreams();
            EXPECT_EQ(Inspector::vertexAttribute(builder, built).gpuValues, values);
            EXPECT_THAT(uints(indices), ElementsAre(0, 1));
        }
    }
    EXPECT_THAT(messages.messages(), IsEmpty());
}

// Assertions

TEST_F(GPUStreamOptimisationTest, IndicesOfAnotherTypeAreReportedAndReadAsThirtyTwoBits)
{
    struct Row
    {
        const char *name;
        unsigned type;
        const char *report;
        const char *statistics; // ends with the size of the type
    };
    const Row rows[] = {
        {"signed", typeInt,
         "[ModelBuilder:851] [ !! ] Assertion 'oldIndices->type() == GL_UNSIGNED_INT' failed: "
         "Index not uint32 0x1404",
         " Vertices Map        3 ->        2 d        1 ( 66 %) 4"},
        {"float", typeFloat,
         "[ModelBuilder:851] [ !! ] Assertion 'oldIndices->type() == GL_UNSIGNED_INT' failed: "
         "Index not uint32 0x1406",
         " Vertices Map        3 ->        2 d        1 ( 66 %) 4"},
        {"a letter in the number", typeDouble,
         "[ModelBuilder:851] [ !! ] Assertion 'oldIndices->type() == GL_UNSIGNED_INT' failed: "
         "Index not uint32 0x140A",
         " Vertices Map        3 ->        2 d        1 ( 66 %) 8"},
    };
    for (const Row &row : rows) {
        messages.clear();
        const StreamPointer indices = QSharedPointer<ModelDataArray>::create(row.type, 3ul);
        const unsigned entries[] = {2, 1, 0};
        std::memcpy(indices->data(0), entries, sizeof entries);
        setGPUStreams(builder, vertexName(), 1, floatStream({5, 6, 5}), indices);

        builder.optimizeGPUStreams();

        EXPECT_THAT(messages.messages(),
                    ElementsAre(Message{QtCriticalMsg, row.report},
                                Message{QtDebugMsg, statistics(builder, row.statistics)}))
            << row.name;
        const unsigned expected[] = {0, 1, 0};
        EXPECT_EQ(std::memcmp(indices->data(0), expected, sizeof expected), 0) << row.name;
        EXPECT_THAT(gpuValues(builder, vertexName()), areFloats({5, 6})) << row.name;
    }
}

TEST_F(GPUStreamOptimisationTest, NarrowIndicesAreReportedAndNeverReadBeyondTheirEnd)
{
    RecordingAllocator allocator;
    for (const unsigned long count : {0ul, 1ul, 3ul}) {
        messages.clear();
        const StreamPointer indices(allocator.alloc(typeUnsignedShort, count));
        const std::uint16_t zeros[] = {0, 0, 0};
        indices->setData(0, count, zeros);
        setGPUStreams(builder, vertexName(), 1, floatStream({5}), indices);
        builder.optimizeGPUStreams();
        EXPECT_THAT(
            messages.messages(),
            ElementsAre(
                Message{QtCriticalMsg, "[ModelBuilder:851] [ !! ] Assertion 'oldIndices->type() == "
                                       "GL_UNSIGNED_INT' failed: Index not uint32 0x1403"},
                Message{QtDebugMsg,
                        statistics(builder,
                                   " Vertices Map        1 ->        1 d        0 (100 %) 2")}));
        EXPECT_THAT(elements<std::uint16_t>(indices), std::vector<std::uint16_t>(count, 0));
    }
}

/// Numbers of 32 bits that call themselves 16 bits wide: the second half of them lies
/// behind what the stream says that it has.
class HalfAnnouncedStream : public ModelDataArray
{
public:
    using ModelDataArray::ModelDataArray;
    unsigned type() const override { return typeUnsignedShort; }
};

TEST_F(GPUStreamOptimisationTest, IndicesBehindTheAnnouncedBytesStayAsTheyAre)
{
    const auto indices = QSharedPointer<HalfAnnouncedStream>::create(typeUnsignedInt, 4ul);
    const unsigned ones[] = {1, 1, 1, 1};
    std::memcpy(indices->data(0), ones, sizeof ones);
    setGPUStreams(builder, vertexName(), 1, floatStream({5, 5}), indices);
    builder.optimizeGPUStreams();
    // Four times two bytes hold two numbers; vertex 1 became vertex 0.
    const unsigned expected[] = {0, 0, 1, 1};
    EXPECT_EQ(std::memcmp(indices->data(0), expected, sizeof expected), 0);
}

// Broken streams

TEST_F(GPUStreamOptimisationTest, IndicesThatSelectNoVertexStayAsTheyAre)
{
    const StreamPointer indices = uintStream({1, 2, absentIndex, 0xFFFFFFFF});
    setGPUStreams(builder, vertexName(), 1, floatStream({5, 5}), indices);
    builder.optimizeGPUStreams();
    EXPECT_THAT(uints(indices), ElementsAre(0, 2, 0x7fffffffu, 0xffffffffu));
}

// The attribute that the table yields last says how many vertices there are. What
// another one lacks is zeros, what it has beyond is dropped.
TEST_F(GPUStreamOptimisationTest, TheLastAttributeSaysHowManyVerticesThereAre)
{
    RecordingAllocator allocator;
    const StreamPointer indices = uintStream({0, 1});
    const auto stream = [&](const std::vector<float> &values) {
        const StreamPointer made(allocator.alloc(typeFloat, values.size()));
        made->setData(0, values.size(), values.data());
        return made;
    };
    for (const bool verticesAreFewer : {false, true}) {
        messages.clear();
        const std::vector<float> two = {1, 2};
        const std::vector<float> three = {3, 4, 5};
        setGPUStreams(builder, vertexName(), 1, stream(verticesAreFewer ? two : three), indices);
        setGPUStreams(builder, normalName(), 1, stream(verticesAreFewer ? three : two), indices);
        QString last;
        for (auto it = Inspector::vertexAttributes(builder).cbegin();
             it != Inspector::vertexAttributes(builder).cend(); ++it)
            last = it.key();
        const bool lastIsFewer = (last == vertexName()) == verticesAreFewer;

        builder.optimizeGPUStreams();

        const QString fewer = verticesAreFewer ? vertexName() : normalName();
        const QString more = verticesAreFewer ? normalName() : vertexName();
        if (lastIsFewer) {
            EXPECT_THAT(gpuValues(builder, fewer), areFloats({1, 2}));
            EXPECT_THAT(gpuValues(builder, more), areFloats({3, 4}));
        } else {
            EXPECT_THAT(gpuValues(builder, fewer), areFloats({1, 2, 0}));
            EXPECT_THAT(gpuValues(builder, more), areFloats({3, 4, 5}));
        }
    }
}

// Storage of the application's own

TEST_F(GPUStreamOptimisationTest, MakesOneNewStreamPerAttributeAtItsFinalSize)
{
    const auto allocator = QSharedPointer<RecordingAllocator>::create();
    ModelBuilder recorded(allocator, 0); // s0, s1
    const StreamPointer indices(allocator->alloc(typeUnsignedInt, 3));
    const unsigned entries[] = {0, 1, 2};
    indices->setData(0, 3, entries); // s2
    {
        const StreamPointer values(allocator->alloc(typeFloat, 6)); // s3
        const float numbers[] = {1, 2, 3, 4, 1, 2};
        values->setData(0, 6, numbers);
        setGPUStreams(recorded, vertexName(), 2, values, indices);
    }
    allocator->log().clear();

    recorded.optimizeGPUStreams();

    EXPECT_THAT(allocator->log().changes(), ElementsAre("alloc FLOAT 4 -> s4", "s3.delete"));
    EXPECT_THAT(allocator->log().operations(),
                ElementsAre("alloc", "data", "delete", "size", "type"));
    EXPECT_THAT(gpuValues(recorded, vertexName()), areFloats({1, 2, 3, 4}));
    EXPECT_THAT(uints(indices), ElementsAre(0, 1, 0));
}

TEST_F(GPUStreamOptimisationTest, WithoutMemoryNoAttributeIsLeftHalfDone)
{
    for (const unsigned long available : {0ul, 1ul}) {
        const auto allocator = QSharedPointer<RecordingAllocator>::create();
        ModelBuilder recorded(allocator, 0);
        const StreamPointer indices = uintStream({0, 1});
        setGPUStreams(recorded, vertexName(), 1, floatStream({1, 1}), indices);
        setGPUStreams(recorded, normalName(), 1, floatStream({2, 2}), indices);
        allocator->failAfter(available);

        recorded.optimizeGPUStreams();

        for (const QString &name : {vertexName(), normalName()}) {
            const auto attribute = Inspector::vertexAttribute(recorded, name);
            EXPECT_FALSE(attribute.gpuValues) << available;
            EXPECT_FALSE(attribute.gpuIndices) << available;
        }
        EXPECT_THAT(messages.messages(), IsEmpty());
    }
}

// A slower truth

TEST_F(GPUStreamOptimisationTest, AgreesWithASlowSearch)
{
    const unsigned seed = 20240608;
    SCOPED_TRACE(::testing::Message() << "seed " << seed);
    std::mt19937 generator(seed);
    const auto random = [&generator] { return static_cast<unsigned>(generator()); };
    for (int round = 0; round < 100; ++round) {
        // Two floats and one float per vertex, of so few values that rows repeat.
        const unsigned count = 1 + random() % 200;
        std::vector<float> pairs(2 * count);
        std::vector<float> singles(count);
        std::generate(pairs.begin(), pairs.end(), [&] { return random() % 2 ? 0.0f : -0.0f; });
        std::generate(singles.begin(), singles.end(),
                      [&] { return static_cast<float>(random() % (1 + count / 4)); });
        std::vector<unsigned> entries(3 * count);
        std::generate(entries.begin(), entries.end(), [&] { return random() % count; });

        std::vector<unsigned> newOf(count);
        std::vector<float> newPairs;
        std::vector<float> newSingles;
        for (unsigned vertex = 0; vertex < count; ++vertex) {
            unsigned known = 0;
            while (known < newSingles.size() &&
                   bitsOf({newPairs[2 * known], newPairs[2 * known + 1], newSingles[known]}) !=
                       bitsOf({pairs[2 * vertex], pairs[2 * vertex + 1], singles[vertex]}))
                ++known;
            if (known == newSingles.size()) {
                newPairs.insert(newPairs.end(), {pairs[2 * vertex], pairs[2 * vertex + 1]});
                newSingles.push_back(singles[vertex]);
            }
            newOf[vertex] = known;
        }
        std::vector<unsigned> newEntries(entries);
        for (unsigned &entry : newEntries)
            entry = newOf[entry];

        const StreamPointer indices = uintStream(entries);
        setGPUStreams(builder, vertexName(), 2, floatStream(pairs), indices);
        setGPUStreams(builder, normalName(), 1, floatStream(singles), indices);
        builder.optimizeGPUStreams();

        ASSERT_EQ(uints(indices), newEntries) << "round " << round;
        ASSERT_THAT(gpuValues(builder, vertexName()), areFloats(newPairs)) << "round " << round;
        ASSERT_THAT(gpuValues(builder, normalName()), areFloats(newSingles)) << "round " << round;
    }
}

} // namespace
} // namespace OrvTest
