#include "reference/Reference.h"

#include "reference/FaceTriangles.h"
#include "reference/FileReading.h"
#include "reference/Welding.h"
#include "support/PlainGeometry.h"

#include <QtCore/QtDebug>

namespace OrvReference {

using namespace OrvTest;

namespace {

// OpenGL's numbers: no OpenGL is needed here.
constexpr unsigned Triangles = 4;
constexpr unsigned UnsignedShort = 0x1403;
constexpr unsigned UnsignedInt = 0x1405;
constexpr unsigned Float = 0x1406;

/// Whether there is anything to upload.
bool isValid(const PlainModel &model)
{
    if (model.groups.empty() || model.cornerCounts.empty() || model.attributes.empty())
        return false;
    for (const auto &[name, attribute] : model.attributes) {
        if (attribute.values.empty() || attribute.indices.empty())
            return false;
    }
    return true;
}

void logStatistics(const WeldedModel &welded)
{
    const int before = welded.cornerCount;
    const int after = welded.vertexCount;
    const int percentage = before > 0 ? static_cast<int>(qint64(after) * 100 / before) : 0;
    qDebug("%p Vertices Map %8d -> %8d d %8d (%3d %%) %d", static_cast<const void *>(&welded),
           before, after, before - after, percentage, 4);
}

/// The groups that have faces, in the order of their definition.
std::vector<const PlainGroup *> groupsToDraw(const PlainModel &model)
{
    std::vector<const PlainGroup *> groups;
    for (const PlainGroup &group : model.groups) {
        if (!group.faces.empty())
            groups.push_back(&group);
    }
    return groups;
}

/// The corners of every face, as GPU vertices.
std::vector<std::vector<quint32>> facesOf(const PlainModel &model, const WeldedModel &welded)
{
    std::vector<std::vector<quint32>> faces;
    auto corner = welded.indices.begin();
    for (const quint32 count : model.cornerCounts) {
        faces.emplace_back(corner, corner + count);
        corner += count;
    }
    return faces;
}

Record instanceRecord()
{
    float identity[16] = {};
    for (int i = 0; i < 4; ++i)
        identity[5 * i] = 1.0f;
    const QByteArray bytes(reinterpret_cast<const char *>(identity), sizeof identity);
    Record record{QStringLiteral("InstanceInfo"), {}};
    record.set({QStringLiteral("ModelMatrix"), bytes, {}, false});
    record.set({QStringLiteral("PreviousModelMatrix"), bytes, {}, false});
    record.set({QStringLiteral("ModelNormalMatrix"), bytes, {}, false});
    return record;
}

void addGroup(Bundle &bundle, const PlainGroup &group,
              const std::vector<std::vector<quint32>> &faces, const std::vector<float> &positions)
{
    Command command;
    command.firstIndex = static_cast<quint32>(bundle.indices.size());
    command.material = group.name;
    for (const quint32 face : group.faces) {
        const std::vector<quint32> triangles = triangulateFace(faces[face], positions);
        bundle.indices.insert(bundle.indices.end(), triangles.begin(), triangles.end());
    }
    command.count = static_cast<quint32>(bundle.indices.size()) - command.firstIndex;
    bundle.commands.push_back(command);
    bundle.materials.records.push_back(group.material);
    bundle.instances.records.push_back(instanceRecord());
}

void narrowIndices(Bundle &bundle)
{
    bundle.indexType = UnsignedInt;
    if (bundle.vertexCount > 65534)
        return;
    bundle.indexType = UnsignedShort;
    for (quint32 &index : bundle.indices)
        index &= 0xffffu;
}

Bundle build(const PlainModel &model)
{
    const WeldedModel welded = weld(model);
    logStatistics(welded);
    const std::vector<float> &positions = welded.values.at(QStringLiteral("va_Vertex"));
    const auto faces = facesOf(model, welded);

    Bundle bundle;
    bundle.primitiveType = Triangles;
    bundle.vertexCount = static_cast<unsigned>(welded.vertexCount);
    bundle.materials = {true, QStringLiteral("OBJMaterial"), {}};
    bundle.instances = {true, QStringLiteral("InstanceInfo"), {}};
    for (const PlainGroup *group : groupsToDraw(model))
        addGroup(bundle, *group, faces, positions);

    for (const auto &[name, values] : welded.values)
        bundle.attributes[name] = {model.attributes.at(name).components, Float, values};
    if (model.attributes.count(QStringLiteral("va_Normal")) == 0)
        bundle.attributes[QStringLiteral("va_Normal")] = {
            3, Float, plainVertexNormals(positions, bundle.indices)};
    narrowIndices(bundle);
    return bundle;
}

UploadedModel load(const QString &fileName)
{
    UploadedModel result;
    PlainModel model;
    if (!readOBJFile(fileName, model, result.error)) {
        result.isNull = true;
        return result;
    }
    result.hasGeneratedNormals = model.attributes.count(QStringLiteral("va_Normal")) == 0;
    if (!isValid(model) || model.attributes.count(QStringLiteral("va_Vertex")) == 0)
        return result;
    const Bundle bundle = build(model);
    if (!bundle.commands.empty())
        result.bundles.push_back(bundle);
    return result;
}

} // namespace

UploadedModel loadByReference(const QString &fileName)
{
    const MessageCapture capture;
    UploadedModel result = load(fileName);
    result.messages = withoutAddresses(capture.messages());
    return result;
}

} // namespace OrvReference
