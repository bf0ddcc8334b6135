#include "CheckReport.h"
#include "CommandLine.h"
#include "Commands.h"
#include "ConfinedCheck.h"
#include "Confinement.h"
#include "FixReport.h"
#include "Messages.h"
#include "Progress.h"

#include <OrvCheck/ModelCheck.h>
#include <OrvCheck/ModelRepair.h>

#include <QtCore/QFileInfo>

namespace Halvard::Orv::Cli {

namespace {

/// Says what is left, of errors and warnings: nobody has to look at the result to know.
/// \return whether errors are.
bool tellLeft(const QString &fileName, bool isDryRun)
{
    ModelFindings left;
    QString reason;
    CheckOptions options = confinedCheckOptions();
    options.decodeTextures = false;
    if (checkModel(fileName, left, reason, options) != CheckStatus::Done)
        return true;
    const auto matters = [isDryRun](const Finding &finding) {
        return finding.severity != FindingSeverity::Hint && !(isDryRun && finding.fixable);
    };
    QVector<Finding> findings;
    for (Finding &finding : left.findings) {
        finding.file = Confinement::relative(finding.file);
        if (matters(finding))
            findings.append(finding);
    }
    left.findings = findings;
    printOut(findingLines(left, 0));
    return left.has(FindingSeverity::Error);
}

/// \param reason assigned where nothing is done.
bool repair(const QString &fileName, const QString &outputName, bool isDryRun, RepairResult &result,
            QString &reason)
{
    reason = Confinement::objection(fileName);
    if (!reason.isEmpty())
        return false;
    const Progress progress(QStringLiteral("fixing ") + QFileInfo(fileName).fileName());
    const CheckOptions confined = confinedCheckOptions();
    RepairOptions options;
    options.dryRun = isDryRun;
    options.openLibrary = confined.openLibrary;
    options.mayLookAt = confined.mayLookAt;
    return repairModel(fileName, outputName, result, reason, options) == RepairStatus::Done;
}

ExitStatus fix(const QString &fileName, const QString &outputName, bool isDryRun)
{
    RepairResult result;
    QString reason;
    if (!repair(fileName, outputName, isDryRun, result, reason)) {
        Messages::flush();
        printError(QStringLiteral("'%1' cannot be fixed: %2.").arg(fileName, reason));
        return CannotRun;
    }
    for (RepairChange &change : result.changes)
        change.file = Confinement::relative(change.file);
    printOut(changeLines(result, isDryRun));
    return tellLeft(isDryRun ? fileName : outputName, isDryRun) ? FileAtFault : Fine;
}

/// Where a dry run without an output pretends to write to.
QString supposedOutput(const QString &fileName)
{
    const QFileInfo info(fileName);
    return info.path() + QLatin1Char('/') + info.completeBaseName() + QStringLiteral("_fixed.obj");
}

} // namespace

ExitStatus fixCommand(const QStringList &arguments)
{
    CommandLine line(
        QStringLiteral("fix"), QStringLiteral("MODEL -o OUT.obj [options]"),
        QStringLiteral("Writes a model that does what the author of MODEL meant, with its material "
                       "library beside it, and says what it changed and what it could not mend. "
                       "Everything else stays byte by byte as it is."));
    line.addOption({{QStringLiteral("o"), QStringLiteral("output")},
                    QStringLiteral("Write the model to this file. Needed but for --dry-run."),
                    QStringLiteral("FILE")});
    line.addOption({QStringLiteral("dry-run"),
                    QStringLiteral("Only say what would be changed, and write nothing.")});
    if (const auto status = line.parse(arguments))
        return *status;
    const bool isDryRun = line.isSet(QStringLiteral("dry-run"));
    QString output = line.value(QStringLiteral("output"));
    if (output.isEmpty() && (!isDryRun || line.isSet(QStringLiteral("output"))))
        return line.wrongUsage(QStringLiteral("The output file has no name: give '-o OUT.obj'."));
    if (output == QLatin1String("-"))
        return line.wrongUsage(QStringLiteral("A mended model needs a file: its material library "
                                              "is written beside it, give '-o OUT.obj'."));
    if (output.isEmpty())
        output = supposedOutput(line.model());
    return fix(line.model(), output, isDryRun);
}

} // namespace Halvard::Orv::Cli
