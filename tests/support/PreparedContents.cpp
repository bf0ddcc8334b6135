#include "support/PreparedContents.h"

#include <OrvGL/OpenGLFunctions.h>
#include <OrvModel/PreparedModel.h>

namespace OrvTest {

using namespace Halvard::Orv;

namespace {

/// The record that the loader gives to each command: the model stands where the file puts it.
Record identityRecord()
{
    const float identity[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    const QByteArray bytes(reinterpret_cast<const char *>(identity), sizeof identity);
    Record record;
    record.plan = QStringLiteral("InstanceInfo");
    for (const char *name : {"ModelMatrix", "PreviousModelMatrix", "ModelNormalMatrix"})
        record.members.push_back({QLatin1String(name), bytes, {}, false});
    return record;
}

Bundle bundleOf(const PreparedModel &model)
{
    Bundle bundle;
    bundle.primitiveType = GL_TRIANGLES;
    bundle.vertexCount = model.vertexCount();
    bundle.indexType = model.vertexCount() <= 65534 ? GL_UNSIGNED_SHORT : GL_UNSIGNED_INT;
    bundle.indices.assign(model.indices(), model.indices() + model.indexCount());
    for (const PreparedModel::Attribute &attribute : model.attributes()) {
        const size_t count = size_t(model.vertexCount()) * size_t(attribute.components);
        bundle.attributes[attribute.name] = {
            attribute.components, GL_FLOAT, {attribute.values, attribute.values + count}};
    }
    for (const PreparedModel::Command &prepared : model.commands()) {
        Command command;
        command.count = prepared.indexCount;
        command.firstIndex = prepared.firstIndex;
        command.material = prepared.material;
        bundle.materials.records.push_back(recordOf(model.material(int(bundle.commands.size()))));
        bundle.instances.records.push_back(identityRecord());
        bundle.commands.push_back(command);
    }
    bundle.materials.isPresent = bundle.instances.isPresent = !bundle.commands.empty();
    if (!bundle.commands.empty()) {
        bundle.materials.name = bundle.materials.records.front().plan;
        bundle.instances.name = QStringLiteral("InstanceInfo");
    }
    return bundle;
}

} // namespace

UploadedModel contentsOf(const PreparedModel &model)
{
    UploadedModel contents;
    if (!model.commands().isEmpty())
        contents.bundles.push_back(bundleOf(model));
    return contents;
}

} // namespace OrvTest
