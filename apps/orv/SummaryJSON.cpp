#include "SummaryJSON.h"

#include "JSONWriter.h"

namespace Halvard::Orv::Cli {

using Apps::ModelSummary;

namespace {

void writeFile(JSONWriter &json, const ModelSummary &summary,
               const std::vector<UndrawnFaces> &undrawnFaces)
{
    const PreparationReport &report = summary.report;
    json.key("file");
    json.beginObject();
    json.member("name", summary.fileName);
    json.member("bytes", summary.fileBytes);
    json.member("positions", report.positions);
    json.member("normals", report.normals);
    json.member("texCoords", report.texCoords);
    json.member("faces", report.faces);
    json.key("facesByCornerCount");
    json.beginObject();
    for (auto it = report.facesByCornerCount.begin(); it != report.facesByCornerCount.end(); ++it) {
        json.key(QString::number(it.key()));
        json.value(it.value());
    }
    json.endObject();
    json.member("corners", report.corners);
    json.member("facesNotDrawn", report.faces - report.facesDrawn);
    json.key("notDrawn");
    json.beginArray();
    for (const UndrawnFaces &faces : undrawnFaces) {
        json.beginObject();
        json.member("reason", faces.reason);
        json.member("subject", faces.subject);
        json.member("line", faces.line);
        json.member("count", faces.count);
        json.endObject();
    }
    json.endArray();
    json.endObject();
}

void writeBytes(JSONWriter &json, const ModelSummary::GPUBytes &bytes)
{
    json.key("bytes");
    json.beginObject();
    json.member("total", bytes.total());
    json.member("indices", bytes.indices);
    json.key("attributes");
    json.beginObject();
    for (const auto &attribute : bytes.attributes) {
        json.key(attribute.first);
        json.value(attribute.second);
    }
    json.endObject();
    json.member("commands", bytes.commands);
    json.endObject();
}

void writeGPU(JSONWriter &json, const ModelSummary &summary)
{
    json.key("gpu");
    json.beginObject();
    json.member("verticesBeforeWelding", summary.report.verticesBeforeWelding);
    json.member("verticesAfterWelding", summary.report.vertices);
    json.member("triangles", summary.triangles);
    json.member("bundles", summary.bundles);
    json.member("commands", summary.commands);
    writeBytes(json, summary.gpuBytes);
    json.endObject();
}

void writeMaterials(JSONWriter &json, const ModelSummary &summary)
{
    json.key("materials");
    json.beginArray();
    for (const ModelSummary::Material &material : summary.materials) {
        json.beginObject();
        json.member("name", material.name);
        json.member("triangles", material.triangles);
        json.key("textures");
        json.beginObject();
        for (const ModelSummary::Texture &texture : material.textures) {
            json.key(texture.member);
            json.beginObject();
            json.member("path", texture.path);
            json.member("exists", texture.exists);
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
    json.beginArray(JSONWriter::OneLine);
    for (int axis = 0; axis < 3; ++axis)
        json.value(point[axis]);
    json.endArray();
}

void writeBounds(JSONWriter &json, const ModelSummary &summary)
{
    json.key("boundingBox");
    if (summary.triangles == 0) {
        json.null();
        return;
    }
    json.beginObject();
    writePoint(json, "minimum", summary.minimum);
    writePoint(json, "maximum", summary.maximum);
    json.endObject();
}

void writeTimes(JSONWriter &json, const ModelSummary &summary)
{
    const PreparationReport::Stages &stages = summary.report.stages;
    json.key("nanoseconds");
    json.beginObject();
    json.member("total", summary.nanoseconds);
    json.member("read", stages.read);
    json.member("weld", stages.weld);
    json.member("triangulate", stages.triangulate);
    json.member("normals", stages.normals);
    json.member("other", summary.otherNanoseconds());
    json.endObject();
}

} // namespace

bool writeSummaryJSON(QIODevice &device, const ModelSummary &summary,
                      const std::vector<UndrawnFaces> &undrawnFaces)
{
    JSONWriter json(device);
    json.beginObject();
    writeFile(json, summary, undrawnFaces);
    writeGPU(json, summary);
    writeMaterials(json, summary);
    writeBounds(json, summary);
    writeTimes(json, summary);
    json.endObject();
    return json.finish();
}

} // namespace Halvard::Orv::Cli
