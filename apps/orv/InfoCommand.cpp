#include "Commands.h"

#include "CommandLine.h"
#include "Confinement.h"
#include "OutputFile.h"
#include "PreparedFile.h"
#include "SummaryJSON.h"
#include "WriteAll.h"

#include <OrvModel/PreparedModel.h>

#include <QtCore/QElapsedTimer>
#include <QtCore/QIODevice>

namespace Halvard::Orv::Cli {

namespace {

ExitStatus print(const Apps::ModelSummary &summary, const std::vector<UndrawnFaces> &undrawn,
                 bool asJSON)
{
    return OutputFile::write(QString(), [&](QIODevice &device) {
        if (asJSON)
            writeSummaryJSON(device, summary, undrawn);
        else
            writeAll(device, Apps::summaryText(summary).toLocal8Bit());
    });
}

} // namespace

ExitStatus infoCommand(const QStringList &arguments)
{
    CommandLine line(QStringLiteral("info"), QStringLiteral("MODEL [options]"),
                     QStringLiteral("Says what is in the model, what became of it on the GPU, and "
                                    "where the time went."));
    line.addOption({QStringLiteral("json"), QStringLiteral("Print JSON, for programs to read.")});
    if (const auto status = line.parse(arguments))
        return *status;

    QElapsedTimer timer;
    timer.start();
    ExitStatus status = Fine;
    const std::unique_ptr<PreparedModel> model = prepareFile(line.model(), line.threads(), status);
    const qint64 nanoseconds = timer.nsecsElapsed();
    if (!model)
        return status;
    Apps::ModelSummary summary =
        Apps::summarize(*model, {Confinement::relative, Confinement::objection});
    summary.fileName = Confinement::relative(line.model());
    summary.fileBytes = qint64(summary.report.bytes);
    summary.nanoseconds = nanoseconds;
    const std::vector<UndrawnFaces> undrawn = undrawnFaces(model->report(), line.model());
    tell(undrawn, line.model());
    const ExitStatus printed = print(summary, undrawn, line.isSet(QStringLiteral("json")));
    return printed == Fine ? verdictOn(model->report(), line.model()) : printed;
}

} // namespace Halvard::Orv::Cli
