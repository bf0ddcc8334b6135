#include "OBJPreparing.h"

#include "Builder/ModelBuilderState.h"
#include "Builder/UploadPreparation.h"
#include "Libraries/MaterialLibraries.h"
#include "OBJLinePath.h"
#include "Preparing/GeometryPreparing.h"
#include "Reports/CurrentReport.h"
#include "Reports/UndrawnFaces.h"
#include "Scanning/OBJScanning.h"

#include <OrvModel/DefaultMaterial.h>

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QIODevice>
#include <QtCore/QTextStream>

#include <algorithm>

namespace Halvard::Orv {

namespace {

using Reason = PreparationReport::Reason;
using FacesNotDrawn = PreparationReport::FacesNotDrawn;

/// A builder with the group of faces whose file selects no material.
std::unique_ptr<ModelBuilder> makeBuilder()
{
    auto builder = std::make_unique<ModelBuilder>(QSharedPointer<ModelDataStreamAllocator>(), 0);
    builder->createMaterialGroup(QStringLiteral("<default>"), makeDefaultMaterial(), -1, 0);
    return builder;
}

/// Fills in what a report tells of the file itself.
void describe(const OBJGeometry &geometry, PreparationReport &report)
{
    report.bytes = geometry.textBytes;
    report.positions = geometry.positions.valueCount();
    report.normals = geometry.normals.valueCount();
    report.texCoords = geometry.texCoords.valueCount();
    report.faces = geometry.faceCount();
    report.corners = geometry.cornerCount;
    report.facesByCornerCount = geometry.cornerCounts.histogram();
    for (const FacesWithoutMaterial &group : geometry.withoutMaterial)
        report.facesNotDrawn.append({Reason::MaterialNotDefined, group.material, group.faces.first,
                                     group.faces.count}); // each name once
}

/// Fills in what became of the file, the faces that are not drawn being complete.
void conclude(const PreparedModelData &model, PreparationReport &report)
{
    if (model.input.attributes.isEmpty()) {
        report.facesNotDrawn.clear();
        addUndrawnFaces(report, Reason::NothingIsDrawn, QString(), {report.faces, 0});
    } else {
        report.triangles = model.input.indices.count() / 3;
    }
    report.facesDrawn = report.faces;
    for (const FacesNotDrawn &faces : qAsConst(report.facesNotDrawn))
        report.facesDrawn -= faces.count;
    std::stable_sort(
        report.facesNotDrawn.begin(), report.facesNotDrawn.end(),
        [](const FacesNotDrawn &a, const FacesNotDrawn &b) { return a.firstFace < b.firstFace; });
}

/// Lets a text stream remove carriage returns, as it does in files opened as text.
class TextMode
{
public:
    explicit TextMode(QIODevice &device) : _device(device), _was(device.isTextModeEnabled())
    {
        _device.setTextModeEnabled(true);
    }
    ~TextMode() { _device.setTextModeEnabled(_was); }
    TextMode(const TextMode &) = delete;
    TextMode &operator=(const TextMode &) = delete;

private:
    QIODevice &_device;
    const bool _was;
};

PrepareStage stageOf(WorkStage stage)
{
    switch (stage) {
    case WorkStage::Reading:
        return PrepareStage::Reading;
    case WorkStage::Welding:
        return PrepareStage::Welding;
    case WorkStage::Triangulating:
        return PrepareStage::Triangulating;
    case WorkStage::Normals:
        break;
    }
    return PrepareStage::Normals;
}

Work::Callback callbackOf(const std::function<bool(const PrepareProgress &)> &progress)
{
    if (!progress)
        return {};
    return [&progress](WorkStage stage, double fraction) {
        return progress({stageOf(stage), fraction});
    };
}

} // namespace

QString loadFailure(const QString &fileName)
{
    return QStringLiteral("Failed to load OBJ file '%1'").arg(fileName);
}

OBJPreparation::OBJPreparation(QIODevice &device, const QString &fileName, LoaderPath path,
                               const OBJScanLimits &limits, const PrepareOptions &options)
    : _device(device), _fileName(fileName), _baseDir(QFileInfo(fileName).dir().absolutePath()),
      _path(path), _limits(limits), _options(options),
      _work(options.threadPool, callbackOf(options.progress))
{}

OBJPreparation::~OBJPreparation() = default;

bool OBJPreparation::read(QString &errorMessage)
{
    const ScopedReport scope(_report);
    return _path == LoaderPath::Fast ? readBytes(errorMessage) : readLines(errorMessage);
}

bool OBJPreparation::readLines(QString &errorMessage)
{
    _path = LoaderPath::Lines;
    _builder = makeBuilder();
    _report.bytes = _device.isSequential() ? 0 : static_cast<quint64>(_device.size());
    const TextMode textMode(_device);
    QTextStream stream(&_device);
    QString detail;
    MaterialLibraries libraries(*_builder, _options.openLibrary);
    const OBJScanOutcome outcome =
        readOBJLines(stream, _baseDir, *_builder, libraries, detail, _limits, &_work);
    if (outcome == OBJScanOutcome::LibraryMissing)
        tell(libraries.reason());
    return takeOutcome(outcome, detail, errorMessage);
}

bool OBJPreparation::readBytes(QString &errorMessage)
{
    _builder = makeBuilder();
    const qint64 begin = _device.isSequential() ? 0 : _device.pos();
    QString detail;
    OBJScanOutcome outcome;
    {
        const StageTimer timer(&PreparationReport::Stages::read);
        MaterialLibraries libraries(*_builder, _options.openLibrary);
        outcome = scanOBJFile(_device, _baseDir, libraries, _geometry, detail, _limits, &_work);
        if (outcome == OBJScanOutcome::LibraryMissing)
            tell(libraries.reason());
    }
    if (outcome == OBJScanOutcome::NeedsLineReader) {
        _geometry = {};
        _builder.reset();
        if (!_device.isSequential()) // the null device, which was not read
            _device.seek(begin);
        return readLines(errorMessage);
    }
    if (outcome == OBJScanOutcome::Finished)
        describe(_geometry, _report);
    return takeOutcome(outcome, detail, errorMessage);
}

/// \param detail as of scanOBJFile().
bool OBJPreparation::takeOutcome(OBJScanOutcome outcome, const QString &detail,
                                 QString &errorMessage)
{
    if (outcome == OBJScanOutcome::Finished)
        return true;
    if (outcome == OBJScanOutcome::LibraryMissing) {
        errorMessage = QStringLiteral("Failed to load MTL file '%1'").arg(detail);
        return false;
    }
    qWarning("'%s' is not loaded: it has %s, and a stream ends at 2^31 - 1 bytes; split it into "
             "several files",
             qUtf8Printable(_fileName), qUtf8Printable(detail));
    tell(detail);
    errorMessage = loadFailure(_fileName);
    return false;
}

void OBJPreparation::tell(const QString &reason)
{
    if (_options.reason)
        *_options.reason = reason;
}

std::unique_ptr<PreparedModelData> OBJPreparation::prepare()
{
    const ScopedReport scope(_report);
    std::unique_ptr<PreparedModelData> model =
        _path == LoaderPath::Fast ? prepareGeometryOfBytes() : prepareBuilder();
    conclude(*model, _report);
    model->normalsAreGenerated = _report.normals == 0;
    model->report = std::move(_report);
    _work.finish();
    return model;
}

std::unique_ptr<PreparedModelData> OBJPreparation::prepareGeometryOfBytes()
{
    PreparedGeometry prepared = prepareGeometry(
        std::move(_geometry), _builder->state().materialGroups.names(), _builder.get(), &_work);
    addUndrawnFaces(_report, Reason::TooFewCorners, QString(), prepared.withTooFewCorners);
    addUndrawnFaces(_report, Reason::NotTriangulated, QString(), prepared.notTriangulated);
    return takeGeometry(std::move(prepared), *_builder);
}

std::unique_ptr<PreparedModelData> OBJPreparation::prepareBuilder()
{
    const QString positions = QStringLiteral("va_Vertex");
    if (!canBeUploaded(*_builder, positions) || !prepareForUpload(*_builder, positions))
        return std::make_unique<PreparedModelData>();
    return shareStreams(*_builder, positions);
}

} // namespace Halvard::Orv
