/// \file
/// Whether there is anything to show of a file that was read.
#pragma once

#include <QtCore/QString>

namespace Halvard::Orv {
struct PreparationReport;
} // namespace Halvard::Orv

namespace Halvard::Orv::Apps {

/// A sentence where there is nothing: of a file whose faces are all not drawn, and of one that is no
/// OBJ file. Empty otherwise, also for a file without faces.
QString verdictOn(const PreparationReport &report, const QString &fileName);

} // namespace Halvard::Orv::Apps
