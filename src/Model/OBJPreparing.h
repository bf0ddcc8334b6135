/// \file
/// An OBJ file into a prepared model, in two steps, by either path.
#pragma once

#include "LoaderPaths.h"
#include "PreparedModelData.h"
#include "Scanning/OBJGeometry.h"
#include "Threads/Work.h"

#include <OrvModel/ModelBuilder.h>
#include <OrvModel/ModelPreparing.h>

#include <QtCore/QString>

#include <memory>

class QIODevice;

namespace Halvard::Orv {

/// Everything between opening a file and OpenGL. Made and used on one thread; throws WorkStopped when
/// the caller's callback stops it, and what that throws.
class OBJPreparation
{
public:
    /// \param device open for reading.
    /// \param fileName for messages, and to find libraries beside it; empty for what has no name.
    OBJPreparation(QIODevice &device, const QString &fileName, LoaderPath path,
                   const OBJScanLimits &limits, const PrepareOptions &options);
    ~OBJPreparation();

    /// Reads the text and the libraries that it names.
    /// \param errorMessage set where false is returned.
    bool read(QString &errorMessage);

    /// Welds, triangulates and computes normals of what was read. Once, after read().
    std::unique_ptr<PreparedModelData> prepare();

    /// For tests: what the callback is asked by, and the threads are borrowed for.
    Work &work() { return _work; }

private:
    bool readLines(QString &errorMessage);
    bool readBytes(QString &errorMessage);
    void tell(const QString &reason);
    bool takeOutcome(OBJScanOutcome outcome, const QString &detail, QString &errorMessage);
    std::unique_ptr<PreparedModelData> prepareBuilder();
    std::unique_ptr<PreparedModelData> prepareGeometryOfBytes();

    QIODevice &_device;
    const QString _fileName;
    const QString _baseDir;
    LoaderPath _path;
    const OBJScanLimits _limits;
    const PrepareOptions &_options;
    std::unique_ptr<ModelBuilder> _builder;
    OBJGeometry _geometry;
    PreparationReport _report;
    Work _work;
};

/// "Failed to load OBJ file '%1'".
QString loadFailure(const QString &fileName);

} // namespace Halvard::Orv
