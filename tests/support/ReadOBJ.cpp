#include "support/ReadOBJ.h"

#include "support/ModelBuilderInspector.h"
#include "support/StreamContents.h"

#include "Libraries/MaterialLibraries.h"

#include <OrvCore/InstanceData.h>
#include <OrvModel/ModelLoading.h>
#include <OrvModel/OBJReader.h>

#include <QtCore/QBuffer>
#include <QtCore/QTextStream>

#include <algorithm>
#include <sstream>

namespace OrvTest {

using namespace Halvard::Orv;
using Inspector = ModelBuilderInspector;

namespace {

constexpr unsigned typeOfFloat = 0x1406;

QString defaultMaterial()
{
    return QStringLiteral("<default>");
}

/// The rules of loading word for word, a line at a time.
class LinePouring
{
public:
    explicit LinePouring(ModelBuilder &builder) : _builder(builder) {}

    /// False when a library is missing.
    bool take(const OBJReader &reader)
    {
        switch (reader.getLineType()) {
        case OBJReader::LINE_V:
            takeValue("va_Vertex", 3, reader.getV());
            break;
        case OBJReader::LINE_VN:
            takeValue("va_Normal", 3, reader.getVn());
            break;
        case OBJReader::LINE_VT:
            takeValue("va_TexCoord", 2, reader.getVt());
            break;
        case OBJReader::LINE_F:
            takeFace(reader);
            break;
        case OBJReader::LINE_MTLLIB:
            return loadMaterialsFromMTLFile(reader.getMtllibPath(), _builder);
        case OBJReader::LINE_USEMTL:
            _material = reader.getUsemtlName();
            break;
        default:
            break;
        }
        return true;
    }

private:
    void takeValue(const char *attribute, int components, const float *values)
    {
        const auto name = QLatin1String(attribute);
        if (!_builder.hasVertexAttribute(name))
            _builder.createVertexAttribute(name, components, typeOfFloat, 0, 0);
        _builder.addValuesToVertexAttribute(name, static_cast<unsigned long>(components), values,
                                            typeOfFloat);
    }

    void takeIndex(const char *attribute, int index)
    {
        const auto unsignedIndex = static_cast<unsigned>(index);
        _builder.addIndicesToVertexAttribute(QLatin1String(attribute), 1, &unsignedIndex);
    }

    void takeFace(const OBJReader &reader)
    {
        const auto count = static_cast<unsigned>(reader.getNumVertices());
        _builder.addVertexCountsToFaces(1, &count);
        for (int i = 0; i < reader.getNumVertices(); ++i) {
            takeIndex("va_Vertex", reader.getVertex(i).v);
            takeIndex("va_Normal", reader.getVertex(i).vn);
            takeIndex("va_TexCoord", reader.getVertex(i).vt);
        }
        _builder.addFacesToMaterialGroup(_material, 1, &_face, QString());
        ++_face;
    }

