#include "ModelSummary.h"

#include "JSONWriter.h"

namespace Halvard::Orv::Cli {

namespace {

template <typename Value>
void write(JSONWriter &json, const char *key, const Value &value)
{
    json.key(key);
    json.value(value);
}

void writeFile(JSONWriter &json, const ModelSummary &summary)
{
    const LoadReport &report = summary.report;
    json.key("file");
    json.beginObject();
    write(json, "name", summary.fileName);
    write(json, "bytes", summary.fileBytes);
    write(json, "positions", report.positions);
    write(json, "normals", report.normals);
    write(json, "texCoords", report.texCoords);
    write(json, "faces", report.faces);
    json.key("facesByCornerCount");
    json.beginObject();
    for (auto it = report.facesByCornerCount.begin(); it != report.facesByCornerCount.end(); ++it) {
        json.key(QString::number(it.key()));
        json.value(it.value());
    }
    json.endObject();
    write(json, "corners", report.corners);
    json.endObject();
}

void writeBytes(JSONWriter &json, const ModelSummary::GPUBytes &bytes)
{
    json.key("bytes");
    json.beginObject();
    write(json, "total", bytes.total());
    write(json, "indices", bytes.indices);
    json.key("attributes");
    json.beginObject();
    for (const auto &attribute : bytes.attributes) {
        json.key(attribute.first);
        json.value(attribute.second);
    }
    json.endObject();
    write(json, "commands", bytes.commands);
    json.endObject();
}

void writeGPU(JSONWriter &json, const ModelSummary &summary)
{
    json.key("gpu");
    json.beginObject();
    write(json, "verticesBeforeWelding", summary.report.gpuVerticesBeforeWelding);
    write(json, "verticesAfterWelding", summary.report.gpuVertices);
    write(json, "triangles", summary.triangles);
    write(json, "bundles", summary.bundles);
    write(json, "commands", summary.commands);
    writeBytes(json, summary.gpuBytes);
    json.endObject();
}

void writeMaterials(JSONWriter &json, const ModelSummary &summary)
{
    json.key("materials");
    json.beginArray();
    for (const ModelSummary::Material &material : summary.materials) {
        json.beginObject();
        write(json, "name", material.name);
        write(json, "triangles", material.triangles);
        json.key("textures");
        json.beginObject();
        for (const ModelSummary::Texture &texture : material.textures) {
            json.key(texture.member);
            json.beginObject();
            write(json, "path", texture.path);
            write(json, "exists", texture.exists);
            json.endObject();
        }
        json.endObject();
        json.endObject();
    }
    json.endArray();
}

void writePoint(JSONWriter &json, const char *key, const QVector3D &point)
{
    json.key(key);
    json.beginArray(JSONWriter::oneLine);
    for (int axis = 0; axis < 3; ++axis)
        json.value(point[axis]);
    json.endArray();
}

void writeBounds(JSONWriter &json, const Render::Bounds &bounds)
{
    json.key("boundingBox");
    if (bounds.isEmpty()) {
        json.null();
        return;
    }
    json.beginObject();
    writePoint(json, "minimum", bounds.minimum());
    writePoint(json, "maximum", bounds.maximum());
    json.endObject();
}

void writeTimes(JSONWriter &json, const ModelSummary &summary)
{
    const LoadReport::Stages &stages = summary.report.stages;
    json.key("nanoseconds");
    json.beginObject();
    write(json, "total", summary.nanoseconds);
    write(json, "read", stages.read);
    write(json, "weld", stages.weld);
    write(json, "triangulate", stages.triangulate);
    write(json, "normals", stages.normals);
    write(json, "gl", stages.gl);
    write(json, "other", summary.otherNanoseconds());
    json.endObject();
}

} // namespace

bool writeSummaryJSON(QIODevice &device, const ModelSummary &summary)
{
    JSONWriter json(device);
    json.beginObject();
    writeFile(json, summary);
    writeGPU(json, summary);
    writeMaterials(json, summary);
    writeBounds(json, summary.bounds);
    writeTimes(json, summary);
    json.endObject();
    return json.finish();
}

} // namespace Halvard::Orv::Cli
