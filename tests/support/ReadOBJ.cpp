#include "support/ReadOBJ.h"

#include "support/BuilderContents.h"
#include "support/ModelDifferences.h"

#include "Libraries/MaterialLibraries.h"
#include <OrvCore/InstanceData.h>
#include <OrvModel/ModelLoading.h>
#include <OrvModel/OBJReader.h>

#include <gtest/gtest.h>

#include <QtCore/QBuffer>
#include <QtCore/QTextStream>

#include <sstream>

namespace OrvTest {

using namespace Halvard::Orv;

namespace {

constexpr unsigned typeOfFloat = 0x1406;

QString defaultMaterial()
{
    return QStringLiteral("<default>");
}

/// The rules of loading word for word, a line at a time.
class LineReading
{
public:
    explicit LineReading(ModelBuilder &builder) : _builder(builder) {}

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

template <typename T>
std::vector<T> contents(const GrowArray<T> &array)
{
    return {array.data(), array.data() + array.size()};
}

/// Adds what the scanner found of an attribute; nothing when it found none.
void addAttribute(PlainModel &model, const char *name, int components,
                  const OBJAttribute &attribute)
{
    if (!attribute.values.isEmpty() || !attribute.indices.isEmpty())
        model.attributes[QLatin1String(name)] = {components, contents(attribute.values),
                                                 contents(attribute.indices)};
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

/// Adds attributes and faces to a model that has its groups already.
void addGeometry(PlainModel &model, const OBJGeometry &geometry)
{
    addAttribute(model, "va_Vertex", 3, geometry.positions);
    addAttribute(model, "va_Normal", 3, geometry.normals);
    addAttribute(model, "va_TexCoord", 2, geometry.texCoords);
    model.cornerCounts = plain(geometry.cornerCounts);
    EXPECT_EQ(geometry.cornerCount, model.cornerCount());
    quint32 nextFirst = 0;
    for (const FaceGroup &faces : geometry.groups) {
        PlainGroup *const group = model.group(faces.material);
        if (!group || faces.runs.empty()) {
            ADD_FAILURE() << "no group or no faces: " << faces.material.toStdString();
            continue;
        }
        EXPECT_TRUE(group->faces.empty()) << "a group that stands twice";
        EXPECT_GE(faces.runs.front().firstFace, nextFirst) << "groups stand by their first face";
        nextFirst = faces.runs.front().firstFace + 1;
        for (const FaceRun &run : faces.runs)
            appendRun(run, model.cornerCounts, group->faces);
    }
}

} // namespace

ReadOBJ readByLines(QIODevice &device, const QString &baseDir)
{
    EXPECT_TRUE(device.open(QIODevice::ReadOnly | QIODevice::Text));
    ModelBuilder builder({}, 0);
    builder.createMaterialGroup(defaultMaterial(), InstanceData(), -1, 0);
    LineReading reading(builder);
    QTextStream stream(&device);
    OBJReader reader(stream);
    reader.setBaseDir(baseDir);
    for (; reader.valid(); reader.next()) {
        if (reader.parseLine() && !reading.take(reader)) {
            ReadOBJ missing;
            missing.outcome = OBJScanOutcome::LibraryMissing;
            missing.libraryPath = reader.getMtllibPath();
            return missing;
        }
    }
    ReadOBJ result;
    result.model = contentsOf(builder);
    return result;
}

ReadOBJ readAsBytes(QIODevice &device, const QString &baseDir, const OBJScanLimits &limits,
                    Work *work)
{
    EXPECT_TRUE(device.isOpen() || device.open(QIODevice::ReadOnly | QIODevice::Text));
    ModelBuilder builder({}, 0);
    builder.createMaterialGroup(defaultMaterial(), InstanceData(), -1, 0);
    MaterialLibraries libraries(builder);
    OBJGeometry geometry;
    ReadOBJ result;
    result.outcome =
        scanOBJFile(device, baseDir, libraries, geometry, result.libraryPath, limits, work);
    EXPECT_TRUE(device.isTextModeEnabled());
    if (result.outcome == OBJScanOutcome::Finished) {
        result.model = contentsOf(builder);
        addGeometry(result.model, geometry);
    }
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

std::vector<std::string> differences(const ReadOBJ &lines, const ReadOBJ &bytes)
{
    std::vector<std::string> texts = differences(lines.model, bytes.model);
    if (bytes.outcome != lines.outcome)
        texts.push_back("outcome: expected " + std::to_string(static_cast<int>(lines.outcome)) +
                        ", got " + std::to_string(static_cast<int>(bytes.outcome)));
    if (bytes.libraryPath != lines.libraryPath)
        texts.push_back("library: expected '" + lines.libraryPath.toStdString() + "', got '" +
                        bytes.libraryPath.toStdString() + '\'');
    return texts;
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
