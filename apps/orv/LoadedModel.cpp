#include "LoadedModel.h"

#include "CommandLine.h"
#include "DriverRoom.h"
#include "Messages.h"
#include "PreparedFile.h"

#include <OrvGL/GPUModel.h>
#include <OrvGL/HeadlessContext.h>
#include <OrvModel/ModelUploading.h>
#include <OrvModel/PreparedModel.h>

namespace Halvard::Orv::Cli {

LoadedModel::LoadedModel() = default;
LoadedModel::~LoadedModel() = default;

ExitStatus LoadedModel::load(const QString &fileName, int threads)
{
    if (!hasRoomForContext()) {
        printError(QStringLiteral("There is not enough memory for OpenGL."));
        return OutOfMemory;
    }
    QString error;
    _context = HeadlessContext::create(&error);
    if (!_context || !_context->makeCurrent()) {
        Messages::flush();
        printError(error.isEmpty() ? QStringLiteral("OpenGL cannot be used.") : error);
        return CannotRun;
    }
    ExitStatus status = Fine;
    const std::unique_ptr<PreparedModel> prepared = prepareFile(fileName, threads, status);
    if (!prepared)
        return status;
    _report = prepared->report();
    _model = std::make_unique<GPUModel>();
    if (uploadPreparedModel(*prepared, *_model))
        return Fine;
    Messages::flush();
    printError(QStringLiteral("There is no room for '%1' on the GPU.").arg(fileName));
    return OutOfMemory;
}

} // namespace Halvard::Orv::Cli
