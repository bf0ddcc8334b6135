#include "Commands.h"

#include "CommandLine.h"
#include "Confinement.h"
#include "LoadedModel.h"
#include "ModelSummary.h"
#include "OutputFile.h"
#include "WriteAll.h"

#include <QtCore/QFileInfo>
#include <QtCore/QIODevice>

namespace Halvard::Orv::Cli {

namespace {

ExitStatus print(const ModelSummary &summary, bool asJSON)
{
    return OutputFile::write(QString(), [&](QIODevice &device) {
        if (asJSON)
            writeSummaryJSON(device, summary);
        else
            writeAll(device, summaryText(summary).toLocal8Bit());
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

    LoadReport report;
    LoadedModel loaded;
    if (const ExitStatus status = loaded.load(line.model(), &report); status != Fine)
        return status;
    ModelSummary summary = summarize(loaded.model());
    summary.fileName = Confinement::relative(line.model());
    summary.fileBytes = QFileInfo(line.model()).size();
    summary.report = report;
    summary.nanoseconds = loaded.nanoseconds();
    return print(summary, line.isSet(QStringLiteral("json")));
}

} // namespace Halvard::Orv::Cli
