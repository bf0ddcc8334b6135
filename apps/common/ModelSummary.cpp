#include "ModelSummary.h"

#include <OrvGL/DrawBuffers.h>
#include <OrvModel/PreparedModel.h>

#include <QtCore/QFileInfo>
#include <QtCore/QtDebug>

#include <algorithm>

namespace Halvard::Orv::Apps {

namespace {

/// Of what is not to be looked for, not even whether it exists is told.
bool isThere(const QString &path, const SummaryPaths &paths)
{
    if (path.contains(QChar::Null))
        return false;
    const QString objection = paths.objection ? paths.objection(path) : QString();
    if (objection.isEmpty())
        return QFileInfo(path).isFile();
    qWarning().noquote() << QStringLiteral("The texture '%1' %2.").arg(path, objection);
    return false;
}

/// Only those in files: plain colours are nothing to look for.
std::vector<ModelSummary::Texture> texturesOf(const InstanceData &record, const SummaryPaths &paths)
{
    std::vector<ModelSummary::Texture> textures;
    for (const QString &member : record.members()) {
        const QString path = record.texturePath(member);
        if (!path.isNull())
            textures.push_back(
                {member, paths.shown ? paths.shown(path) : path, isThere(path, paths)});
    }
    std::sort(textures.begin(), textures.end(),
              [](const auto &a, const auto &b) { return a.member < b.member; });
    return textures;
}

void addCommands(ModelSummary &summary, const PreparedModel &model, const SummaryPaths &paths)
{
    const QVector<PreparedModel::Command> commands = model.commands();
    for (int i = 0; i < commands.size(); ++i) {
        ModelSummary::Material material;
        material.name = commands.at(i).material;
        material.triangles = commands.at(i).indexCount / 3;
        material.textures = texturesOf(model.material(i), paths);
        summary.triangles += material.triangles;
        summary.materials.push_back(std::move(material));
    }
    summary.commands = quint64(commands.size());
    summary.bundles = commands.isEmpty() ? 0 : 1; // all groups of a file are batched together
}

/// Indices of 16 bits suffice for that many vertices.
qint64 bytesPerIndex(quint32 vertexCount)
{
    constexpr quint32 MaxVerticesFor16Bit = 65534;
    return vertexCount <= MaxVerticesFor16Bit ? 2 : 4;
}

void addBytes(ModelSummary::GPUBytes &bytes, const PreparedModel &model)
{
    bytes.indices = qint64(model.indexCount()) * bytesPerIndex(model.vertexCount());
    bytes.commands = qint64(model.commands().size()) * qint64(sizeof(DrawElementsIndirectCommand));
    for (const PreparedModel::Attribute &attribute : model.attributes())
        bytes.attributes.emplace_back(attribute.name, qint64(model.vertexCount()) *
                                                          attribute.components *
                                                          qint64(sizeof(float)));
    std::sort(bytes.attributes.begin(), bytes.attributes.end());
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
    const PreparationReport::Stages &stages = report.stages;
    return nanoseconds - (stages.read + stages.weld + stages.triangulate + stages.normals);
}

ModelSummary summarize(const PreparedModel &model, const SummaryPaths &paths)
{
    ModelSummary summary;
    summary.report = model.report();
    summary.minimum = model.minimum();
    summary.maximum = model.maximum();
    addCommands(summary, model, paths);
    addBytes(summary.gpuBytes, model);
    return summary;
}

} // namespace Halvard::Orv::Apps
