#include "support/PreparedOBJ.h"

#include "support/Fuzzing.h"

#include "support/BuilderContents.h"
#include "support/ModelBuilderInspector.h"
#include "support/ModelDifferences.h"

#include "Libraries/MaterialLibraries.h"
#include "OBJLinePath.h"
#include "Scanning/OBJScanning.h"

#include <OrvModel/DefaultMaterial.h>

#include <OrvCore/InstanceData.h>

#include <QtCore/QBuffer>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>
#include <QtCore/QTextStream>

namespace OrvFuzz {

using namespace Halvard::Orv;
using namespace OrvTest;
using Inspector = ModelBuilderInspector;

namespace {

void addDefaultGroup(ModelBuilder &builder)
{
    builder.createMaterialGroup(QStringLiteral("<default>"), makeDefaultMaterial(), -1, 0);
}

PlainModel materialsOf(ModelBuilder &builder)
{
    PlainModel materials;
    materials.groups = contentsOf(builder).groups;
    for (PlainGroup &group : materials.groups)
        group.faces.clear(); // the fast path never adds them to the builder
    return materials;
}

/// What is known when the paths count at different times, or one gives up.
PreparedOBJ only(OBJScanOutcome outcome)
{
    PreparedOBJ result;
    result.outcome = outcome;
    return result;
}

bool endsEarly(OBJScanOutcome outcome)
{
    return outcome == OBJScanOutcome::NeedsLineReader || outcome == OBJScanOutcome::LimitExceeded;
}

} // namespace

ModelText::ModelText(const QByteArray &input)
{
    const QByteArray border = QByteArrayLiteral("\n#mtl\n");
    const int at = input.indexOf(border);
    obj = at < 0 ? input : input.left(at + 1);
    mtl = at < 0 ? QByteArray() : input.mid(at + border.size());
}

LibraryDirectory &LibraryDirectory::instance()
{
    static LibraryDirectory directory;
    return directory;
}

LibraryDirectory::LibraryDirectory()
{
    static QTemporaryDir directory;
    require(directory.isValid(), "no temporary directory for material libraries");
    _path = directory.path();
    _contents = QByteArrayLiteral("nothing yet");
    write({});
}

void LibraryDirectory::write(const QByteArray &contents)
{
    if (contents == _contents)
        return;
    QFile file(_path + QStringLiteral("/m.mtl"));
    require(file.open(QIODevice::WriteOnly) && file.write(contents) == contents.size(),
            "the material library cannot be written");
    _contents = QByteArray(contents.constData(), contents.size()); // owns its bytes
}

bool namesLibraryByPath(const QByteArray &obj)
{
    for (int at = obj.indexOf("mtllib"); at >= 0; at = obj.indexOf("mtllib", at + 1)) {
        const int end = obj.indexOf('\n', at);
        if (obj.mid(at, end < 0 ? -1 : end - at).contains('/'))
            return true;
    }
    return false;
}

OBJScanLimits largeChunks()
{
    OBJScanLimits limits;
    limits.chunkBytes = std::size_t(1) << 15;
    return limits;
}

PreparedOBJ prepareByBytes(const QByteArray &obj, const QString &baseDir,
                           const OBJScanLimits &limits)
{
    QBuffer buffer;
    buffer.setData(obj);
    buffer.open(QIODevice::ReadOnly | QIODevice::Text);
    ModelBuilder builder({}, 0);
    addDefaultGroup(builder);
    MaterialLibraries libraries(builder);
    OBJGeometry geometry;

    PreparedOBJ result;
    const MessageCapture capture;
    result.outcome = scanOBJFile(buffer, baseDir, libraries, geometry, result.libraryPath, limits);
    if (endsEarly(result.outcome))
        return only(result.outcome);
    if (result.outcome == OBJScanOutcome::Finished) {
        const PreparedGeometry model = prepareGeometry(
            std::move(geometry), Inspector::materialGroups(builder).names(), &builder);
        if (!model.isEmpty())
            result.prepared.bundles.push_back(preparedBundle(model));
    }
    result.materials = materialsOf(builder);
    result.prepared.messages = withoutAddresses(capture.messages());
    return result;
}

PreparedOBJ prepareByLines(const QByteArray &obj, const QString &baseDir,
                           const OBJScanLimits &limits)
{
    QBuffer buffer;
    buffer.setData(obj);
    buffer.open(QIODevice::ReadOnly | QIODevice::Text);
    QTextStream stream(&buffer);
    ModelBuilder builder({}, 0);
    addDefaultGroup(builder);

    PreparedOBJ result;
    const MessageCapture capture;
    MaterialLibraries libraries(builder);
    result.outcome = readOBJLines(stream, baseDir, builder, libraries, result.libraryPath, limits);
    require(result.outcome != OBJScanOutcome::NeedsLineReader, "lines cannot be read by lines");
    if (endsEarly(result.outcome))
        return only(result.outcome);
    if (result.outcome == OBJScanOutcome::Finished &&
        Inspector::prepare(builder, QStringLiteral("va_Vertex")))
        result.prepared.bundles.push_back(preparedBundle(builder));
    result.materials = materialsOf(builder);
    result.prepared.messages = withoutAddresses(capture.messages());
    return result;
}

std::vector<std::string> differences(const PreparedOBJ &lines, const PreparedOBJ &bytes)
{
    std::vector<std::string> texts = OrvTest::differences(lines.materials, bytes.materials);
    for (const std::string &text : OrvTest::differences(lines.prepared, bytes.prepared))
        texts.push_back(text);
    if (lines.outcome != bytes.outcome)
        texts.push_back("outcome: expected " + std::to_string(static_cast<int>(lines.outcome)) +
                        ", got " + std::to_string(static_cast<int>(bytes.outcome)));
    if (lines.libraryPath != bytes.libraryPath)
        texts.push_back("library: expected '" + lines.libraryPath.toStdString() + "', got '" +
                        bytes.libraryPath.toStdString() + '\'');
    return texts;
}

} // namespace OrvFuzz
