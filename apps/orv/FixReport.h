/// \file
/// Changes of models as text.
#pragma once

#include <OrvCheck/ModelRepair.h>

#include <QtCore/QString>

namespace Halvard::Orv::Cli {

/// One line for each change, in the form of findings:
///
///     FILE:LINE: fixed: MESSAGE [CODE]
///
/// \param isDryRun says "to fix" instead.
QString changeLines(const RepairResult &result, bool isDryRun);

} // namespace Halvard::Orv::Cli
