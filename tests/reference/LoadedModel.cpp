#include "reference/LoadedModel.h"

#include <OrvModel/ModelLoading.h>

#include <OrvCore/InstanceData.h>
#include <OrvCore/InstanceDataCollection.h>
#include <OrvGL/BufferObject.h>
#include <OrvGL/DrawBuffers.h>
#include <OrvGL/GPUModel.h>
#include <OrvGL/OpenGLFunctions.h>
#include <OrvGL/VertexArrayObject.h>

#include <cstring>
#include <memory>

namespace OrvReference {

namespace Orv = Halvard::Orv;

namespace {

template <typename Index>
std::vector<quint32> widened(const QByteArray &bytes)
{
    std::vector<quint32> indices;
    for (int i = 0; i + static_cast<int>(sizeof(Index)) <= bytes.size(); i += sizeof(Index)) {
        Index index;
        std::memcpy(&index, bytes.constData() + i, sizeof index);
        indices.push_back(index);
    }
    return indices;
}

/// The indices; one more than there are when the bundle states another number of them than its
/// buffer holds, so that the comparison notices.
std::vector<quint32> indicesOf(const Orv::DrawBuffers &bundle)
{
    const QByteArray bytes = bundle.indexBuffer()->download();
    std::vector<quint32> indices =
        bundle.indexType() == GL_UNSIGNED_SHORT ? widened<quint16>(bytes) : widened<quint32>(bytes);
    const bool isElementBuffer = bundle.indexBuffer()->target() == GL_ELEMENT_ARRAY_BUFFER;
    if (static_cast<int>(indices.size()) != bundle.indexCount() || !isElementBuffer)
        indices.push_back(0xffffffffu);
    return indices;
}

Record recordOf(const Orv::InstanceData &data)
{
    Record record{data.name(), {}};
    const QStringList names = data.members();
    for (const QString &name : names)
        record.members.push_back(
            {name, data.value(name), data.texturePath(name), data.texture(name) != nullptr});
    return record;
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
        const bool isArrayBuffer = attribute.buffer->target() == GL_ARRAY_BUFFER;
        bundle.attributes[attribute.name] = {attribute.components,
                                             isArrayBuffer ? attribute.type : 0u,
                                             attribute.buffer->download()};
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

UploadedModel loadWithLibrary(const QString &fileName)
{
    const OrvTest::MessageCapture capture;
    UploadedModel result;
    const std::unique_ptr<Orv::GPUModel> model(Orv::loadModelFromOBJFile(fileName, result.error));
    result.isNull = !model;
    for (int i = 0; model && i < model->bundleCount(); ++i)
        result.bundles.push_back(bundleOf(*model, i));
    result.messages = withoutAddresses(capture.messages());
    return result;
}

} // namespace OrvReference
