#include "support/QtPrinting.h"
#include "support/RecordingStream.h"
#include "support/StreamContents.h"
#include "support/UploadFixture.h"

#include <algorithm>

namespace OrvTest {
namespace {

using Halvard::Orv::GPUModel;
using Halvard::Orv::InstanceData;
using Halvard::Orv::ModelBuilder;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class UploadBatchesTest : public UploadFixture
{};

// Batches

TEST_F(UploadBatchesTest, GroupsOfOneKeyShareABundle)
{
    ModelBuilder builder({}, 0);
    addTwoGroups(builder, 1, 2);
    upload(builder);

    ASSERT_EQ(model.bundleCount(), 1);
    ASSERT_EQ(bundle().commands().size(), 2);
    EXPECT_EQ(bundle().commands().at(0).count, 3u);
    EXPECT_EQ(bundle().commands().at(0).firstIndex, 0u);
    EXPECT_EQ(bundle().commands().at(1).count, 3u);
    EXPECT_EQ(bundle().commands().at(1).firstIndex, 3u);

    // Which group comes first is up to the table; names and runs belong together.
    const auto indices = downloaded<std::uint16_t>(bundle().indexBuffer());
    ASSERT_EQ(indices.size(), 6u);
    for (int slot = 0; slot < 2; ++slot) {
        const auto run = indices.begin() + 3 * slot;
        const std::vector<std::uint16_t> triangle(run, run + 3);
        const std::vector<std::uint16_t> first = {0, 1, 2};
        const std::vector<std::uint16_t> second = {0, 2, 3};
        EXPECT_EQ(triangle, model.materialName(0, slot) == a ? first : second);
    }
    EXPECT_NE(model.materialName(0, 0), model.materialName(0, 1));
}

TEST_F(UploadBatchesTest, GroupsOfTwoKeysHaveBundlesThatShareTheBuffers)
{
    ModelBuilder builder({}, 0xF0);
    addTwoGroups(builder, 0x13, 0x23);
    upload(builder);

    ASSERT_EQ(model.bundleCount(), 2);
    EXPECT_EQ(std::min(model.key(0), model.key(1)), 0x10u);
    EXPECT_EQ(std::max(model.key(0), model.key(1)), 0x20u);
    EXPECT_EQ(bundle(0).indexBuffer(), bundle(1).indexBuffer());
    EXPECT_EQ(vertexAttribute(bundle(0), vertexName()).buffer,
              vertexAttribute(bundle(1), vertexName()).buffer);
    EXPECT_NE(bundle(0).VAO(), bundle(1).VAO());
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(bundle(i).indexCount(), 6) << "the whole element buffer";
        EXPECT_EQ(bundle(i).commands().size(), 1);
        EXPECT_EQ(model.materialName(i, 0), model.key(i) == 0x10 ? a : b);
        EXPECT_EQ(model.materials(i)->records().size(), 1);
        EXPECT_EQ(model.instances(i)->records().size(), 1);
    }
    EXPECT_EQ(bundle(0).commands().at(0).firstIndex + bundle(1).commands().at(0).firstIndex, 3u)
        << "one run begins at 0, the other at 3";
}

TEST_F(UploadBatchesTest, TheModelOutlivesTheBuilder)
{
    {
        ModelBuilder builder({}, 0);
        addSquareWithGroup(builder);
        upload(builder);
    }
    EXPECT_EQ(bundle().commands().at(0).count, 6u);
    EXPECT_THAT(downloaded<std::uint16_t>(bundle().indexBuffer()), ElementsAre(0, 1, 3, 1, 2, 3));
    EXPECT_THAT(downloaded<float>(vertexAttribute(bundle(), vertexName()).buffer),
                areFloats(squarePositions));
    EXPECT_EQ(model.materials(0)->records().size(), 1);
}

// Records and names

InstanceData materialRecord(const QString &plan, float ns)
{
    InstanceData record(plan);
    record.set(QStringLiteral("Ns"), &ns, sizeof ns);
    return record;
}

TEST_F(UploadBatchesTest, MaterialsStandInTheOrderOfTheCommands)
{
    ModelBuilder builder({}, 0);
    addFaces(builder, {3, 3});
    addAttribute(builder, vertexName(), 3, squarePositions, {0, 1, 2, 0, 2, 3});
    builder.createMaterialGroup(a, materialRecord(QStringLiteral("PlanA"), 1), -1, 0);
    builder.createMaterialGroup(b, materialRecord(QStringLiteral("PlanB"), 2), -1, 0);
    const unsigned faces[] = {0, 1};
    builder.addFacesToMaterialGroup(a, 1, &faces[0], QStringLiteral("object of a"));
    builder.addFacesToMaterialGroup(b, 1, &faces[1], QString());

    upload(builder);

    ASSERT_EQ(model.bundleCount(), 1);
    ASSERT_TRUE(model.materials(0));
    ASSERT_TRUE(model.instances(0));
    ASSERT_EQ(model.materials(0)->records().size(), 2);
    ASSERT_EQ(model.instances(0)->records().size(), 2);
    const QByteArray one = QByteArray::fromHex("0000803f");
    const QByteArray two = QByteArray::fromHex("00000040");
    for (int slot = 0; slot < 2; ++slot) {
        const bool isA = model.materialName(0, slot) == a;
        EXPECT_EQ(model.materialName(0, slot), isA ? a : b);
        EXPECT_EQ(model.objectName(0, slot), isA ? QStringLiteral("object of a") : QString());
        EXPECT_EQ(model.objectName(0, slot).isNull(), !isA);
        const InstanceData &material = model.materials(0)->records().at(slot);
        EXPECT_EQ(material.name(), isA ? QStringLiteral("PlanA") : QStringLiteral("PlanB"));
        EXPECT_EQ(material.value(QStringLiteral("Ns")), isA ? one : two);
        const InstanceData &instance = model.instances(0)->records().at(slot);
        EXPECT_EQ(instance.name(), QStringLiteral("InstanceInfo"));
        EXPECT_EQ(instance.members(), QStringList{QStringLiteral("scale")});
        EXPECT_EQ(instance.value(QStringLiteral("scale")), two);
    }
    EXPECT_EQ(model.materials(0)->name(), model.materials(0)->records().at(0).name())
        << "named after the first material";
    EXPECT_EQ(model.instances(0)->name(), QStringLiteral("InstanceInfo"));
}

TEST_F(UploadBatchesTest, AMaterialIdMemberTakesThePlaceOfTheMaterials)
{
    for (const QString &member : {QStringLiteral("materialId"), QString(QLatin1String(""))}) {
        ModelBuilder builder({}, 0);
        addFaces(builder, {3, 3});
        addAttribute(builder, vertexName(), 3, squarePositions, {0, 1, 2, 0, 2, 3});
        builder.createMaterialGroup(a, InstanceData(), 7, 0);
        builder.createMaterialGroup(b, InstanceData(), 0x01020304, 0);
        const unsigned faces[] = {0, 1};
        builder.addFacesToMaterialGroup(a, 1, &faces[0], QString());
        builder.addFacesToMaterialGroup(b, 1, &faces[1], QString());
        GPUModel uploaded;
        const InstanceData record = instanceRecord();
        builder.upload(&uploaded, record, vertexName(), member, GL_STATIC_DRAW, GL_TRIANGLES);

        ASSERT_EQ(uploaded.bundleCount(), 1);
        EXPECT_EQ(uploaded.materials(0), nullptr);
        ASSERT_TRUE(uploaded.instances(0));
        ASSERT_EQ(uploaded.instances(0)->records().size(), 2);
        for (int slot = 0; slot < 2; ++slot) {
            const bool isA = uploaded.materialName(0, slot) == a;
            const InstanceData &instance = uploaded.instances(0)->records().at(slot);
            EXPECT_EQ(instance.value(member), QByteArray::fromHex(isA ? "07000000" : "04030201"));
            EXPECT_EQ(instance.value(QStringLiteral("scale")), QByteArray::fromHex("00000040"));
        }
        EXPECT_EQ(record.members(), QStringList{QStringLiteral("scale")})
            << "the caller's record is copied, not changed";
    }
}

// More than once

TEST_F(UploadBatchesTest, ASecondUploadAddsTheSameInNewBuffers)
{
    const auto allocator = QSharedPointer<RecordingAllocator>::create();
    ModelBuilder builder(allocator, 0);
    addSquareWithGroup(builder);
    builder.generateNormals(normalName());
    upload(builder);
    allocator->log().clear();
    messages.clear();

    upload(builder);

    // Only the narrowed indices are made anew, and thrown away.
    ASSERT_EQ(allocator->log().changes().size(), 2u);
    EXPECT_THAT(allocator->log().changes().front(), ::testing::StartsWith("alloc USHORT 6 -> "));
    EXPECT_THAT(allocator->log().changes().back(), ::testing::EndsWith(".delete"));
    EXPECT_THAT(messages.messages(), IsEmpty()) << "nothing is welded again";
    ASSERT_EQ(model.bundleCount(), 2);
    EXPECT_EQ(bundle(0).commands(), bundle(1).commands());
    EXPECT_NE(bundle(0).indexBuffer(), bundle(1).indexBuffer());
    EXPECT_EQ(downloaded<std::uint16_t>(bundle(0).indexBuffer()),
              downloaded<std::uint16_t>(bundle(1).indexBuffer()));
    for (const QString &name : {vertexName(), normalName()}) {
        const auto first = vertexAttribute(bundle(0), name).buffer;
        const auto second = vertexAttribute(bundle(1), name).buffer;
        EXPECT_NE(first, second);
        EXPECT_EQ(downloaded<float>(first), downloaded<float>(second));
    }
}

TEST_F(UploadBatchesTest, AClearedBuilderUploadsWhatItIsFilledWithNext)
{
    ModelBuilder builder({}, 0);
    addSquareWithGroup(builder);
    upload(builder);
    builder.clear();
    addFaces(builder, {3});
    addAttribute(builder, vertexName(), 3, {9, 0, 0, 0, 9, 0, 0, 0, 9}, {0, 1, 2});
    addGroup(builder, b, {0});
    upload(builder);
    ASSERT_EQ(model.bundleCount(), 2);
    ASSERT_EQ(bundle(1).commands().size(), 1);
    EXPECT_EQ(bundle(1).commands().at(0).count, 3u);
    EXPECT_EQ(model.materialName(1, 0), b);
    EXPECT_THAT(downloaded<float>(vertexAttribute(bundle(1), vertexName()).buffer),
                areFloats({9, 0, 0, 0, 9, 0, 0, 0, 9}));
}

// The combined indices are the sign of a prepared builder. When no face gives a
// triangle they stay empty, and the second upload prepares once more.
TEST_F(UploadBatchesTest, AModelWithoutTrianglesIsPreparedAgain)
{
    ModelBuilder builder({}, 0);
    addFaces(builder, {2});
    addAttribute(builder, vertexName(), 3, squarePositions, {0, 1});
    addGroup(builder, a, {0});

    upload(builder);
    ASSERT_EQ(model.bundleCount(), 1);
    ASSERT_EQ(bundle(0).commands().size(), 1);
    EXPECT_EQ(bundle(0).commands().at(0).count, 0u);
    EXPECT_EQ(bundle(0).indexCount(), 0);
    EXPECT_EQ(bundle(0).vertexCount(), 2u);
    EXPECT_EQ(model.materialName(0, 0), a);

    upload(builder);
    ASSERT_EQ(model.bundleCount(), 2);
    EXPECT_EQ(bundle(0).commands().size(), 1) << "the first bundle has a copy";
    EXPECT_EQ(bundle(1).commands().size(), 2);
    EXPECT_EQ(model.materialName(1, 1), a);
}

TEST_F(UploadBatchesTest, AnAttributeThatComesAfterAnUploadKeepsTheNextFromBeingMade)
{
    ModelBuilder builder({}, 0);
    addSquareWithGroup(builder);
    upload(builder);
    ASSERT_EQ(model.bundleCount(), 1);
    addAttribute(builder, texCoordName(), 2, {0, 0, 1, 0, 1, 1, 0, 1}, {0, 1, 2, 3});
    upload(builder);
    EXPECT_EQ(model.bundleCount(), 1)
        << "triangles are not made anew, so nothing has the attribute";
}

// Storage of the application's own

TEST_F(UploadBatchesTest, MakesTheDefinedChangesInTheDefinedOrder)
{
    const auto allocator = QSharedPointer<RecordingAllocator>::create();
    ModelBuilder builder(allocator, 0); // s0 corner counts, s1 combined indices
    addSquareWithGroup(builder);        // s2 positions, s3 their indices, s4 faces
    builder.generateNormals(normalName());
    allocator->log().clear();

    upload(builder);

    EXPECT_THAT(allocator->log().changes(),
                ElementsAre("alloc UINT 4 -> s5",   // one index per corner
                            "alloc FLOAT 12 -> s6", // one value per corner
                            "s6.setData 0 3", "s6.setData 3 3", "s6.setData 6 3",
                            "s6.setData 9 3",                    //
                            "alloc FLOAT 12 -> s7", "s6.delete", // welded
                            "alloc UINT 0 -> s8", "s1.delete",   // triangles
                            "s8.append 6", "s8.resize 6", "s8.setData 0 6",
                            "alloc FLOAT 12 -> s9",                  // normals
                            "alloc USHORT 6 -> s10", "s10.delete")); // narrowed indices
    EXPECT_THAT(allocator->log().operations(),
                ElementsAre("alloc", "append", "data", "delete", "isEmpty", "resize", "setData",
                            "size", "type"));
}

TEST_F(UploadBatchesTest, WithoutMemoryTheModelStaysAsItWasAndALaterUploadWorks)
{
    // Six streams, as in the list above.
    for (unsigned long available = 0; available < 6; ++available) {
        const auto allocator = QSharedPointer<RecordingAllocator>::create();
        ModelBuilder builder(allocator, 0);
        addSquareWithGroup(builder);
        builder.generateNormals(normalName());
        allocator->failAfter(available);
        GPUModel uploaded;
        const auto tryUpload = [&] {
            builder.upload(&uploaded, instanceRecord(), vertexName(), QString(), GL_STATIC_DRAW,
                           GL_TRIANGLES);
        };
        tryUpload();
        EXPECT_EQ(uploaded.bundleCount(), 0) << available;

        allocator->failAfter(100);
        tryUpload();
        ASSERT_EQ(uploaded.bundleCount(), 1) << available;
        EXPECT_EQ(uploaded.bundle(0)->commands().size(), 1) << available;
        EXPECT_THAT(downloaded<std::uint16_t>(uploaded.bundle(0)->indexBuffer()),
                    ElementsAre(0, 1, 3, 1, 2, 3))
            << available;
        EXPECT_THAT(downloaded<float>(vertexAttribute(*uploaded.bundle(0), normalName()).buffer),
                    ElementsAre(0, 0, -1, 0, 0, -1, 0, 0, -1, 0, 0, -1))
            << available;
    }
    EXPECT_THAT(messages.texts(QtWarningMsg), IsEmpty());
}

TEST_F(UploadBatchesTest, WithStreamsThatAreTooShortTheModelStaysAsItWas)
{
    // Those of the list above that are made at their final size.
    for (const unsigned long whole : {0ul, 1ul, 2ul, 4ul, 5ul}) {
        const auto allocator = QSharedPointer<RecordingAllocator>::create();
        ModelBuilder builder(allocator, 0);
        addSquareWithGroup(builder);
        builder.generateNormals(normalName());
        allocator->shortenAfter(whole);
        GPUModel uploaded;
        builder.upload(&uploaded, instanceRecord(), vertexName(), QString(), GL_STATIC_DRAW,
                       GL_TRIANGLES);
        EXPECT_EQ(uploaded.bundleCount(), 0) << whole;
    }
}

/// Streams that take no more than so many elements beyond those they were made with, once
/// told to.
class FullAllocator : public Halvard::Orv::ModelDataArrayAllocator
{
public:
    Halvard::Orv::ModelDataStream *alloc(unsigned type, unsigned long count) override
    {
        return isFull ? new FullStream(type, count, room)
                      : ModelDataArrayAllocator::alloc(type, count);
    }

    bool isFull = false;
    unsigned long room = 0;

private:
    class FullStream : public Halvard::Orv::ModelDataArray
    {
    public:
        FullStream(unsigned type, unsigned long count, unsigned long room)
            : ModelDataArray(type, count), _room(room)
        {}
        void append(unsigned long count, const void *source) override
        {
            ModelDataArray::append(std::min(count, _room), source);
        }

    private:
        unsigned long _room;
    };
};

// The commands would draw from indices that are not there.
TEST_F(UploadBatchesTest, TrianglesThatFindNoRoomAreNotDrawn)
{
    const auto allocator = QSharedPointer<FullAllocator>::create();
    ModelBuilder builder(allocator, 0);
    addSquareWithGroup(builder);
    allocator->isFull = true;
    for (const unsigned long room : {0ul, 5ul}) { // of six indices
        allocator->room = room;
        upload(builder);
        EXPECT_EQ(model.bundleCount(), 0) << room;
    }

    allocator->isFull = false;
    upload(builder);
    ASSERT_EQ(model.bundleCount(), 1);
    EXPECT_EQ(bundle().commands().size(), 1);
    EXPECT_EQ(bundle().indexCount(), 6);
}

} // namespace
} // namespace OrvTest