    ModelBuilder &_builder;
    QString _material = defaultMaterial();
    unsigned _face = 0;
};

std::vector<std::uint32_t> unsignedValues(const QSharedPointer<ModelDataStream> &stream)
{
    return stream ? uints(stream) : std::vector<std::uint32_t>();
}

ReadAttribute attributeOf(const ModelBuilder &builder, const char *name)
{
    const auto attribute = Inspector::vertexAttribute(builder, QLatin1String(name));
    return {unsignedValues(attribute.values), unsignedValues(attribute.indices)};
}

void readMaterials(ModelBuilder &builder, ReadOBJ &result)
{
    const auto &groups = Inspector::materialGroups(builder);
    for (auto group = groups.begin(); group != groups.end(); ++group)
        result.materialIds[group.key().toStdString()] = group->id;
}

void readGroups(ModelBuilder &builder, ReadOBJ &result)
{
    const auto &groups = Inspector::materialGroups(builder);
    for (auto group = groups.begin(); group != groups.end(); ++group) {
        if (!group->faces->isEmpty())
            result.groups.emplace_back(group.key().toStdString(), uints(group->faces));
    }
    std::sort(result.groups.begin(), result.groups.end(),
              [](const auto &a, const auto &b) { return a.second.front() < b.second.front(); });
}

ReadAttribute plain(const OBJAttribute &attribute)
{
    ReadAttribute result;
    result.values.resize(attribute.values.size());
    if (!result.values.empty())
        std::memcpy(result.values.data(), attribute.values.data(), 4 * result.values.size());
    const quint32 *const indices = attribute.indices.data();
    result.indices.assign(indices, indices + attribute.indices.size());
    return result;
}

std::vector<std::uint32_t> plain(const CornerCounts &counts)
{
    std::vector<std::uint32_t> result;
    std::size_t large = 0;
    for (std::size_t i = 0; i < counts.small.size(); ++i) {
        const bool isLarge = counts.small[i] == CornerCounts::Escape;
        result.push_back(isLarge ? counts.large[large++] : counts.small[i]);
    }
    EXPECT_EQ(large, counts.large.size());
    return result;
}

/// Checks what a run says of its begin, and gives its faces.
void appendRun(const FaceRun &run, const std::vector<std::uint32_t> &cornerCounts,
               std::vector<std::uint32_t> &faces)
{
    std::uint32_t corner = 0;
    std::uint32_t large = 0;
    for (std::uint32_t face = 0; face < run.firstFace; ++face) {
        corner += cornerCounts[face];
        large += cornerCounts[face] >= CornerCounts::Escape ? 1 : 0;
    }
    EXPECT_EQ(run.firstCorner, corner);
    EXPECT_EQ(run.firstLarge, large);
    EXPECT_GT(run.faceCount, 0u);
    if (!faces.empty()) {
        EXPECT_GT(run.firstFace, faces.back() + 1) << "runs that touch are one run";
    }
    for (std::uint32_t i = 0; i < run.faceCount; ++i)
        faces.push_back(run.firstFace + i);
}

ReadOBJ plain(const OBJGeometry &geometry)
{
    ReadOBJ result;
    result.positions = plain(geometry.positions);
    result.normals = plain(geometry.normals);
    result.texCoords = plain(geometry.texCoords);
    result.cornerCounts = plain(geometry.cornerCounts);
    std::uint32_t corners = 0;
    for (const std::uint32_t count : result.cornerCounts)
        corners += count;
    EXPECT_EQ(geometry.cornerCount, corners);
    for (const FaceGroup &group : geometry.groups) {
        std::vector<std::uint32_t> faces;
        for (const FaceRun &run : group.runs)
            appendRun(run, result.cornerCounts, faces);
        result.groups.emplace_back(group.material.toStdString(), faces);
    }
    return result;
}

template <typename Item>
std::string listDifference(const char *name, const std::vector<Item> &bytes,
                           const std::vector<Item> &lines)
{
    std::ostringstream text;
    for (std::size_t i = 0; i < std::min(bytes.size(), lines.size()); ++i) {
        if (bytes[i] != lines[i]) {
            text << name << " " << i << ": " << ::testing::PrintToString(bytes[i]) << " as bytes, "
                 << ::testing::PrintToString(lines[i]) << " by lines; ";
            return text.str();
        }
    }
    if (bytes.size() != lines.size())
        text << name << ": " << bytes.size() << " as bytes, " << lines.size() << " by lines; ";
    return text.str();
}

std::string attributeDifference(const std::string &name, const ReadAttribute &bytes,
                                const ReadAttribute &lines)
{
    return listDifference((name + " value").c_str(), bytes.values, lines.values) +
           listDifference((name + " index").c_str(), bytes.indices, lines.indices);
}

} // namespace

ReadOBJ readByLines(QIODevice &device, const QString &baseDir)
{
    EXPECT_TRUE(device.open(QIODevice::ReadOnly | QIODevice::Text));
    ModelBuilder builder({}, 0);
    builder.createMaterialGroup(defaultMaterial(), InstanceData(), -1, 0);
    LinePouring pouring(builder);
    QTextStream stream(&device);
    OBJReader reader(stream);
    reader.setBaseDir(baseDir);
    for (; reader.valid(); reader.next()) {
        if (reader.parseLine() && !pouring.take(reader)) {
            ReadOBJ missing;
            missing.outcome = OBJScanOutcome::LibraryMissing;
            missing.libraryPath = reader.getMtllibPath().toStdString();
            return missing;
        }
    }
    ReadOBJ result;
    result.positions = attributeOf(builder, "va_Vertex");
    result.normals = attributeOf(builder, "va_Normal");
    result.texCoords = attributeOf(builder, "va_TexCoord");
    result.cornerCounts = uints(Inspector::verticesPerFace(builder));
    readGroups(builder, result);
    readMaterials(builder, result);
    return result;
}

ReadOBJ readAsBytes(QIODevice &device, const QString &baseDir, const OBJScanLimits &limits)
{
    EXPECT_TRUE(device.open(QIODevice::ReadOnly | QIODevice::Text));
    ModelBuilder builder({}, 0);
    builder.createMaterialGroup(defaultMaterial(), InstanceData(), -1, 0);
    MaterialLibraries libraries(builder);
    OBJGeometry geometry;
    QString libraryPath;
    const auto outcome = scanOBJFile(device, baseDir, libraries, geometry, libraryPath, limits);
    EXPECT_TRUE(device.isTextModeEnabled());
    ReadOBJ result;
    if (outcome == OBJScanOutcome::Finished)
        result = plain(geometry);
    result.outcome = outcome;
    result.libraryPath = libraryPath.toStdString();
    if (outcome == OBJScanOutcome::Finished)
        readMaterials(builder, result);
    return result;
}

ReadOBJ readByLines(const QByteArray &text)
{
    QBuffer buffer;
    buffer.setData(text);
    return readByLines(buffer);
}

ReadOBJ readAsBytes(const QByteArray &text, const OBJScanLimits &limits)
{
    QBuffer buffer;
    buffer.setData(text);
    return readAsBytes(buffer, {}, limits);
}

std::string difference(const ReadOBJ &bytes, const ReadOBJ &lines)
{
    std::ostringstream text;
    if (bytes.outcome != lines.outcome)
        text << "outcome " << static_cast<int>(bytes.outcome) << " as bytes, "
             << static_cast<int>(lines.outcome) << " by lines; ";
    if (bytes.libraryPath != lines.libraryPath)
        text << "library '" << bytes.libraryPath << "' as bytes, '" << lines.libraryPath
             << "' by lines; ";
    text << attributeDifference("position", bytes.positions, lines.positions)
         << attributeDifference("normal", bytes.normals, lines.normals)
         << attributeDifference("texture coordinate", bytes.texCoords, lines.texCoords)
         << listDifference("corner count of face", bytes.cornerCounts, lines.cornerCounts)
         << listDifference("group", bytes.groups, lines.groups);
    if (bytes.materialIds != lines.materialIds)
        text << "other materials";
    return text.str();
}

std::string printable(const QByteArray &text)
{
    constexpr int longest = 2000;
    std::ostringstream printed;
    for (const char c : text.left(longest)) {
        if (c == '\n')
            printed << "\\n\n";
        else if (c >= ' ' && c <= '~')
            printed << c;
        else
            printed << "\\x" << std::hex << static_cast<int>(static_cast<unsigned char>(c)) << ' ';
    }
    if (text.size() > longest)
        printed << "... " << std::dec << text.size() << " bytes";
    return printed.str();
}

} // namespace OrvTest
