// A whole OBJ file into a model on the GPU.
#include <OrvModel/DefaultMaterial.h>
#include <OrvModel/ModelBuilder.h>
#include <OrvModel/ModelLoading.h>

#include "Builder/ModelBuilderState.h"
#include "Builder/ModelUpload.h"
#include "Lanes/FloatingPointState.h"
#include "Libraries/InputFile.h"
#include "Libraries/MaterialLibraries.h"
#include "LoaderPaths.h"
#include "OBJLinePath.h"
#include "Preparing/GeometryPreparing.h"
#include "Reports/LoadReport.h"
#include "Scanning/OBJScanning.h"

#include <OrvGL/GPUModel.h>
#include <OrvGL/OpenGLDeviceContext.h>
#include <OrvGL/OpenGLFunctions.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QTextStream>

#include <memory>
#include <new>

namespace Halvard::Orv {

namespace {

/// The record of the whole model: it stands where the file puts it.
InstanceData makeModelRecord()
{
    const float identity[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    InstanceData record(QStringLiteral("InstanceInfo"));
    record.set(QStringLiteral("ModelMatrix"), identity, sizeof identity);
    record.set(QStringLiteral("PreviousModelMatrix"), identity, sizeof identity);
    record.set(QStringLiteral("ModelNormalMatrix"), identity, sizeof identity);
    return record;
}

/// Fills in what a report tells of the file itself.
void describe(const OBJGeometry &geometry, LoadReport &report)
{
    report.positions = geometry.positions.valueCount();
    report.normals = geometry.normals.valueCount();
    report.texCoords = geometry.texCoords.valueCount();
    report.faces = geometry.faceCount();
    report.corners = geometry.cornerCount;
    report.facesByCornerCount = geometry.cornerCounts.histogram();
}

QString loadFailure(const QString &fileName)
{
    return QStringLiteral("Failed to load OBJ file '%1'").arg(fileName);
}

QString libraryFailure(const QString &path)
{
    return QStringLiteral("Failed to load MTL file '%1'").arg(path);
}

/// \param builder holds the materials.
UploadInput uploadInput(const PreparedGeometry &prepared, const ModelBuilderState &builder)
{
    UploadInput input;
    for (const PreparedGeometry::Attribute &attribute : prepared.attributes)
        input.attributes.append(
            {attribute.name, attribute.components, UploadElements(attribute.values)});
    input.positions = 0;
    input.indices = UploadElements(prepared.indices);
    UploadInput::Batch batch{0, {}};
    for (const PreparedGeometry::Command &command : prepared.commands) {
        const ModelBuilder::MaterialGroup group = builder.materialGroups.value(command.group);
        batch.commands.append({drawCommand(command.firstIndex, command.count), command.group,
                               group.instanceData, group.id, group.objectName});
    }
    if (!batch.commands.isEmpty())
        input.batches.append(batch);
    input.instanceData = makeModelRecord();
    input.usage = GL_STATIC_DRAW;
    input.primitiveType = GL_TRIANGLES;
    input.allocator = builder.allocator;
    return input;
}

/// Adds to the model what a builder would add that has read the same file. Adds nothing
/// where that would add nothing.
void uploadGeometry(OBJGeometry &&geometry, const ModelBuilder &builder, GPUModel &model)
{
    const QSharedPointer<OpenGLDeviceContext> context = OpenGLDeviceContext::current();
    if (!context)
        return;
    const PreparedGeometry prepared =
        prepareGeometry(std::move(geometry), builder.state().materialGroups.keys(), &builder);
    if (!prepared.isEmpty())
        uploadModel(uploadInput(prepared, builder.state()), context, model);
}

/// A builder with the group of faces whose file selects no material.
std::unique_ptr<ModelBuilder> makeBuilder()
{
    auto builder = std::make_unique<ModelBuilder>(QSharedPointer<ModelDataStreamAllocator>(), 0);
    builder->createMaterialGroup(QStringLiteral("<default>"), makeDefaultMaterial(), -1, 0);
    return builder;
}

/// One load of an open file.
class OBJLoad
{
public:
    OBJLoad(QFile &file, const QString &fileName, const OBJScanLimits &limits,
            QString &errorMessage)
        : _file(file), _fileName(fileName), _baseDir(QFileInfo(fileName).dir().absolutePath()),
          _limits(limits), _errorMessage(errorMessage)
    {}

    std::unique_ptr<GPUModel> byLines()
    {
        const auto builder = makeBuilder();
        QTextStream stream(&_file);
        QString detail;
        const OBJScanOutcome outcome = pourOBJLines(stream, _baseDir, *builder, detail, _limits);
        if (outcome != OBJScanOutcome::Finished)
            return fail(outcome, detail);
        auto model = std::make_unique<GPUModel>();
        builder->upload(model.get(), makeModelRecord(), QStringLiteral("va_Vertex"), QString(),
                        GL_STATIC_DRAW, GL_TRIANGLES);
        return model;
    }

    std::unique_ptr<GPUModel> byBytes()
    {
        auto builder = makeBuilder();
        OBJGeometry geometry;
        QString detail;
        const OBJScanOutcome outcome = scan(*builder, geometry, detail);
        if (outcome == OBJScanOutcome::NeedsLineReader) {
            geometry = {};
            builder.reset();
            if (!_file.isSequential()) // the null device, which was not read
                _file.seek(0);
            return byLines();
        }
        if (outcome != OBJScanOutcome::Finished)
            return fail(outcome, detail);
        auto model = std::make_unique<GPUModel>();
        uploadGeometry(std::move(geometry), *builder, *model);
        return model;
    }

private:
    OBJScanOutcome scan(ModelBuilder &builder, OBJGeometry &geometry, QString &detail)
    {
        const StageTimer timer(&LoadReport::Stages::read);
        MaterialLibraries libraries(builder);
        const OBJScanOutcome outcome =
            scanOBJFile(_file, _baseDir, libraries, geometry, detail, _limits);
        if (LoadReport *report = currentLoadReport(); report && outcome == OBJScanOutcome::Finished)
            describe(geometry, *report);
        return outcome;
    }

    /// \param detail as of scanOBJFile().
    std::unique_ptr<GPUModel> fail(OBJScanOutcome outcome, const QString &detail)
    {
        if (outcome == OBJScanOutcome::LibraryMissing) {
            _errorMessage = libraryFailure(detail);
        } else {
            qWarning("'%s' is not loaded: it has %s, and a stream ends at 2^31 - 1 bytes; split it "
                     "into several files",
                     qUtf8Printable(_fileName), qUtf8Printable(detail));
            _errorMessage = loadFailure(_fileName);
        }
        return nullptr;
    }

    QFile &_file;
    const QString _fileName;
    const QString _baseDir;
    const OBJScanLimits _limits;
    QString &_errorMessage;
};

} // namespace

GPUModel *loadModelByPath(const QString &fileName, QString &errorMessage, LoaderPath path,
                          const OBJScanLimits &limits)
{
    const FloatingPointState state;
    try {
        QFile file(fileName);
        if (openInputFile(file)) {
            OBJLoad load(file, fileName, limits, errorMessage);
            return (path == LoaderPath::Fast ? load.byBytes() : load.byLines()).release();
        }
    } catch (const std::bad_alloc &) {
        // By now everything of the model is gone again, and there is room for words.
        qWarning("'%s' is not loaded: there is not enough memory for it", qUtf8Printable(fileName));
    }
    errorMessage = loadFailure(fileName);
    return nullptr;
}

GPUModel *loadModelFromOBJFile(const QString &fileName, QString &errorMessage)
{
    return loadModelByPath(fileName, errorMessage, LoaderPath::Fast);
}

} // namespace Halvard::Orv
