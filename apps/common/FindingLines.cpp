#include "FindingLines.h"

#include <OrvCheck/ModelCheck.h>
#include <OrvCheck/ModelRepair.h>

namespace Halvard::Orv::Apps {

QString findingSentence(const Finding &finding)
{
    QString text = printableText(finding.message);
    if (finding.faces > 0)
        text += finding.faces == 1 ? QStringLiteral(" 1 face is not drawn.")
                                   : QStringLiteral(" %1 faces are not drawn.").arg(finding.faces);
    return text;
}

QString findingLine(const Finding &finding)
{
    return QStringLiteral("%1:%2: %3: %4 [%5]")
        .arg(printableText(finding.file), QString::number(finding.line),
             severityName(finding.severity), findingSentence(finding), finding.code);
}

QString changeSentence(const RepairChange &change)
{
    QString text = printableText(change.message);
    if (change.count > 1)
        text += QStringLiteral(" %1 times.").arg(change.count);
    return text;
}

QString changeLine(const RepairChange &change, bool isDryRun)
{
    return QStringLiteral("%1:%2: %3: %4 [%5]")
        .arg(printableText(change.file), QString::number(change.line),
             isDryRun ? QStringLiteral("to fix") : QStringLiteral("fixed"), changeSentence(change),
             change.code);
}

} // namespace Halvard::Orv::Apps
