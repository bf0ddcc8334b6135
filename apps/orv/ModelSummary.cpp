#include "ModelSummary.h"

#include "Confinement.h"

#include <OrvCore/InstanceDataCollection.h>
#include <OrvGL/BufferObject.h>
#include <OrvGL/DrawBuffers.h>
#include <OrvGL/GPUModel.h>
#include <OrvGL/VertexArrayObject.h>
#include <render/ModelGeometry.h>

#include <QtCore/QFileInfo>
#include <QtCore/QSet>
#include <QtCore/QtDebug>

#include <algorithm>

namespace Halvard::Orv::Cli {

namespace {

/// What lies outside of --within is not looked for: not even whether it exists is told.
bool isThere(const QString &path)
{
    if (path.contains(QChar::Null))
        return false;
    const QString objection = Confinement::objection(path);
    if (objection.isEmpty())
        return QFileInfo(path).isFile();
    qWarning("The texture '%s' %s.", qUtf8Printable(path), qUtf8Printable(objection));
    return false;
}

/// Only those in files: plain colours are nothing to look for.
std::vector<ModelSummary::Texture> texturesOf(const InstanceData &record)
{
    std::vector<ModelSummary::Texture> textures;
    for (const QString &member : record.members()) {
        const QString path = record.texturePath(member);
        if (!path.isNull())
            textures.push_back({member, Confinement::relative(path), isThere(path)});
    }
    std::sort(textures.begin(), textures.end(),
              [](const auto &a, const auto &b) { return a.member < b.member; });
    return textures;
}

void addCommands(ModelSummary &summary, const GPUModel &model, int bundle)
{
    const InstanceDataCollection *records = model.materials(bundle);
    int slot = 0;
    for (const DrawElementsIndirectCommand &command : model.bundle(bundle)->commands()) {
        ModelSummary::Material material;
        material.name = model.materialName(bundle, slot);
        material.triangles = quint64(command.count / 3) * command.instanceCount;
        if (records && slot < records->records().size())
            material.textures = texturesOf(records->records()[slot]);
        summary.triangles += material.triangles;
        summary.materials.push_back(std::move(material));
        ++summary.commands;
        ++slot;
    }
}

void addBytes(ModelSummary::GPUBytes &bytes, const DrawBuffers &bundle,
              QSet<const BufferObject *> &counted)
{
    const auto sizeOnce = [&counted](const BufferObject *buffer) -> qint64 {
        if (!buffer || counted.contains(buffer))
            return 0;
        counted.insert(buffer);
        return buffer->byteCount();
    };
    bytes.indices += sizeOnce(bundle.indexBuffer().data());
    bytes.commands +=
        qint64(bundle.commands().size()) * qint64(sizeof(DrawElementsIndirectCommand));
    if (!bundle.VAO())
        return;
    for (const VertexArrayObject::Attribute &attribute : bundle.VAO()->attributes()) {
        if (const qint64 size = sizeOnce(attribute.buffer.data()))
            bytes.attributes.emplace_back(attribute.name, size);
    }
}

} // namespace

qint64 ModelSummary::GPUBytes::total() const
{
    qint64 sum = indices + commands;
    for (const auto &attribute : attributes)
        sum += attribute.second;
    return sum;
}

qint64 ModelSummary::otherNanoseconds() const
{
    const LoadReport::Stages &stages = report.stages;
    return nanoseconds -
           (stages.read + stages.weld + stages.triangulate + stages.normals + stages.gl);
}

ModelSummary summarize(const GPUModel &model)
{
    ModelSummary summary;
    QSet<const BufferObject *> counted;
    summary.bundles = quint64(model.bundleCount());
    summary.bounds = Render::readGeometry(model).bounds;
    for (int i = 0; i < model.bundleCount(); ++i) {
        addCommands(summary, model, i);
        addBytes(summary.gpuBytes, *model.bundle(i), counted);
    }
    std::sort(summary.gpuBytes.attributes.begin(), summary.gpuBytes.attributes.end());
    return summary;
}

} // namespace Halvard::Orv::Cli
