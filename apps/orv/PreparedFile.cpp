#include "PreparedFile.h"

#include "CommandLine.h"
#include "Confinement.h"
#include "LoadFailure.h"
#include "Messages.h"
#include "Progress.h"

#include <OrvModel/ModelPreparing.h>

#include <QtCore/QFile>

namespace Halvard::Orv::Cli {

std::unique_ptr<PreparedModel> prepareFile(const QString &fileName, ExitStatus &status)
{
    status = FileAtFault;
    const QString objection = Confinement::objection(fileName);
    if (!objection.isEmpty()) {
        printError(QStringLiteral("'%1' %2.").arg(fileName, objection));
        return nullptr;
    }
    QString reason;
    QString refused;
    PrepareOptions options;
    options.reason = &reason;
    if (Confinement::isSet())
        options.openLibrary = [&refused](const QString &path) {
            return Confinement::openInside(path, refused);
        };
    QString error;
    std::unique_ptr<PreparedModel> model;
    {
        const Progress progress(Progress::loadingOf(fileName));
        model = prepareModelFromOBJFile(fileName, error, options);
    }
    if (model)
        return model;
    Messages::flush();
    if (!refused.isEmpty())
        printError(QStringLiteral("'%1' is not loaded: its library '%2' %3.")
                       .arg(fileName, refused, Confinement::objection(refused)));
    else
        printError(explainedFailure(error, reason));
    if (reason == QLatin1String("not enough memory"))
        status = OutOfMemory;
    return nullptr;
}

} // namespace Halvard::Orv::Cli
