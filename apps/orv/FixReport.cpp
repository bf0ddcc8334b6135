#include "FixReport.h"

#include <common/FindingLines.h>

namespace Halvard::Orv::Cli {

QString changeLines(const RepairResult &result, bool isDryRun)
{
    QString text;
    for (const RepairChange &change : result.changes)
        text += Apps::changeLine(change, isDryRun) + QLatin1Char('\n');
    return text;
}

} // namespace Halvard::Orv::Cli
