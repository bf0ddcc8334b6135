#include "Builder/ModelUpload.h"

#include "support/GLTest.h"
#include "support/GPUReadBack.h"
#include "support/MessageCapture.h"
#include "support/RecordingStream.h"
#include "support/StreamContents.h"

#include <OrvCore/InstanceDataCollection.h>
#include <OrvGL/GPUModel.h>
#include <OrvGL/OpenGLDeviceContext.h>
#include <OrvGL/OpenGLFunctions.h>

#include <vector>

namespace OrvTest {
namespace {

using namespace Halvard::Orv;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// A model of plain arrays: two triangles, drawn by two commands.
class ModelUpload : public GLTest
{
protected:
    const std::vector<float> positions = {0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0};
    const std::vector<float> texCoords = {0, 0, 1, 0, 1, 1, 0, 1};
    const std::vector<unsigned> indices = {0, 1, 2, 0, 2, 3};
    const QSharedPointer<RecordingAllocator> allocator =
        QSharedPointer<RecordingAllocator>::create();
    const MessageCapture messages;
    GPUModel model;

    UploadInput input() const
    {
        UploadInput input;
        // The positions are not the first: their number of values must be the one taken.
        input.attributes.append({QStringLiteral("t"), 2, elements(GL_FLOAT, texCoords)});
        input.attributes.append({QStringLiteral("p"), 3, elements(GL_FLOAT, positions)});
        input.positions = 1;
        input.indices = elements(GL_UNSIGNED_INT, indices);
        input.instanceData = InstanceData(QStringLiteral("InstanceInfo"));
        input.usage = GL_STATIC_DRAW;
        input.primitiveType = GL_TRIANGLES;
        input.allocator = allocator;
        return input;
    }

    /// A command of one triangle.
    static UploadInput::Command command(unsigned triangle, const char *group)
    {
        return {drawCommand(3 * triangle, 3), QLatin1String(group),
                InstanceData(QStringLiteral("OBJMaterial")), int(triangle) + 7,
                QLatin1String("object of ") + QLatin1String(group)};
    }

    static UploadInput withBatches(UploadInput input, const QVector<UploadInput::Batch> &batches)
    {
        input.batches = batches;
        return input;
    }

    UploadSteps steps(UploadInput input)
    {
        return {std::move(input), OpenGLDeviceContext::current(), model};
    }

