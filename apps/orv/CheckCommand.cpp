#include "CheckReport.h"
#include "CommandLine.h"
#include "Commands.h"
#include "ConfinedCheck.h"
#include "Confinement.h"
#include "Messages.h"
#include "OutputFile.h"
#include "Progress.h"
#include "WriteAll.h"

#include <QtCore/QFileInfo>
#include <QtCore/QIODevice>

namespace Halvard::Orv::Cli {

namespace {

/// Checks a model. Says why where it cannot be read.
bool check(const QString &fileName, ModelFindings &findings)
{
    QString reason = Confinement::objection(fileName);
    if (reason.isEmpty()) {
        const Progress progress(QStringLiteral("checking ") + QFileInfo(fileName).fileName());
        if (checkModel(fileName, findings, reason, confinedCheckOptions()) == CheckStatus::Done) {
            findings.file = Confinement::relative(findings.file);
            for (Finding &finding : findings.findings)
                finding.file = Confinement::relative(finding.file);
            return true;
        }
    }
    Messages::flush();
    printError(QStringLiteral("'%1' cannot be checked: %2.").arg(fileName, reason));
    return false;
}

/// The number of --max; 0 without the option, and -1 for something else than a number.
int mostFindings(const CommandLine &line)
{
    if (!line.isSet(QStringLiteral("max")))
        return 0;
    bool ok = false;
    const int most = line.value(QStringLiteral("max")).toInt(&ok);
    return ok && most > 0 ? most : -1;
}

void addOptions(CommandLine &line)
{
    line.addOption({QStringLiteral("json"), QStringLiteral("Print JSON, for programs to read.")});
    line.addOption({QStringLiteral("strict"),
                    QStringLiteral("Give exit status 1 also where there is only a warning.")});
    line.addOption({QStringLiteral("max"),
                    QStringLiteral("Print at most N findings of a model, the most severe."),
                    QStringLiteral("N")});
}

} // namespace

ExitStatus checkCommand(const QStringList &arguments)
{
    CommandLine line(
        QStringLiteral("check"), QStringLiteral("MODEL... [options]"),
        QStringLiteral("Says what in the models, and in the material libraries that they name, "
                       "will not do what is expected: which faces are not drawn and why, and what "
                       "comes out other than it is written."));
    line.allowSeveralModels();
    addOptions(line);
    if (const auto status = line.parse(arguments))
        return *status;
    const int most = mostFindings(line);
    if (most < 0)
        return line.wrongUsage(QStringLiteral("'--max' takes a number of at least 1, not '%1'.")
                                   .arg(line.value(QStringLiteral("max"))));

    const bool asJSON = line.isSet(QStringLiteral("json"));
    const FindingSeverity worst =
        line.isSet(QStringLiteral("strict")) ? FindingSeverity::Warning : FindingSeverity::Error;
    ExitStatus status = Fine;
    QVector<ModelFindings> models;
    for (const QString &fileName : line.models()) {
        ModelFindings findings;
        if (!check(fileName, findings)) {
            status = CannotRun;
            continue;
        }
        if (findings.has(worst) && status == Fine)
            status = FileAtFault;
        if (asJSON) {
            models.append(findings);
            continue;
        }
        const ExitStatus written = OutputFile::write(QString(), [&](QIODevice &out) {
            writeAll(out, findingLines(findings, most).toLocal8Bit());
        });
        if (written != Fine)
            return written;
    }
    if (asJSON) {
        const ExitStatus written =
            OutputFile::write(QString(), [&](QIODevice &out) { writeFindings(out, models, most); });
        if (written != Fine)
            return written;
    }
    return status;
}

} // namespace Halvard::Orv::Cli
