#include "Commands.h"

#include "CommandLine.h"
#include "Confinement.h"
#include "JSONWriter.h"
#include "LoadedModel.h"
#include "OutputFile.h"
#include "Progress.h"

#include <OrvCore/InstanceDataCollection.h>
#include <OrvGL/BufferObject.h>
#include <OrvGL/DrawBuffers.h>
#include <OrvGL/GPUModel.h>
#include <OrvGL/OpenGLFunctions.h>
#include <OrvGL/VertexArrayObject.h>
#include <render/ModelGeometry.h>

#include <QtCore/QStringList>

#include <algorithm>
#include <cstring>

namespace Halvard::Orv::Cli {

namespace {

template <typename Number>
void writeNumbers(JSONWriter &json, const QByteArray &bytes, int perLine)
{
    json.beginArray(perLine);
    for (int at = 0; at + int(sizeof(Number)) <= bytes.size(); at += int(sizeof(Number))) {
        Number number;
        std::memcpy(&number, bytes.constData() + at, sizeof(Number));
        json.value(number);
    }
    json.endArray();
}

/// One vertex to a line. Empty for types that no vertex attribute of a loader has.
void writeValues(JSONWriter &json, const VertexArrayObject::Attribute &attribute)
{
    const QByteArray bytes = attribute.buffer ? attribute.buffer->download() : QByteArray();
    const int perLine = std::max(attribute.components, 1);
    switch (attribute.type) {
    case GL_BYTE:
        return writeNumbers<qint8>(json, bytes, perLine);
    case GL_UNSIGNED_BYTE:
        return writeNumbers<quint8>(json, bytes, perLine);
    case GL_SHORT:
        return writeNumbers<qint16>(json, bytes, perLine);
    case GL_UNSIGNED_SHORT:
        return writeNumbers<quint16>(json, bytes, perLine);
    case GL_INT:
        return writeNumbers<qint32>(json, bytes, perLine);
    case GL_UNSIGNED_INT:
        return writeNumbers<quint32>(json, bytes, perLine);
    case GL_FLOAT:
        return writeNumbers<float>(json, bytes, perLine);
    case GL_DOUBLE:
        return writeNumbers<double>(json, bytes, perLine);
    default:
        json.beginArray();
        json.endArray();
    }
}

/// By name: the order of registration is that of a hash table.
void writeAttributes(JSONWriter &json, const DrawBuffers *bundle)
{
    QVector<VertexArrayObject::Attribute> attributes;
    if (bundle && bundle->VAO())
        attributes = bundle->VAO()->attributes();
    std::sort(attributes.begin(), attributes.end(),
              [](const auto &a, const auto &b) { return a.name < b.name; });

    json.key("attributes");
    json.beginObject();
    for (const VertexArrayObject::Attribute &attribute : attributes) {
        json.key(attribute.name);
        json.beginObject();
        json.member("components", attribute.components);
        json.member("type", attribute.type);
        json.key("values");
        writeValues(json, attribute);
        json.endObject();
    }
    json.endObject();
}

void writeIndices(JSONWriter &json, const DrawBuffers *bundle)
{
    json.key("indices");
    json.beginArray(3);
    if (bundle) {
        for (const quint32 index : Render::readIndices(*bundle))
            json.value(index);
    }
    json.endArray();
}

void writeCommands(JSONWriter &json, const GPUModel &model, int bundle)
{
    json.key("commands");
    json.beginArray();
    int slot = 0;
    for (const DrawElementsIndirectCommand &command : model.bundle(bundle)->commands()) {
        json.beginObject();
        json.member("count", command.count);
        json.member("instanceCount", command.instanceCount);
        json.member("firstIndex", command.firstIndex);
        json.member("baseVertex", command.baseVertex);
        json.member("baseInstance", command.baseInstance);
        json.member("material", model.materialName(bundle, slot));
        json.member("object", model.objectName(bundle, slot));
        json.endObject();
        ++slot;
    }
    json.endArray();
}

/// All values that this project's records hold are of floats.
void writeRecord(JSONWriter &json, const InstanceData &record)
{
    QStringList members = record.members();
    members.sort();
    json.beginObject();
    json.member("name", record.name());
    json.key("values");
    json.beginObject();
    for (const QString &member : members) {
        const QByteArray bytes = record.value(member);
        if (bytes.isEmpty())
            continue;
        json.key(member);
        writeNumbers<float>(json, bytes, JSONWriter::OneLine);
    }
    json.endObject();
    json.key("textures");
    json.beginObject();
    for (const QString &member : members) {
        if (!record.value(member).isEmpty())
            continue;
        const QString path = record.texturePath(member);
        json.key(member);
        json.value(path.isNull() ? QStringLiteral("texture") : Confinement::relative(path));
    }
    json.endObject();
    json.endObject();
}

void writeRecords(JSONWriter &json, const char *key, const InstanceDataCollection *collection)
{
    json.key(key);
    if (!collection) {
        json.null();
        return;
    }
    json.beginArray();
    for (const InstanceData &record : collection->records())
        writeRecord(json, record);
    json.endArray();
}

void writeBundle(JSONWriter &json, const GPUModel &model, int index)
{
    const DrawBuffers &bundle = *model.bundle(index);
    json.beginObject();
    json.member("key", quint64(model.key(index)));
    json.member("primitiveType", bundle.primitiveType());
    json.member("vertexCount", bundle.vertexCount());
    json.member("indexCount", bundle.indexCount());
    json.member("indexType", bundle.indexType());
    writeCommands(json, model, index);
    writeRecords(json, "materials", model.materials(index));
    writeRecords(json, "instances", model.instances(index));
    json.endObject();
}

void writeModel(JSONWriter &json, const GPUModel &model)
{
    // All bundles of one upload share the buffers.
    const DrawBuffers *const first = model.bundle(0);
    json.beginObject();
    json.member("vertexCount", first ? first->vertexCount() : 0);
    json.member("indexType", first ? first->indexType() : unsigned(GL_UNSIGNED_SHORT));
    writeIndices(json, first);
    writeAttributes(json, first);
    json.key("bundles");
    json.beginArray();
    for (int i = 0; i < model.bundleCount(); ++i)
        writeBundle(json, model, i);
    json.endArray();
    json.endObject();
}

} // namespace

ExitStatus dumpCommand(const QStringList &arguments)
{
    CommandLine line(QStringLiteral("dump"), QStringLiteral("MODEL [options]"),
                     QStringLiteral("Prints the uploaded model as JSON, read back from the buffers "
                                    "on the GPU."));
    line.addOption({{QStringLiteral("o"), QStringLiteral("output")},
                    QStringLiteral("Write to this file instead of stdout, which is '-'."),
                    QStringLiteral("FILE")});
    if (const auto status = line.parse(arguments))
        return *status;
    QString output = line.value(QStringLiteral("output"));
    if (output == QLatin1String("-")) {
        output.clear();
    } else if (line.isSet(QStringLiteral("output"))) {
        if (output.isEmpty())
            return line.wrongUsage(QStringLiteral("The output file has no name."));
        const QString obstacle = OutputFile::obstacle(output, line.model());
        if (!obstacle.isEmpty()) {
            printError(obstacle);
            return CannotRun;
        }
    }

    LoadedModel loaded;
    if (const ExitStatus status = loaded.load(line.model(), line.threads()); status != Fine)
        return status;
    return OutputFile::write(output, [&loaded](QIODevice &device) {
        const Progress progress(QStringLiteral("writing"));
        JSONWriter json(device);
        writeModel(json, loaded.model());
        json.finish();
    });
}

} // namespace Halvard::Orv::Cli
