/// \file
/// Why a model was not loaded.
#pragma once

#include <QtCore/QString>

namespace Halvard::Orv::Cli {

/// The loader's message with the reason behind it, as far as the file that it names shows one, and
/// with the name of a similar file that lies beside a missing one:
///
///     Failed to load MTL file '/a/m.mtl': there is no such file, but there is '/a/M.mtl'.
QString explainedFailure(const QString &message);

} // namespace Halvard::Orv::Cli
