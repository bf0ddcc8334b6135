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

/// A text, what it is read into, and what is said meanwhile.
class Reading
{
public:
    explicit Reading(const QByteArray &obj)
    {
        device.setData(obj);
        device.open(QIODevice::ReadOnly | QIODevice::Text);
        builder.createMaterialGroup(QStringLiteral("<default>"), makeDefaultMaterial(), -1, 0);
    }

    QBuffer device;
    ModelBuilder builder{{}, 0};
    MaterialLibraries libraries{builder};
    PreparedOBJ result;

    bool hasFinished() const { return result.outcome == OBJScanOutcome::Finished; }

    /// Nothing but the outcome when the text has not been read: the paths count at different
    /// times.
    PreparedOBJ outcome()
    {
        PreparedOBJ all;
        all.outcome = result.outcome;
        if (!hasFinished() && result.outcome != OBJScanOutcome::LibraryMissing)
            return all;
        result.materials.groups = contentsOf(builder).groups;
        for (PlainGroup &group : result.materials.groups)
            group.faces.clear(); // the fast path never adds them to the builder
        result.prepared.messages = withoutAddresses(_capture.messages());
        return result;
    }

private:
    const MessageCapture _capture;
};

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
    Reading reading(obj);
    PreparedOBJ &result = reading.result;
    OBJGeometry geometry;
    result.outcome = scanOBJFile(reading.device, baseDir, reading.libraries, geometry,
                                 result.libraryPath, limits);
    if (reading.hasFinished()) {
        const PreparedGeometry model =
            prepareGeometry(std::move(geometry), Inspector::materialGroups(reading.builder).names(),
                            &reading.builder);
        if (!model.isEmpty())
            result.prepared.bundles.push_back(preparedBundle(model));
    }
    return reading.outcome();
}

PreparedOBJ prepareByLines(const QByteArray &obj, const QString &baseDir,
                           const OBJScanLimits &limits)
{
    Reading reading(obj);
    PreparedOBJ &result = reading.result;
    QTextStream stream(&reading.device);
    result.outcome = readOBJLines(stream, baseDir, reading.builder, reading.libraries,
                                  result.libraryPath, limits);
    require(result.outcome != OBJScanOutcome::NeedsLineReader, "lines cannot be read by lines");
    if (reading.hasFinished() && Inspector::prepare(reading.builder, QStringLiteral("va_Vertex")))
        result.prepared.bundles.push_back(preparedBundle(reading.builder));
    return reading.outcome();
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
