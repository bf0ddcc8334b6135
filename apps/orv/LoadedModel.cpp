#include "LoadedModel.h"

#include "CommandLine.h"
#include "Confinement.h"
#include "LoadFailure.h"
#include "Messages.h"
#include "PrintedText.h"
#include "Progress.h"

#include <OrvGL/GPUModel.h>
#include <OrvGL/HeadlessContext.h>
#include <OrvModel/ModelLoading.h>

namespace Halvard::Orv::Cli {

LoadedModel::LoadedModel() = default;
LoadedModel::~LoadedModel() = default;

ExitStatus LoadedModel::load(const QString &fileName)
{
    QString error = Confinement::refusal(fileName);
    if (!error.isEmpty()) {
        printError(error);
        return FileAtFault;
    }
    _context = HeadlessContext::create(&error);
    if (!_context || !_context->makeCurrent()) {
        Messages::flush();
        printError(error.isEmpty() ? QStringLiteral("OpenGL cannot be used.") : error);
        return CannotRun;
    }

    const Progress progress(Progress::loadingOf(fileName));
    _model.reset(loadModelFromOBJFile(fileName, error));
    if (_model)
        return Fine;
    Messages::flush();
    printError(explainedFailure(error));
    return Messages::saidThatMemoryEnded() ? OutOfMemory : FileAtFault;
}

} // namespace Halvard::Orv::Cli
