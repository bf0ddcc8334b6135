// A whole OBJ file into a model on the GPU.
#include <OrvModel/DefaultMaterial.h>
#include <OrvModel/ModelBuilder.h>
#include <OrvModel/ModelLoading.h>

#include "Fast/GeometryUpload.h"
#include "Fast/OBJScanning.h"
#include "LoadReport.h"
#include "OBJPouring.h"
#include "OBJRoads.h"

#include <OrvGL/GPUModel.h>
#include <OrvGL/OpenGLFunctions.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QTextStream>

#include <memory>

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
    quint64 facesBySmallCount[CornerCounts::Escape + 1] = {};
    for (size_t face = 0; face < geometry.cornerCounts.small.size(); ++face)
        ++facesBySmallCount[geometry.cornerCounts.small[face]];
    for (quint32 corners = 0; corners < CornerCounts::Escape; ++corners) {
        if (facesBySmallCount[corners] > 0)
            report.facesByCornerCount.insert(corners, facesBySmallCount[corners]);
    }
    for (size_t face = 0; face < geometry.cornerCounts.large.size(); ++face)
        ++report.facesByCornerCount[geometry.cornerCounts.large[face]];
}

QString loadFailure(const QString &fileName)
{
    return QStringLiteral("Failed to load OBJ file '%1'").arg(fileName);
}

QString libraryFailure(const QString &path)
{
    return QStringLiteral("Failed to load MTL file '%1'").arg(path);
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
    OBJLoad(QFile &file, QString &errorMessage)
        : _file(file), _baseDir(QFileInfo(file.fileName()).dir().absolutePath()),
          _errorMessage(errorMessage)
    {}

    std::unique_ptr<GPUModel> byLines()
    {
        const auto builder = makeBuilder();
        QTextStream stream(&_file);
        QString libraryPath;
        if (!pourOBJLines(stream, _baseDir, *builder, libraryPath))
            return fail(libraryFailure(libraryPath));
        auto model = std::make_unique<GPUModel>();
        builder->upload(model.get(), makeModelRecord(), QStringLiteral("va_Vertex"), QString(),
                        GL_STATIC_DRAW, GL_TRIANGLES);
        return model;
    }

    std::unique_ptr<GPUModel> byBytes()
    {
        const auto builder = makeBuilder();
        OBJGeometry geometry;
        QString libraryPath;
        switch (scan(*builder, geometry, libraryPath)) {
        case OBJScanOutcome::Finished:
            break;
        case OBJScanOutcome::LibraryMissing:
            return fail(libraryFailure(libraryPath));
        case OBJScanOutcome::LimitExceeded:
            qWarning("'%s' holds more than the 2^31 - 1 bytes of values or indices that a model "
                     "can have; split it",
                     qPrintable(_file.fileName()));
            return fail(loadFailure(_file.fileName()));
        case OBJScanOutcome::NeedsLineReader:
            if (!_file.isSequential()) // a pipe cannot go back, and was not read
                _file.seek(0);
            return byLines();
        }
        auto model = std::make_unique<GPUModel>();
        GeometryUpload::upload(std::move(geometry), *builder, *model, makeModelRecord());
        return model;
    }

private:
    OBJScanOutcome scan(ModelBuilder &builder, OBJGeometry &geometry, QString &libraryPath)
    {
        const StageTimer timer(&LoadReport::Stages::read);
        const OBJScanOutcome outcome = scanOBJFile(_file, _baseDir, builder, geometry, libraryPath);
        if (LoadReport *report = currentLoadReport(); report && outcome == OBJScanOutcome::Finished)
            describe(geometry, *report);
        return outcome;
    }

    std::unique_ptr<GPUModel> fail(const QString &message)
    {
        _errorMessage = message;
        return nullptr;
    }

    QFile &_file;
    const QString _baseDir;
    QString &_errorMessage;
};

} // namespace

GPUModel *loadModelFromOBJFile(const QString &fileName, QString &errorMessage, OBJRoad road)
{
    QFile file(fileName);
    if (!file.exists() || !file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        errorMessage = loadFailure(fileName);
        return nullptr;
    }
    OBJLoad load(file, errorMessage);
    return (road == OBJRoad::Bytes ? load.byBytes() : load.byLines()).release();
}

GPUModel *loadModelFromOBJFile(const QString &fileName, QString &errorMessage)
{
    return loadModelFromOBJFile(fileName, errorMessage, OBJRoad::Bytes);
}

} // namespace Halvard::Orv
