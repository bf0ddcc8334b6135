#include "support/ModelReadBack.h"

#include "support/GPUReadBack.h"

#include <OrvCore/InstanceData.h>
#include <OrvCore/InstanceDataCollection.h>
#include <OrvGL/GPUModel.h>
#include <OrvGL/OpenGLFunctions.h>
#include <OrvModel/ModelLoading.h>

#include <memory>

namespace OrvTest {

namespace Orv = Halvard::Orv;

namespace {

/// The element buffer as 32-bit numbers.
std::vector<quint32> indicesOf(const Orv::DrawBuffers &bundle)
{
    const QSharedPointer<Orv::BufferObject> buffer = bundle.indexBuffer();
    std::vector<quint32> indices;
    if (bundle.indexType() == GL_UNSIGNED_SHORT) {
        const auto narrow = downloaded<quint16>(buffer);
        indices.assign(narrow.begin(), narrow.end());
    } else {
        indices = downloaded<quint32>(buffer);
    }
    EXPECT_EQ(buffer->target(), GLenum(GL_ELEMENT_ARRAY_BUFFER));
    EXPECT_EQ(bundle.indexCount(), static_cast<int>(indices.size()));
    return indices;
}

Collection collectionOf(const Orv::InstanceDataCollection *data)
{
    Collection collection;
    if (!data)
        return collection;
    collection.isPresent = true;
    collection.name = data->name();
    for (const Orv::InstanceData &record : data->records())
        collection.records.push_back(recordOf(record));
    return collection;
}

Bundle bundleOf(const Orv::GPUModel &model, int index)
{
    const Orv::DrawBuffers &drawn = *model.bundle(index);
    Bundle bundle;
    bundle.key = model.key(index);
    bundle.instanceCount = model.instanceCount(index);
    bundle.primitiveType = drawn.primitiveType();
    bundle.vertexCount = drawn.vertexCount();
    bundle.indexType = drawn.indexType();
    bundle.indices = indicesOf(drawn);
    for (const auto &attribute : drawn.VAO()->attributes()) {
        EXPECT_EQ(attribute.buffer->target(), GLenum(GL_ARRAY_BUFFER));
        bundle.attributes[attribute.name] = {attribute.components, attribute.type,
                                             downloaded<float>(attribute.buffer)};
    }
    for (int slot = 0; slot < drawn.commands().size(); ++slot) {
        const Orv::DrawElementsIndirectCommand &command = drawn.commands()[slot];
        bundle.commands.push_back({command.count, command.instanceCount, command.firstIndex,
                                   command.baseVertex, command.baseInstance,
                                   model.materialName(index, slot), model.objectName(index, slot)});
    }
    bundle.materials = collectionOf(model.materials(index));
    bundle.instances = collectionOf(model.instances(index));
    return bundle;
}

} // namespace

std::vector<Bundle> readBack(const Orv::GPUModel &model)
{
    std::vector<Bundle> bundles;
    for (int i = 0; i < model.bundleCount(); ++i)
        bundles.push_back(bundleOf(model, i));
    return bundles;
}

UploadedModel readBackFrom(const std::function<Orv::GPUModel *(QString &error)> &load)
{
    const MessageCapture capture;
    UploadedModel result;
    const Orv::GPUModel *const model = load(result.error);
    result.isNull = !model;
    result.messages = withoutAddresses(capture.messages());
    if (model)
        result.bundles = readBack(*model);
    return result;
}

UploadedModel loadWithLibrary(const QString &fileName)
{
    std::unique_ptr<Orv::GPUModel> model;
    return readBackFrom([&](QString &error) {
        model.reset(Orv::loadModelFromOBJFile(fileName, error));
        return model.get();
    });
}

} // namespace OrvTest
