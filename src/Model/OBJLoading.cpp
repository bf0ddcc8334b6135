// A whole OBJ file into a model on the GPU: both halves in a row.
#include <OrvModel/ModelLoading.h>

#include "Lanes/FloatingPointState.h"
#include "Libraries/InputFile.h"
#include "LoaderPaths.h"
#include "OBJPreparing.h"

#include <OrvGL/GPUModel.h>
#include <OrvGL/OpenGLDeviceContext.h>

#include <QtCore/QFile>

#include <memory>
#include <new>

namespace Halvard::Orv {

namespace {

/// \return null, with a message, when the file is at fault.
std::unique_ptr<GPUModel> load(QFile &file, const QString &fileName, QString &errorMessage,
                               LoaderPath path, const OBJScanLimits &limits)
{
    const PrepareOptions options;
    OBJPreparation preparation(file, fileName, path, limits, options);
    if (!preparation.read(errorMessage))
        return nullptr;
    auto model = std::make_unique<GPUModel>();
    // Asked before welding, which has something to say: without a context nothing more is done.
    const QSharedPointer<OpenGLDeviceContext> context = OpenGLDeviceContext::current();
    if (!context)
        return model;
    const std::unique_ptr<PreparedModelData> prepared = preparation.prepare();
    if (!prepared->input.attributes.isEmpty())
        uploadModel(std::move(prepared->input), context, *model);
    return model;
}

} // namespace

GPUModel *loadModelByPath(const QString &fileName, QString &errorMessage, LoaderPath path,
                          const OBJScanLimits &limits)
{
    const FloatingPointState state;
    try {
        QFile file(fileName);
        if (openInputFile(file))
            return load(file, fileName, errorMessage, path, limits).release();
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