    template <typename T>
    static UploadElements elements(unsigned type, const std::vector<T> &values)
    {
        return {type, values.size(), values.data()};
    }
};

TEST_F(ModelUpload, PlainArraysBecomeOneBundlePerBatch)
{
    uploadModel(withBatches(input(), {{2, {command(0, "a")}}, {1, {command(1, "b")}}}),
                OpenGLDeviceContext::current(), model);

    ASSERT_EQ(model.bundleCount(), 2) << "in the order of the batches";
    EXPECT_EQ(model.key(0), 2u);
    EXPECT_EQ(model.key(1), 1u);
    for (const int i : {0, 1}) {
        const DrawBuffers &bundle = *model.bundle(i);
        EXPECT_EQ(bundle.vertexCount(), 4u);
        EXPECT_EQ(bundle.primitiveType(), unsigned(GL_TRIANGLES));
        EXPECT_EQ(bundle.indexType(), unsigned(GL_UNSIGNED_SHORT));
        EXPECT_EQ(bundle.indexCount(), 6);
        EXPECT_THAT(downloaded<std::uint16_t>(bundle.indexBuffer()), ElementsAre(0, 1, 2, 0, 2, 3));
        EXPECT_THAT(downloaded<float>(vertexAttribute(bundle, QStringLiteral("p")).buffer),
                    areFloats(positions));
        EXPECT_THAT(downloaded<float>(vertexAttribute(bundle, QStringLiteral("t")).buffer),
                    areFloats(texCoords));
        EXPECT_EQ(vertexAttribute(bundle, QStringLiteral("t")).components, 2);
        EXPECT_EQ(vertexAttribute(bundle, QStringLiteral("t")).type, unsigned(GL_FLOAT));
        ASSERT_EQ(bundle.commands().size(), 1);
        EXPECT_EQ(bundle.commands().at(0).firstIndex, 3u * unsigned(i));
        EXPECT_EQ(bundle.commands().at(0).count, 3u);
        EXPECT_EQ(bundle.commands().at(0).instanceCount, 1u);
        EXPECT_EQ(model.materials(i)->records().size(), 1);
        EXPECT_EQ(model.instances(i)->records().size(), 1);
    }
    EXPECT_EQ(model.materialName(0, 0), QLatin1String("a"));
    EXPECT_EQ(model.objectName(1, 0), QLatin1String("object of b"));
    EXPECT_THAT(messages.messages(), IsEmpty());
}

/// Elements, two attributes, and the bundles.
TEST_F(ModelUpload, EachStepMakesOneBufferAndTheLastOneTheBundles)
{
    UploadSteps upload =
        steps(withBatches(input(), {{0, {command(0, "a")}}, {1, {command(1, "b")}}}));
    // Bytes as they are in memory: 24 of indices, 32 and 48 of values.
    const double fractions[] = {24.0 / 104, 56.0 / 104, 1.0};
    EXPECT_EQ(upload.fraction(), 0.0);
    for (const double fraction : fractions) {
        EXPECT_TRUE(upload.step());
        EXPECT_EQ(upload.fraction(), fraction);
        EXPECT_EQ(model.bundleCount(), 0);
    }
    EXPECT_FALSE(upload.step());
    EXPECT_EQ(model.bundleCount(), 2);
    EXPECT_FALSE(upload.step()) << "nothing is added twice";
    EXPECT_EQ(model.bundleCount(), 2);
    EXPECT_EQ(upload.fraction(), 1.0);
}

TEST_F(ModelUpload, AnUploadThatIsGivenUpLeavesNothing)
{
    for (int count = 0; count <= 3; ++count) {
        UploadSteps upload = steps(withBatches(input(), {{0, {command(0, "a")}}}));
        for (int i = 0; i < count; ++i)
            upload.step();
    }
    EXPECT_EQ(model.bundleCount(), 0);
}

/// Too few elements, elements too small, and none at all.
TEST_F(ModelUpload, NarrowedIndicesThatCannotBeHadEndTheUpload)
{
    class SmallElements : public ModelDataArrayAllocator
    {
    public:
        ModelDataStream *alloc(unsigned, unsigned long count) override
        {
            return ModelDataArrayAllocator::alloc(GL_UNSIGNED_BYTE, count);
        }
    };
    const auto none = QSharedPointer<RecordingAllocator>::create();
    none->failAfter(0);
    const auto fewer = QSharedPointer<RecordingAllocator>::create();
    fewer->shortenAfter(0);
    const struct
    {
        const char *name;
        QSharedPointer<ModelDataStreamAllocator> allocator;
    } rows[] = {
        {"no stream", none},
        {"an element less", fewer},
        {"bytes", QSharedPointer<SmallElements>::create()},
    };
    for (const auto &row : rows) {
        UploadInput failing = withBatches(input(), {{0, {command(0, "a")}}});
        failing.allocator = row.allocator;
        UploadSteps upload = steps(std::move(failing));
        EXPECT_FALSE(upload.step()) << row.name;
        EXPECT_FALSE(upload.step()) << row.name;
        EXPECT_EQ(model.bundleCount(), 0) << row.name;
        GLint bound = -1;
        glGetIntegerv(GL_ELEMENT_ARRAY_BUFFER_BINDING, &bound);
        EXPECT_EQ(bound, 0) << row.name;
    }
}

/// The material id takes the place of the materials.
TEST_F(ModelUpload, GroupsAreRecordsOrIds)
{
    UploadInput withIds = withBatches(input(), {{0, {command(0, "a"), command(1, "b")}}});
    withIds.materialIdMember = QStringLiteral("id");
    uploadModel(std::move(withIds), OpenGLDeviceContext::current(), model);
    ASSERT_EQ(model.bundleCount(), 1);
    EXPECT_FALSE(model.materials(0));
    const QList<InstanceData> records = model.instances(0)->records();
    ASSERT_EQ(records.size(), 2);
    for (const int i : {0, 1}) {
        const int id = i + 7;
        EXPECT_EQ(records.at(i).value(QStringLiteral("id")),
                  QByteArray(reinterpret_cast<const char *>(&id), sizeof id));
    }
}

TEST_F(ModelUpload, NoBatchesMakeBuffersAndNoBundle)
{
    UploadSteps upload = steps(input());
    for (int i = 0; i < 3; ++i)
        EXPECT_TRUE(upload.step());
    EXPECT_FALSE(upload.step());
    EXPECT_EQ(model.bundleCount(), 0);
    EXPECT_THAT(allocator->log().lines().front(), "alloc USHORT 6 -> s0");
}

} // namespace
} // namespace OrvTest
