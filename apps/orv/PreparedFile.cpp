#include "PreparedFile.h"

#include "CommandLine.h"
#include "Confinement.h"
#include "Messages.h"
#include "Progress.h"

#include <OrvModel/ModelPreparing.h>
#include <common/HelperPool.h>
#include <common/LoadFailure.h>

#include <QtCore/QFile>
#include <QtCore/QThreadPool>

#include <unistd.h>

#include <optional>

namespace Halvard::Orv::Cli {

namespace {

std::unique_ptr<PreparedModel> prepareStandardInput(QString &error, const PrepareOptions &options)
{
    QFile input;
    if (input.open(STDIN_FILENO, QIODevice::ReadOnly))
        return prepareModelFromOBJ(input, error, options);
    error = QStringLiteral("Standard input cannot be read: %1.").arg(input.errorString());
    return nullptr;
}

/// The threads that help to prepare, for the time of one preparation.
class Helpers
{
public:
    explicit Helpers(int count) : _pool(Apps::helperPool()) { _pool.setMaxThreadCount(count); }

    ~Helpers()
    {
        // The threads have nothing more to do, and end at once. Only those are waited for in vain
        // that could not be started.
        constexpr int LongestWait = 100; // milliseconds
        _pool.waitForDone(LongestWait);
    }

    Helpers(const Helpers &) = delete;
    Helpers &operator=(const Helpers &) = delete;

    QThreadPool *pool() { return &_pool; }

private:
    QThreadPool &_pool;
};

} // namespace

std::unique_ptr<PreparedModel> prepareFile(const QString &fileName, int threads, ExitStatus &status)
{
    status = FileAtFault;
    const bool isStandardInput = fileName == QLatin1String("-");
    const QString objection = isStandardInput ? QString() : Confinement::objection(fileName);
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
        std::optional<Helpers> helpers;
        if (threads > 1)
            options.threadPool = helpers.emplace(threads - 1).pool();
        Progress progress(Progress::loadingOf(fileName));
        options.progress = [&progress](const PrepareProgress &done) {
            progress.setFraction(done.fraction);
            return true;
        };
        model = isStandardInput ? prepareStandardInput(error, options)
                                : prepareModelFromOBJFile(fileName, error, options);
    }
    if (model)
        return model;
    Messages::flush();
    if (!refused.isEmpty())
        printError(QStringLiteral("'%1' is not loaded: its library '%2' %3.")
                       .arg(fileName, refused, Confinement::objection(refused)));
    else
        printError(Apps::explainedFailure(error, reason));
    if (reason == QLatin1String("not enough memory"))
        status = OutOfMemory;
    return nullptr;
}

} // namespace Halvard::Orv::Cli
