#include "LoadedModel.h"

#include "CommandLine.h"
#include "Confinement.h"
#include "Messages.h"
#include "PrintedText.h"
#include "Progress.h"

#include "Reports/LoadReport.h"
#include <OrvGL/GPUModel.h>
#include <OrvGL/HeadlessContext.h>
#include <OrvModel/ModelLoading.h>

#include <QtCore/QElapsedTimer>
#include <QtCore/QFileInfo>
#include <QtCore/QLocale>

#include <optional>

namespace Halvard::Orv::Cli {

LoadedModel::LoadedModel() = default;
LoadedModel::~LoadedModel() = default;

ExitStatus LoadedModel::load(const QString &fileName, LoadReport *report)
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

    const QFileInfo file(fileName);
    const Progress progress(QStringLiteral("loading %1 (%2)")
                                .arg(printed(file.fileName()),
                                     QLocale(QLocale::English).formattedDataSize(file.size())));
    std::optional<ScopedLoadReport> scope;
    if (report)
        scope.emplace(*report);
    QElapsedTimer timer;
    timer.start();
    _model.reset(loadModelFromOBJFile(fileName, error));
    _nanoseconds = timer.nsecsElapsed();
    if (_model)
        return Fine;
    Messages::flush();
    printError(error);
    return Messages::saidThatMemoryEnded() ? OutOfMemory : FileAtFault;
}

} // namespace Halvard::Orv::Cli
