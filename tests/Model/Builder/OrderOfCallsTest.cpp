// What a caller's allocator and streams see of a builder: which calls, and how things are
// at the moment of each.
#include "support/ModelBuilderInspector.h"
#include "support/RecordingStream.h"
#include "support/StreamContents.h"
#include "support/UploadFixture.h"

#include <algorithm>
#include <functional>
#include <new>

namespace OrvTest {
namespace {

using Halvard::Orv::GPUModel;
using Halvard::Orv::InstanceData;
using Halvard::Orv::ModelBuilder;
using Inspector = Halvard::Orv::ModelBuilderInspector;
using ::testing::Contains;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::StartsWith;

/// s0 holds the corner counts of the faces, s1 the combined indices.
class OrderOfCalls : public UploadFixture
{
protected:
    const QSharedPointer<RecordingAllocator> allocator =
        QSharedPointer<RecordingAllocator>::create();
    ModelBuilder builder{allocator, 3};
    CallLog &log = allocator->log();

    ~OrderOfCalls() override { log.watch(nullptr); }

    /// Throws at every call whose line begins so.
    void throwAt(const std::string &begin)
    {
        log.watch([begin](const std::string &line) {
            if (line.rfind(begin, 0) == 0)
                throw std::bad_alloc();
        });
    }

    /// What `look` gives at each call whose line begins so.
    template <typename Look>
    auto seenAt(const std::string &begin, Look look, const std::function<void()> &action)
    {
        std::vector<decltype(look())> seen;
        log.watch([&](const std::string &line) {
            if (line.rfind(begin, 0) == 0)
                seen.push_back(look());
        });
        action();
        log.watch(nullptr);
        return seen;
    }

    /// The lines of one stream, without its name.
    std::vector<std::string> callsOn(const std::string &stream) const
    {
        std::vector<std::string> calls;
        for (const std::string &line : log.lines()) {
            if (line.rfind(stream + '.', 0) == 0)
                calls.push_back(line.substr(stream.size() + 1));
        }
        return calls;
    }

