/// \file
/// Why a model was not loaded.
#pragma once

#include <QtCore/QString>

namespace Halvard::Orv::Apps {

/// The library's message with the reason behind it, and with the name of a similar file that lies
/// beside a missing one:
///
///     Failed to load MTL file '/a/m.mtl': no such file, but there is '/a/M.mtl'.
///
/// \param reason as prepareModelFromOBJFile() gives it.
QString explainedFailure(const QString &message, const QString &reason);

} // namespace Halvard::Orv::Apps
