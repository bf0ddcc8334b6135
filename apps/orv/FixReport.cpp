#include "FixReport.h"

#include <OrvCheck/ModelCheck.h>

namespace Halvard::Orv::Cli {

QString changeLines(const RepairResult &result, bool isDryRun)
{
    QString text;
    for (const RepairChange &change : result.changes) {
        QString message = printableText(change.message);
        if (change.count > 1)
            message += QStringLiteral(" %1 times.").arg(change.count);
        text += QStringLiteral("%1:%2: %3: %4 [%5]\n")
                    .arg(printableText(change.file), QString::number(change.line),
                         isDryRun ? QStringLiteral("to fix") : QStringLiteral("fixed"), message,
                         change.code);
    }
    return text;
}

} // namespace Halvard::Orv::Cli