    /// Where a line stands first; its number of lines when it does not.
    std::ptrdiff_t firstOf(const std::string &line) const
    {
        const std::vector<std::string> &lines = log.lines();
        return std::find(lines.begin(), lines.end(), line) - lines.begin();
    }
};

// Creating

TEST_F(OrderOfCalls, AnAttributeIsThereWhenItsStreamsAreAskedFor)
{
    const auto isThere = [&] { return builder.hasVertexAttribute(vertexName()); };
    const auto create = [&] { builder.createVertexAttribute(vertexName(), 3, typeFloat, 0, 0); };
    EXPECT_THAT(seenAt("alloc", isThere, create), ElementsAre(true, true));
}

TEST_F(OrderOfCalls, AnAttributeMadeAgainGivesUpEachStreamForTheNext)
{
    builder.createVertexAttribute(vertexName(), 3, typeFloat, 0, 0);
    log.clear();
    builder.createVertexAttribute(vertexName(), 2, typeDouble, 6, 2);
    EXPECT_THAT(log.lines(), ElementsAre("alloc DOUBLE 6 -> s4", "s2.delete", //
                                         "alloc UINT 2 -> s5", "s3.delete"));
}

TEST_F(OrderOfCalls, AnAttributeThatFailsIsGoneOrAsItWas)
{
    const auto create = [&] { builder.createVertexAttribute(vertexName(), 2, typeFloat, 0, 0); };
    for (const char *call : {"alloc FLOAT", "alloc UINT"}) {
        throwAt(call);
        EXPECT_THROW(create(), std::bad_alloc) << call;
        EXPECT_FALSE(builder.hasVertexAttribute(vertexName())) << call;
    }
    log.watch(nullptr);
    addAttribute(builder, vertexName(), 3, {1, 2, 3}, {0});

    throwAt("alloc FLOAT");
    EXPECT_THROW(create(), std::bad_alloc);
    const auto attribute = Inspector::vertexAttribute(builder, vertexName());
    EXPECT_EQ(attribute.components, 3) << "as it was: nothing of it had been given up";
    EXPECT_THAT(floats(attribute.values), areFloats({1, 2, 3}));

    throwAt("alloc UINT");
    EXPECT_THROW(create(), std::bad_alloc);
    EXPECT_FALSE(builder.hasVertexAttribute(vertexName())) << "its values were gone already";
}

TEST_F(OrderOfCalls, AGroupIsThereWhenItsStreamIsAskedFor)
{
    const auto id = [&] { return builder.materialGroupId(a); };
    const auto create = [&](int number) { builder.createMaterialGroup(a, {}, number, 0); };
    EXPECT_THAT(seenAt("alloc", id, [&] { create(5); }), ElementsAre(5));
    log.clear();
    EXPECT_THAT(seenAt("alloc", id, [&] { create(6); }), ElementsAre(6));
    EXPECT_THAT(log.lines(), ElementsAre("alloc UINT 0 -> s3", "s2.delete"));
}

TEST_F(OrderOfCalls, AGroupThatFailsIsGoneOrAsItWas)
{
    throwAt("alloc");
    EXPECT_THROW(builder.createMaterialGroup(a, {}, -1, 0), std::bad_alloc);
    EXPECT_FALSE(builder.hasMaterialGroup(a));
    log.watch(nullptr);
    const unsigned face = 7;
    builder.createMaterialGroup(a, InstanceData(QStringLiteral("first")), 5, 9);
    builder.addFacesToMaterialGroup(a, 1, &face, b);

    throwAt("alloc");
    EXPECT_THROW(builder.createMaterialGroup(a, InstanceData(QStringLiteral("second")), 6, 1),
                 std::bad_alloc);
    const auto group = Inspector::materialGroup(builder, a);
    EXPECT_EQ(group.instanceData.name(), QLatin1String("first"));
    EXPECT_EQ(group.id, 5);
    EXPECT_EQ(group.flags, 9u);
    EXPECT_EQ(group.objectName, b);
    EXPECT_THAT(uints(group.faces), ElementsAre(7));
}

TEST_F(OrderOfCalls, ABuilderThatCannotBeClearedIsEmpty)
{
    for (const unsigned long failing : {0ul, 1ul}) {
        ModelBuilder cleared(allocator, 3);
        addSquareWithGroup(cleared);
        cleared.generateNormals(normalName());
        unsigned long allocations = 0;
        log.watch([&](const std::string &line) {
            if (line.rfind("alloc", 0) == 0 && allocations++ == failing)
                throw std::bad_alloc();
        });
        EXPECT_THROW(cleared.clear(), std::bad_alloc);
        log.watch(nullptr);
        EXPECT_TRUE(Inspector::materialGroups(cleared).isEmpty());
        EXPECT_TRUE(Inspector::vertexAttributes(cleared).isEmpty());
        EXPECT_TRUE(Inspector::normalsAttribute(cleared).isNull());
        EXPECT_FALSE(cleared.isValid());
        cleared.clear();
        addSquareWithGroup(cleared);
        EXPECT_TRUE(cleared.isValid()) << "with memory again";
    }
}

// Building

TEST_F(OrderOfCalls, NoCornersAreMergedWithOneCallOfNothing)
{
    addAttribute(builder, vertexName(), 3, {1, 2, 3}, {0});
    log.clear();
    builder.buildGPUFriendlyStreams(true);
    EXPECT_THAT(log.changes(), ElementsAre("alloc UINT 0 -> s4", "s4.setData 0 0", //
                                           "alloc FLOAT 0 -> s5",                  //
                                           "alloc FLOAT 0 -> s6", "s5.delete"));
}

/// s2 and s3 are the values and indices of va_Normal, s4 and s5 those of va_Vertex; the
/// first build makes s6 to s10, of which the welded s9 and s10 stay, with the indices s6.
TEST_F(OrderOfCalls, StreamsThatAreBuiltAgainReplaceTheirPredecessorsOneByOne)
{
    addFaces(builder, {1});
    addAttribute(builder, normalName(), 1, {1}, {0});
    addAttribute(builder, vertexName(), 1, {1}, {0});
    builder.buildGPUFriendlyStreams(false);
    Inspector::vertexAttributes(builder)[vertexName()].gpuIndices.clear();
    log.clear();
    builder.buildGPUFriendlyStreams(false);
    EXPECT_THAT(log.changes(),
                ElementsAre("alloc UINT 1 -> s11",                                        //
                            "s6.delete", "alloc FLOAT 1 -> s12", "s9.delete",             //
                            "s12.setData 0 1",                                            //
                            "alloc FLOAT 1 -> s13", "s10.delete", "s13.setData 0 1",      //
                            "alloc FLOAT 1 -> s14", "s12.delete", "alloc FLOAT 1 -> s15", //
                            "s13.delete"));
}

TEST_F(OrderOfCalls, ABuildThatFailsLeavesNoAttributeHalfBuilt)
{
    addSquareWithGroup(builder);
    addAttribute(builder, texCoordName(), 2, {0, 0}, {0, 0, 0, 0});
    // The shared indices, two values, and two welded ones; throwing and giving null.
    for (const bool throwing : {true, false}) {
        for (unsigned long failing = 0; failing < 5; ++failing) {
            unsigned long allocations = 0;
            if (throwing)
                log.watch([&](const std::string &line) {
                    if (line.rfind("alloc", 0) == 0 && allocations++ == failing)
                        throw std::bad_alloc();
                });
            else
                allocator->failAfter(failing);
            bool threw = false;
            try {
                builder.buildGPUFriendlyStreams(failing % 2 == 0);
            } catch (const std::bad_alloc &) {
                threw = true;
            }
            log.watch(nullptr);
            EXPECT_EQ(threw, throwing);
            for (const auto &attribute : qAsConst(Inspector::vertexAttributes(builder))) {
                EXPECT_FALSE(attribute.gpuValues) << failing;
                EXPECT_FALSE(attribute.gpuIndices) << failing;
            }
        }
    }
}

// Preparing

/// s2 and s3 are the positions and their indices, s4 the faces of the group, s5 the shared
/// indices of the corners.
TEST_F(OrderOfCalls, PreparingLooksAtTheIndicesBeforeTheFaces)
{
    addSquareWithGroup(builder);
    builder.buildGPUFriendlyStreams(false);
    log.clear();
    const auto positions = Inspector::vertexAttribute(builder, vertexName());
    builder.prepareMaterialGroupForUpload(a, Inspector::materialGroup(builder, a),
                                          positions.gpuValues, positions.gpuIndices, {0});
    EXPECT_EQ(log.lines().front(), "s5.data 0");
    EXPECT_LT(firstOf("s5.data 0"), firstOf("s0.type"));
    EXPECT_LT(firstOf("s0.type"), firstOf("s0.data 0"));
    EXPECT_LT(firstOf("s0.data 0"), firstOf("s4.data 0"));
    EXPECT_LT(firstOf("s4.data 0"), firstOf("s1.isEmpty"));
}

TEST_F(OrderOfCalls, TrianglesThatCannotBeAddedLeaveNoCommand)
{
    addSquareWithGroup(builder);
    throwAt("s8.append"); // the new combined indices
    EXPECT_THROW(upload(builder), std::bad_alloc);
    log.watch(nullptr);
    EXPECT_TRUE(Inspector::drawCommands(builder).isEmpty());
    EXPECT_TRUE(Inspector::drawCommandGroups(builder).isEmpty());
    upload(builder);
    ASSERT_EQ(model.bundleCount(), 1);
    EXPECT_EQ(bundle().commands().size(), 1);
}

TEST_F(OrderOfCalls, TheNormalsAttributeIsThereWhenItsStreamIsAskedFor)
{
    addSquareWithGroup(builder);
    builder.generateNormals(normalName());
    const auto isThere = [&] { return builder.hasVertexAttribute(normalName()); };
    EXPECT_THAT(seenAt("alloc FLOAT 12", isThere, [&] { upload(builder); }),
                ElementsAre(false, false, true)) // positions, welded ones, normals
        << ::testing::PrintToString(log.lines());
}

TEST_F(OrderOfCalls, NormalsThatCannotBeHadLeaveNoAttribute)
{
    addSquareWithGroup(builder);
    builder.generateNormals(normalName());
    int floatStreams = 0;
    log.watch([&](const std::string &line) {
        if (line.rfind("alloc FLOAT", 0) == 0 && ++floatStreams == 3)
            throw std::bad_alloc();
    });
    EXPECT_THROW(upload(builder), std::bad_alloc);
    log.watch(nullptr);
    EXPECT_FALSE(builder.hasVertexAttribute(normalName()));
    upload(builder);
    ASSERT_EQ(model.bundleCount(), 1);
    EXPECT_EQ(bundle().VAO()->attributes().size(), 2);
}

// Uploading

GLint boundElements()
{
    GLint bound = 0;
    glGetIntegerv(GL_ELEMENT_ARRAY_BUFFER_BINDING, &bound);
    return bound;
}

TEST_F(OrderOfCalls, IndicesAreNarrowedWhileTheirBufferIsBound)
{
    addSquareWithGroup(builder);
    EXPECT_THAT(seenAt("alloc USHORT", boundElements, [&] { upload(builder); }),
                ElementsAre(Not(0)));
    // s8: after the streams of the square, s5 to s7, and the combined indices.
    EXPECT_THAT(log.lines(), Contains("alloc USHORT 6 -> s9"));
    EXPECT_EQ(boundElements(), 0);

    log.clear();
    EXPECT_THAT(seenAt("s10.delete", boundElements, [&] { upload(builder); }), ElementsAre(Not(0)));

    throwAt("alloc USHORT");
    EXPECT_THROW(upload(builder), std::bad_alloc);
    EXPECT_EQ(boundElements(), 0);
    EXPECT_EQ(model.bundleCount(), 2);
}

/// Once for its buffer, and once for each of the two bundles.
TEST_F(OrderOfCalls, BundlesAreAddedOneByOne)
{
    addTwoGroups(builder, 1, 2);
    upload(builder);
    const std::string positions = "s8."; // the welded ones
    log.clear();
    GPUModel second;
    const auto bundles = [&] { return second.bundleCount(); };
    const auto counts = seenAt(positions + "type", bundles, [&] {
        builder.upload(&second, instanceRecord(), vertexName(), QString(), GL_STATIC_DRAW,
                       GL_TRIANGLES);
    });
    // The first one asks whether they are positions.
    EXPECT_THAT(counts, ElementsAre(0, 0, 0, 1));
    EXPECT_EQ(second.bundleCount(), 2);
}

TEST_F(OrderOfCalls, AStreamThatThrowsBeforeTheFirstBundleLeavesTheModelAsItWas)
{
    addTwoGroups(builder, 1, 2);
    upload(builder);
    for (const char *call : {"s8.type", "s8.data", "s8.size", "s9.data", "s9.size", "s9.type"}) {
        throwAt(call);
        EXPECT_THROW(upload(builder), std::bad_alloc) << call;
        EXPECT_EQ(model.bundleCount(), 2) << call;
    }
}

/// s2 holds the values, s3 the indices of the positions.
TEST_F(OrderOfCalls, UploadingAsksTheValuesOnlyWhetherThereAreSome)
{
    addSquareWithGroup(builder);
    builder.buildGPUFriendlyStreams(false);
    log.clear();
    upload(builder);
    EXPECT_THAT(callsOn("s2"), ElementsAre("isEmpty", "size")); // one calls the other
    EXPECT_THAT(callsOn("s3"), ElementsAre("isEmpty", "size"));
    EXPECT_EQ(model.bundleCount(), 1);
}

// Elements of another size

/// Every stream from some point on is of smaller elements than asked for. The streams
/// notice writes outside, and the address sanitizer reads. Nothing is uploaded that was
/// made of such a stream.
TEST_F(OrderOfCalls, SmallerElementsThanAskedForAreRefused)
{
    for (const unsigned type : {typeUnsignedByte, typeUnsignedShort}) {
        for (unsigned long whole = 0; whole < 16; ++whole) {
            for (const bool merging : {false, true}) {
                SCOPED_TRACE(::testing::Message() << type << " after " << whole);
                const auto other = QSharedPointer<RecordingAllocator>::create();
                other->substituteAfter(whole, type);
                ModelBuilder filled(other, 0);
                addSquareWithGroup(filled);
                filled.generateNormals(normalName());
                if (merging)
                    filled.buildGPUFriendlyStreams(true);
                GPUModel target;
                filled.upload(&target, instanceRecord(), vertexName(), QString(), GL_STATIC_DRAW,
                              GL_TRIANGLES);
                // Two of the builder, three of the square, three to build and weld, the
                // combined indices, the normals and the narrowed indices.
                const bool isNarrow = type == typeUnsignedShort && whole == 10;
                EXPECT_EQ(target.bundleCount(), whole > 10 || isNarrow ? 1 : 0);
                if (target.bundleCount() == 1) {
                    EXPECT_THAT(downloaded<std::uint16_t>(target.bundle(0)->indexBuffer()),
                                ElementsAre(0, 1, 3, 1, 2, 3));
                }
            }
        }
    }
}

} // namespace
} // namespace OrvTest
